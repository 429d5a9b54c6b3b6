// Ports as system points, and in numbers.
#include "server/model/port_points.h"
#include "tests/server/port_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class PortPoints : public PortFixture {
protected:
    std::string point(const std::string& rest) const
    {
        return model::PortPoints(ports).read("$SYS/ports/" + rest).value_or("none");
    }
};

TEST_F(PortPoints, TellAboutAPort)
{
    create({17}, 5);
    create({2});
    for (const char* text : {"a", "bcd"})
        ASSERT_EQ(send(17, text), VL_OK);
    EXPECT_EQ(point("p17/handle"), "17");
    EXPECT_EQ(point("p17/capacity"), "5");
    EXPECT_EQ(point("p17/depth"), "2");
    EXPECT_EQ(point("p17/bytes"), "4");
    EXPECT_EQ(point("p17/replies"), "0");
    EXPECT_EQ(point("p17/waiting"), "0");
    EXPECT_EQ(point("p17/host"), "");
    EXPECT_EQ(point("p2/capacity"), std::to_string(model::PortLimits().default_capacity));
}

TEST_F(PortPoints, FollowWhatHappens)
{
    create({1, 2});
    ASSERT_EQ(connect(1, 2, from_host), VL_OK);
    ASSERT_EQ(ports.register_port_host("p1", "host.example"), VL_OK);
    EXPECT_EQ(point("p1/host"), "host.example");
    ASSERT_EQ(send(1, "question"), VL_OK);
    EXPECT_EQ(point("p2/depth"), "1");
    ASSERT_EQ(receive(2), "question");
    EXPECT_EQ(point("p2/depth"), "0");
    EXPECT_EQ(point("p2/bytes"), "0");
    ASSERT_EQ(reply(2, "answer"), VL_OK);
    EXPECT_EQ(point("p1/replies"), "1");
    auto receiver = waiting([this] { return receive(2, long_enough); });
    EXPECT_EQ(point("p2/waiting"), "1");
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(receiver.get(), "x");
    EXPECT_EQ(point("p2/waiting"), "0");
}

TEST_F(PortPoints, NamesMayHaveSlashes)
{
    ASSERT_EQ(ports.create_port("a", 1, 0), VL_OK);
    ASSERT_EQ(ports.create_port("a/handle", 2, 0), VL_OK);
    ASSERT_EQ(ports.create_port("/", 3, 0), VL_OK);
    EXPECT_EQ(point("a/handle"), "1");
    EXPECT_EQ(point("a/handle/handle"), "2");
    EXPECT_EQ(point("//handle"), "3");
}

TEST_F(PortPoints, AreNotThereForWhatIsNot)
{
    create({1});
    for (const char* rest : {"", "p1", "p1/", "/handle", "p2/handle", "p1/size"})
        EXPECT_EQ(point(rest), "none") << rest;
    EXPECT_EQ(model::PortPoints(ports).read("$SYS/events/p1/handle"), std::nullopt);
}

TEST_F(PortPoints, AreListedForEveryPort)
{
    create({1, 2});
    std::vector<std::string> names;
    model::PortPoints(ports).list(names);
    EXPECT_EQ(names.size(), 14u);
    for (const std::string& name : names)
        EXPECT_TRUE(model::PortPoints(ports).read(name)) << name;
}

TEST_F(PortPoints, TotalsCountEverything)
{
    create({1, 2, 3});
    ASSERT_EQ(connect(1, 2), VL_OK);
    ASSERT_EQ(connect(1, 3), VL_OK);
    ASSERT_EQ(send(1, "12345"), VL_OK);
    ASSERT_EQ(receive(3), "12345");
    ASSERT_EQ(reply(3, "678"), VL_OK);
    const model::PortTotals totals = ports.totals();
    EXPECT_EQ(totals.ports, 3u);
    EXPECT_EQ(totals.packets, 1u);
    EXPECT_EQ(totals.replies, 1u);
    EXPECT_EQ(totals.bytes, 8u);
}

} // namespace
