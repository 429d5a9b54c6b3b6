// A standard naming service, started for a test.
#ifndef VELMO_TESTS_SUPPORT_OMNI_NAMES_H
#define VELMO_TESTS_SUPPORT_OMNI_NAMES_H

#include <cstdint>
#include <optional>
#include <string>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace velmo::tests {

// omniNames on a free port of 127.0.0.1, with its data in a folder of its own.
class OmniNames {
public:
    // Throws std::runtime_error when it does not come up.
    OmniNames();

    // Its root context: what a settings file gives as naming="...".
    std::string naming_url() const;
    std::uint16_t port() const { return number; }
    Process& process() { return *running; }

    void kill();

    // After kill(): starts it again, on the same port with the same data.
    void restart();

    // After kill(): likewise, but it has forgotten everything.
    void restart_empty();

    // Whether omniNames is installed.
    static bool available();

private:
    bool start();
    std::string log() const;

    TemporaryFolder folder;
    std::uint16_t number = 0;
    std::optional<Process> running;
};

} // namespace velmo::tests

#endif
