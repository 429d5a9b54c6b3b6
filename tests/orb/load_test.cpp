// Loading the library does nothing that a process could notice.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "tests/support/loopback.h"
#include "tests/support/settings_file.h"
#include "vl_api.h"

using namespace velmo::tests;

namespace {

// What a process has, beside memory.
struct Belongings {
    Belongings()
    {
        for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task"))
            threads.insert(thread.path().filename());
        for (int fd = 0; fd < 1024; ++fd) {
            std::error_code closed;
            const std::string link = "/proc/self/fd/" + std::to_string(fd);
            const auto target = std::filesystem::read_symlink(link, closed);
            if (!closed)
                descriptors[fd] = target;
        }
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);)
            if (line.compare(0, 3, "Sig") == 0 && line.compare(0, 4, "SigQ") != 0)
                signals += line + "\n";
        for (char** variable = environ; *variable; ++variable)
            environment.insert(*variable);
        locale = std::setlocale(LC_ALL, nullptr);
        folder = std::filesystem::current_path();
    }

    std::set<std::string> threads;
    std::map<int, std::string> descriptors;
    std::string signals; // blocked, ignored, caught
    std::set<std::string> environment;
    std::string locale;
    std::string folder;
};

// Counts how often a file is opened.
class Openings {
public:
    explicit Openings(const std::string& path) : watch(inotify_init1(IN_NONBLOCK))
    {
        check_system_call(inotify_add_watch(watch.get(), path.c_str(), IN_OPEN) >= 0,
                          "inotify_add_watch");
    }

    bool any() const
    {
        char event[sizeof(inotify_event)];
        return read(watch.get(), event, sizeof event) > 0;
    }

private:
    Descriptor watch;
};

TEST(Load, StartsOpensAndChangesNothing)
{
    SilentListener naming;
    SettingsFile settings("local=\"S\"", {{"S", naming_url(naming.port())}});
    TemporaryFolder logs;
    setenv("VELMO_LOG", ("file:" + (logs.path() / "log").string()).c_str(), 1);
    const Openings settings_opened(settings.path());

    const Belongings before;
    void* const library = dlopen(LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const Belongings after;
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.signals, before.signals);
    EXPECT_EQ(after.environment, before.environment);
    EXPECT_EQ(after.locale, before.locale);
    EXPECT_EQ(after.folder, before.folder);
    EXPECT_FALSE(settings_opened.any());
    EXPECT_EQ(naming.connections(), 0u);
    EXPECT_TRUE(std::filesystem::is_empty(logs.path()));

    // The first calls do; else the above would tell nothing.
    setenv("VELMO_NAMING_TIMEOUT_MS", "100", 1);
    const auto connect =
        reinterpret_cast<decltype(&vl_mid_connect)>(dlsym(library, "vl_mid_connect"));
    ASSERT_NE(connect, nullptr);
    EXPECT_EQ(connect(nullptr), NAMING_SERVER_NOT_ONLINE);
    EXPECT_TRUE(settings_opened.any());
    EXPECT_GT(naming.connections(), 0u);
    EXPECT_NE(Belongings().descriptors, before.descriptors);
}

} // namespace
