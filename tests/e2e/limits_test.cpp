// What a server does not take gives a code, and costs nothing that was there before.
#include <utility>

#include "tests/e2e/one_server.h"

using namespace velmo::tests;

namespace {

constexpr unsigned int short_wait = 20;

class FewPoints : public OneServer {
protected:
    FewPoints() : OneServer({"--max-points", "3", "--realm", "R"}) {}
};

TEST_F(FewPoints, BeyondThemNoneCanBeCreated)
{
    ASSERT_EQ(create_set("s", "text", "1\n2"), VL_OK);
    EXPECT_EQ(create_set("t", "text", "1\n2"), CREATE_DATAPOINT_FAI) << "all or none";
    ASSERT_EQ(create_point("p"), VL_OK);
    EXPECT_EQ(create_point("q"), CREATE_DATAPOINT_FAI);
    EXPECT_EQ(create_point("p"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(all_points(), (Names{"p", "s/1", "s/2"}));
    EXPECT_EQ(create_point("q", "text", "R"), VL_OK) << "each realm has its own three";
    ASSERT_EQ(vl_remove_template_point("p", nullptr, nullptr), VL_OK);
    EXPECT_EQ(create_point("q"), VL_OK);
}

class SmallMessages : public OneServer {
protected:
    SmallMessages() : OneServer({"--max-message", "1000"}) {}

    const std::string most = std::string(1000, 'x');
    const std::string too_much = std::string(1001, 'x');
};

TEST_F(SmallMessages, MoreDataAreRefusedBeforeAnythingElse)
{
    EXPECT_EQ(set_point("none", too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(create_set("", "", too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(send(99, too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(send_to_front(99, too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(reply(99, too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(declare_event(7, too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(raise_event("none", too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(regist("", "", 0, too_much), SIZE_IS_NOT_MATCH);
}

TEST_F(SmallMessages, AsMuchAsMayBeIsTaken)
{
    ASSERT_EQ(create_point("p"), VL_OK);
    EXPECT_EQ(set_point("p", most), VL_OK);
    EXPECT_EQ(set_point("p", too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(get_point("p"), most);
    ASSERT_EQ(create_port("p", 1), VL_OK);
    EXPECT_EQ(send(1, most), VL_OK);
    EXPECT_EQ(receive(1), most);
    EXPECT_EQ(reply(1, too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(reply(1, most), VL_OK) << "the packet still could be answered";
    EXPECT_EQ(receive_reply(1), most);
    ASSERT_EQ(declare_event(7, most), VL_OK);
    ASSERT_EQ(add_event("e", 7), VL_OK);
    EXPECT_EQ(raise_event("e", most), VL_OK);
    EXPECT_EQ(raise_event("e", too_much), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(event_count("e"), "1");
    EXPECT_EQ(regist("g", "c", 1, most), VL_OK);
}

class SmallQueues : public OneServer {
protected:
    SmallQueues() : OneServer({"--max-queue-bytes", "10"}) {}
};

TEST_F(SmallQueues, PacketsHaveToFitIn)
{
    ASSERT_EQ(create_port("p", 1), VL_OK);
    EXPECT_EQ(send(99, std::string(11, 'x')), INVAILD_PORT_HANDLE);
    EXPECT_EQ(send(1, std::string(11, 'x')), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(send_to_front(1, std::string(11, 'x')), SIZE_IS_NOT_MATCH);
    ASSERT_EQ(send(1, "123456"), VL_OK);
    EXPECT_EQ(send(1, "12345"), WOULD_BLOCK);
    EXPECT_EQ(send(1, "12345", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(send_to_front(1, "12345"), WOULD_BLOCK);
    EXPECT_EQ(send_to_front(1, "12345", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(send(1, "1234"), VL_OK) << "there was room for this one";
    EXPECT_EQ(receive(1), "123456");
    EXPECT_EQ(receive(1), "1234");
}

TEST_F(SmallQueues, RepliesHaveToFitIn)
{
    ASSERT_EQ(create_port("p", 1), VL_OK);
    EXPECT_EQ(reply(1, std::string(11, 'x')), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(reply(1, "x"), NON_EXIST_DATA);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(send(1, "question"), VL_OK);
        ASSERT_EQ(receive(1), "question");
    }
    EXPECT_EQ(reply(1, std::string(11, 'x')), SIZE_IS_NOT_MATCH);
    ASSERT_EQ(reply(1, "123456"), VL_OK);
    EXPECT_EQ(reply(1, "12345"), WOULD_BLOCK);
    EXPECT_EQ(reply(1, "12345", short_wait), SENDMSG_TIMEOUT);
    EXPECT_EQ(reply(1, "1234"), VL_OK);
    EXPECT_EQ(receive_reply(1), "123456");
    EXPECT_EQ(receive_reply(1), "1234");
}

class ShortWaits : public OneServer {
protected:
    ShortWaits() : OneServer({"--max-wait", "20"}) {}
};

TEST_F(ShortWaits, NobodyWaitsLonger)
{
    constexpr unsigned int forever = 0xFFFFFFFF;
    ASSERT_EQ(create_port("p", 1, 1), VL_OK);
    EXPECT_EQ(receive(1, forever), "[2000]");
    EXPECT_EQ(receive_reply(1, forever), "[2016]");
    ASSERT_EQ(send(1, "x"), VL_OK);
    EXPECT_EQ(send(1, "y", forever), SENDMSG_TIMEOUT);
}

// ------------------------------------------------------- numbers of things

// The first code other than VL_OK for the numbers from 1 on, with its number.
template <class Create>
std::pair<int, int> first_refused(int most, Create create)
{
    for (int number = 1; number <= most + 1; ++number)
        if (const int code = create(number); code != VL_OK)
            return {number, code};
    return {0, VL_OK};
}

class Numbers : public OneServer {};

TEST_F(Numbers, OfDeclarations)
{
    EXPECT_EQ(first_refused(65536,
                            [](int number) {
                                return declare_event(static_cast<unsigned int>(number), "");
                            }),
              std::pair(65537, int{MEMORY_ALLOCATION_FAI}));
    EXPECT_EQ(declare_event(1, ""), OBJECT_ALREADY_EXSIT);
}

TEST_F(Numbers, OfEvents)
{
    ASSERT_EQ(declare_event(7, ""), VL_OK);
    EXPECT_EQ(first_refused(
                  65536, [](int number) { return add_event(std::to_string(number), 7); }),
              std::pair(65537, int{MEMORY_ALLOCATION_FAI}));
    EXPECT_EQ(raise_event("65536"), VL_OK);
}

TEST_F(Numbers, OfPorts)
{
    EXPECT_EQ(first_refused(100000,
                            [](int number) {
                                return create_port(std::to_string(number),
                                                   static_cast<unsigned int>(number));
                            }),
              std::pair(100001, int{MEMORY_ALLOCATION_FAI}));
    EXPECT_EQ(send(100000, "x"), VL_OK);
}

// None is over while a test runs.
class LongLeases : public OneServer {
protected:
    LongLeases() : OneServer({"--lease", "86400000"}) {}
};

TEST_F(LongLeases, ContendersOfAGroupAreAsManyAsMayBe)
{
    const auto stand = [](const char* group, int number) {
        return regist(group, std::to_string(number), 1);
    };
    EXPECT_EQ(first_refused(1000, [&](int number) { return stand("g", number); }),
              std::pair(1001, int{MEMORY_ALLOCATION_FAI}));
    EXPECT_EQ(stand("h", 1001), VL_OK);
    EXPECT_EQ(stand("g", 1), VL_OK) << "it stands already";
    EXPECT_EQ(withdraw("g", "1"), VL_OK);
    EXPECT_EQ(stand("g", 1001), VL_OK);
}

TEST_F(LongLeases, GroupsAreAsManyAsMayBe)
{
    EXPECT_EQ(first_refused(
                  10000, [](int number) { return regist(std::to_string(number), "c", 1); }),
              std::pair(10001, int{MEMORY_ALLOCATION_FAI}));
    EXPECT_EQ(withdraw("1", "c"), VL_OK);
    EXPECT_EQ(regist("new", "c", 1), VL_OK) << "that nobody stands in are forgotten";
}

} // namespace
