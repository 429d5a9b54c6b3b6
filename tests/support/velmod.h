// The daemon, started for a test.
#ifndef VELMO_TESTS_SUPPORT_VELMOD_H
#define VELMO_TESTS_SUPPORT_VELMOD_H

#include <cstdint>
#include <optional>
#include <string>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace velmo::tests {

// The velmod of this build, ready to be called, on a free port of 127.0.0.1. Its
// unix socket is in a folder of its own.
class Velmod {
public:
    // Throws std::runtime_error, with what it wrote, when velmod does not come up.
    // arguments: more options; "--listen" among them replaces the free port.
    // program: that of another build.
    explicit Velmod(std::vector<std::string> arguments = {},
                    Process::Environment environment = {}, std::string program = "");

    // Its naming service: what a settings file gives as naming="...".
    const std::string& naming_url() const { return url; }

    // The port of its own naming service (not with --naming).
    std::uint16_t port() const;

    Process& process() { return *running; }

    // SIGTERM; gives the exit status, none when it does not end.
    std::optional<int> stop();

    // SIGKILL.
    void kill();

    // After stop() or kill(): starts it again, with a naming service of its own on
    // the same port as before.
    void restart();

private:
    void start();

    const std::string program;
    std::vector<std::string> arguments;
    Process::Environment environment;
    TemporaryFolder runtime_folder;
    std::optional<Process> running;
    std::string url;
};

// The path of the velmod of this build.
std::string velmod_path();

} // namespace velmo::tests

#endif
