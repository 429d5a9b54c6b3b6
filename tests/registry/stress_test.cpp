// Many threads on one registry: for the thread sanitizer above all.

#include <future>

#include "registry/vlServerReference.h"
#include "tests/registry/registry_test.h"

namespace velmo::tests {

namespace {

constexpr int threads = 8;
constexpr int rounds = 400;
constexpr int servers = 40;

class StressTest : public RegistryTest {
protected:
    StressTest()
    {
        naming.resolve_with([this](const std::string&, const std::string& name) {
            if (name.find(keys::port_service) != std::string::npos)
                return ports.reference();
            if (name.find(keys::data_template_point_service) != std::string::npos)
                return points.reference();
            if (name.find(keys::data_template_service) != std::string::npos)
                return templates.reference();
            return name.find(keys::contention_service) != std::string::npos
                       ? contention.reference()
                       : manager.reference();
        });
    }

    // Every thread meets every server, each in an order of its own.
    static std::string server(int thread, int round)
    {
        return "server " + std::to_string((round * (2 * thread + 1) + thread) % servers);
    }

    template <class Work>
    void run(Work work)
    {
        std::promise<void> start;
        const std::shared_future<void> started = start.get_future().share();
        std::vector<std::future<void>> running;
        for (int thread = 0; thread < threads; ++thread) {
            running.push_back(std::async(std::launch::async, [=] {
                started.wait();
                for (int round = 0; round < rounds; ++round)
                    work(thread, round);
            }));
        }
        start.set_value();
        for (auto& one : running)
            one.get();
    }
};

TEST_F(StressTest, new_servers_are_looked_up_by_many_threads_at_once)
{
    run([this](int thread, int round) {
        EXPECT_TRUE(get_port(server(thread, round).c_str(), nullptr));
    });
    EXPECT_EQ(registry.serverMap.size(), static_cast<std::size_t>(servers));
    for (const auto& entry : registry.serverMap)
        EXPECT_EQ(entry.second->portReferences.size(), 1u);
}

TEST_F(StressTest, look_ups_releases_and_lists_mix)
{
    run([this](int thread, int round) {
        const std::string name = server(thread, round);
        const char* const realm = round % 3 ? "alpha" : nullptr;
        switch ((round + thread) % 8) {
        case 0:
            registry.ReleasePortReference(name.c_str(), realm);
            break;
        case 1:
            registry.ReleaseDtReference(name.c_str(), realm);
            break;
        case 2:
            registry.releaseAllReference(name.c_str());
            break;
        case 3:
            EXPECT_LE(realms(name.c_str()).size(), 2u);
            break;
        case 4:
            EXPECT_TRUE(get_contention(name.c_str(), realm));
            registry.ReleaseContenterReference(name.c_str(), realm);
            break;
        case 5:
            EXPECT_TRUE(get_point(name.c_str(), realm));
            registry.ReleaseDtpReference(name.c_str(), realm);
            break;
        case 6:
            EXPECT_TRUE(get_manager(name.c_str()));
            EXPECT_EQ(registry.InquireServerNameWithPosition("own").size(), 1u);
            break;
        default:
            EXPECT_TRUE(get_template(name.c_str(), realm));
        }
        EXPECT_TRUE(get_port(name.c_str(), realm));
    });
    EXPECT_EQ(registry.serverMap.size(), static_cast<std::size_t>(servers));
}

TEST_F(StressTest, rebuilds_come_in_between)
{
    run([this](int thread, int round) {
        if (thread == 0)
            registry.BuildSettingData();
        else
            EXPECT_TRUE(get_port(server(thread, round).c_str(), nullptr));
    });
}

} // namespace

} // namespace velmo::tests
