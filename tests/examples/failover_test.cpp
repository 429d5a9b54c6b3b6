// A master is killed, and another takes over.
#include <csignal>
#include <cstdint>
#include <cstring>
#include <sstream>

#include "tests/examples/example.h"
#include "tests/support/eventually.h"

using namespace velmo::tests;

namespace {

class Failover : public OneServer {
protected:
    Failover() : OneServer({"--lease", lease}) {}

    Process contender(const std::string& name, const std::string& priority)
    {
        return Process({example("failover"), name, priority, lease});
    }

    // The last one that the drive has followed a contender from; 0: none.
    static std::uint64_t epoch(const Process& drive, const std::string& contender)
    {
        const std::string begin = "follows " + contender + " from epoch ";
        std::uint64_t last = 0;
        std::istringstream lines(drive.out());
        for (std::string line; std::getline(lines, line);)
            if (line.compare(0, begin.size(), begin) == 0)
                last = std::stoull(line.substr(begin.size()));
        return last;
    }

    static constexpr const char* lease = "1500";
};

TEST_F(Failover, TheNextOneTakesOverWithAHigherEpoch)
{
    Process drive({example("failover"), "drive"});
    Process one = contender("one", "2");
    ASSERT_TRUE(eventually([&] { return epoch(drive, "one") > 0; })) << one.err();
    Process two = contender("two", "1");
    ASSERT_TRUE(eventually([] {
        return get_point("$SYS/contention/example drive/contenders/two/priority") == "1";
    }));
    one.signal(SIGKILL);
    one.wait();
    const std::uint64_t last = epoch(drive, "one");
    ASSERT_TRUE(eventually([&] { return epoch(drive, "two") > last; })) << drive.out();
    EXPECT_NE(two.out().find("two: master, epoch " + std::to_string(epoch(drive, "two"))),
              std::string::npos)
        << two.out();
    two.signal(SIGTERM);
    EXPECT_EQ(two.wait(), 0) << two.err();
    EXPECT_EQ(get_point("$SYS/contention/example drive/contenders"), "") << "withdrawn";
    drive.signal(SIGTERM);
    EXPECT_EQ(drive.wait(), 0) << drive.err();
}

TEST_F(Failover, TheDriveRefusesWhoIsMasterNoMore)
{
    Process drive({example("failover"), "drive"});
    Process one = contender("one", "2");
    ASSERT_TRUE(eventually([&] { return epoch(drive, "one") > 0; })) << one.err();
    const struct { // as the example has it
        std::uint64_t epoch = 1;
        char from[32] = "late";
    } order;
    std::string packet(sizeof order, '\0');
    std::memcpy(packet.data(), &order, sizeof order);
    ASSERT_EQ(send(1400, packet), VL_OK);
    EXPECT_TRUE(eventually([&] {
        return drive.out().find("refused late: its epoch 1 is over") != std::string::npos;
    })) << drive.out();
}

} // namespace
