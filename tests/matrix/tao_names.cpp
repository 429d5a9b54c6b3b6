#include "tests/matrix/tao_names.h"

#include <unistd.h>

#include <stdexcept>

#include "tests/support/loopback.h"

namespace velmo::tests {

namespace {

constexpr int attempts = 10;

} // namespace

TaoNames::TaoNames()
{
    // The port may be taken between its choice and its use.
    for (int i = 0; i < attempts; ++i) {
        number = free_port();
        if (start())
            return;
    }
    throw std::runtime_error("tao_cosnaming does not start: " + running->err());
}

bool TaoNames::start()
{
    const std::filesystem::path reference = folder.path() / "reference";
    const std::string endpoint = "iiop://127.0.0.1:" + std::to_string(number);
    running.emplace(Process::Command{TAO_NAMES_PATH, "-ORBListenEndpoints", endpoint, "-m",
                                     "0", "-o", reference.string()},
                    Process::Environment{{"LD_LIBRARY_PATH", TAO_NAMES_LIBRARIES}});
    // It is written once the naming service answers.
    eventually([&] { return !running->running() || std::filesystem::exists(reference); });
    return running->running();
}

std::string TaoNames::naming_url() const
{
    return tests::naming_url(number);
}

bool TaoNames::available()
{
    return access(TAO_NAMES_PATH, X_OK) == 0;
}

} // namespace velmo::tests
