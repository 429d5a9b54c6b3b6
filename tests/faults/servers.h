// How the servers of these tests are started.
#ifndef VELMO_TESTS_FAULTS_SERVERS_H
#define VELMO_TESTS_FAULTS_SERVERS_H

#include <optional>

#include "tests/faults/fault.h"
#include "tests/support/omni_names.h"
#include "tests/support/velmod.h"

namespace velmo::tests {

// Without the unix socket, so that a client meets a broken connection for certain.
inline const std::vector<std::string> over_tcp{"--server", "S", "--no-unix"};

// Such a server, registered with a naming service of its own process.
class RegisteredServer : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!OmniNames::available())
            GTEST_SKIP() << "omniNames is not installed";
        names.emplace();
        std::vector<std::string> arguments = over_tcp;
        arguments.insert(arguments.end(), {"--naming", names->naming_url()});
        velmod.emplace(arguments);
        settings.emplace(names->naming_url());
    }

    std::optional<OmniNames> names;
    std::optional<Velmod> velmod;
    std::optional<FaultSettings> settings;
};

} // namespace velmo::tests

#endif
