// TAO's naming service, started for a test.
#ifndef VELMO_TESTS_MATRIX_TAO_NAMES_H
#define VELMO_TESTS_MATRIX_TAO_NAMES_H

#include <cstdint>
#include <optional>
#include <string>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace velmo::tests {

// tao_cosnaming on a free port of 127.0.0.1; it keeps nothing.
class TaoNames {
public:
    // Throws std::runtime_error when it does not come up.
    TaoNames();

    // Its root context: what a settings file gives as naming="...".
    std::string naming_url() const;

    // Whether there is one.
    static bool available();

private:
    bool start();

    TemporaryFolder folder;
    std::uint16_t number = 0;
    std::optional<Process> running;
};

} // namespace velmo::tests

#endif
