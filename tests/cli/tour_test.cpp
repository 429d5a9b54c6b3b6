// The tour, exactly as printed.
#include <fstream>

#include "tests/cli/velmo.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;

namespace {

// A shell with the programs of this build in its path, on a machine where nobody has
// settings, but for the port: others may use the usual one.
TEST(Tour, ShowsWhatItPrints)
{
    const std::uint16_t port = free_port();
    SettingsFile settings("");
    settings.write("<velmo local=\"0000\"><server name=\"0000\" naming=\"" +
                   naming_url(port) + "\"/></velmo>");
    TemporaryFolder folder;
    const std::string programs = (folder.path() / "bin").string();
    std::filesystem::create_directory(programs);
    // As typed without options it would listen on the usual port.
    std::ofstream(programs + "/velmod")
        << "#!/bin/sh\nexec " << velmod_path() << " --no-unix --listen 127.0.0.1:" << port
        << " \"$@\"\n";
    std::filesystem::permissions(programs + "/velmod", std::filesystem::perms::owner_all);
    std::filesystem::create_symlink(velmo_command({}).front(), programs + "/velmo");

    Process::Environment environment = plain_environment();
    environment["PATH"] = programs + ":/usr/bin:/bin";
    environment["TMPDIR"] = folder.path().string();
    Process tour({"/bin/bash", CHECK_TOUR, TOUR}, environment);
    EXPECT_EQ(tour.wait(std::chrono::minutes(2)), 0) << tour.out() << tour.err();
}

} // namespace
