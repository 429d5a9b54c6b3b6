// velmod is killed under load, again and again, and what it has acknowledged is there.
//
// VELMO_KILLS says how often; a few times without it.
#include <chrono>
#include <cstdlib>
#include <future>
#include <list>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "tests/durability/load_client.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

constexpr int clients = 8;
constexpr int kills_in_short = 10;

int wanted_kills()
{
    const char* wanted = std::getenv("VELMO_KILLS");
    return wanted ? std::atoi(wanted) : kills_in_short;
}

class DurabilityKill : public ::testing::Test {
protected:
    DurabilityKill()
    {
        for (int i = 0; i < clients; ++i)
            all.emplace_back(i);
        start();
    }

    // On another port: a call on an old connection would fail for that alone.
    void start()
    {
        velmod.emplace(std::vector<std::string>{"--durable", "--data-dir", folder.path(),
                                                "--lease", "3600000"});
    }

    // Gives how many calls were answered before velmod was killed.
    std::size_t load_and_kill(std::chrono::microseconds after)
    {
        const Services services(velmod->naming_url());
        create_shared(services);
        std::list<std::future<std::size_t>> running;
        for (LoadClient& client : all)
            running.push_back(
                std::async(std::launch::async, [&] { return client.run(services); }));
        // Not for anything to happen: any moment is as good.
        std::this_thread::sleep_for(after);
        velmod->kill();
        std::size_t answers = 0;
        for (auto& client : running)
            answers += client.get();
        return answers;
    }

    Violations check()
    {
        const Services services(velmod->naming_url());
        Violations violations;
        for (LoadClient& client : all) {
            client.check(services, violations);
            for (const std::string& result : client.odd_results())
                violations.push_back(result);
        }
        check_shared_queue(services, violations);
        check_shared_event(services, violations);
        check_epoch(services, violations);
        return violations;
    }

    void check_shared_queue(const Services& services, Violations& violations)
    {
        std::vector<Sent> found;
        Velmo::DATA_BUFFER_var data;
        while (services.ports->receive_packet(shared::port, 0, data.out(), 0) == VL_OK)
            found.push_back(sent_in(data.in()));
        std::vector<const QueueLog*> logs{&former};
        for (const LoadClient& client : all)
            logs.push_back(&client.queue());
        check_queue(logs, found, violations);
        former.received.insert(former.received.end(), found.begin(), found.end());
    }

    void check_shared_event(const Services& services, Violations& violations)
    {
        CORBA::Long count = 0;
        services.ports->event_count(shared::event, count);
        std::vector<const CountLog*> logs;
        for (const LoadClient& client : all)
            logs.push_back(&client.count());
        check_count(logs, static_cast<std::uint64_t>(count), violations);
        // From here on that is known.
        for (LoadClient& client : all)
            client.count() = {};
        all.front().count().counted = static_cast<std::uint64_t>(count);
    }

    // A master after a restart has a higher one than whoever was master before.
    void check_epoch(const Services& services, Violations& violations)
    {
        const auto master = services.value("$SYS/contention/group/master");
        const auto epoch = services.value("$SYS/contention/group/epoch");
        if (!master || master->empty())
            return;
        for (const LoadClient& client : all)
            if (std::stoull(*epoch) <= client.highest_epoch())
                violations.push_back("epoch " + *epoch + " after " +
                                     std::to_string(client.highest_epoch()));
    }

    TemporaryFolder folder;
    std::optional<Velmod> velmod;
    std::list<LoadClient> all;
    QueueLog former; // what the checks before have received
};

TEST_F(DurabilityKill, NothingAcknowledgedIsLost)
{
    std::mt19937 random(std::random_device{}());
    std::uniform_int_distribution<int> microseconds(20000, 400000);
    const int kills = wanted_kills();
    std::size_t answers = 0;
    for (int i = 0; i < kills; ++i) {
        answers += load_and_kill(std::chrono::microseconds(microseconds(random)));
        start();
        const Violations violations = check();
        for (const std::string& violation : violations)
            ADD_FAILURE() << "kill " << i + 1 << ": " << violation;
        ASSERT_TRUE(violations.empty());
    }
    RecordProperty("kills", kills);
    RecordProperty("acknowledged", std::to_string(answers));
    std::printf("%d kills, %zu calls acknowledged\n", kills, answers);
    EXPECT_GT(answers, static_cast<std::size_t>(kills));
}

} // namespace
