// Events: declared, added, raised, counted and cleared.
#include <future>

#include "tests/e2e/one_server.h"

using namespace velmo::tests;

namespace {

constexpr unsigned int kind = 7;
const std::string most_data(1 << 20, 'x');

class Events : public OneServer {
protected:
    // The event "e", with "idle" for its default data.
    void SetUp() override
    {
        ASSERT_EQ(declare_event(kind, "idle"), VL_OK);
        ASSERT_EQ(add_event("e", kind), VL_OK);
    }

    // "COUNT DATA", as the server's own points tell it.
    static std::string state(const std::string& name)
    {
        return get_point("$SYS/events/" + name + "/count") + " " +
               get_point("$SYS/events/" + name + "/data");
    }
};

TEST_F(Events, AreCountedAndKeepTheDataOfTheLastRaise)
{
    EXPECT_EQ(event_count("e"), "0");
    EXPECT_EQ(state("e"), "0 idle");
    EXPECT_EQ(raise_event("e", "happened"), VL_OK);
    EXPECT_EQ(event_count("e"), "1");
    EXPECT_EQ(state("e"), "1 happened");
    EXPECT_EQ(raise_event("e"), VL_OK) << "without data of its own";
    EXPECT_EQ(state("e"), "2 idle");
    EXPECT_EQ(raise_event("e", std::string("\0\xFF", 2)), VL_OK);
    EXPECT_EQ(state("e"), std::string("3 \0\xFF", 4));
    EXPECT_EQ(clear_event("e"), VL_OK);
    EXPECT_EQ(event_count("e"), "0");
    EXPECT_EQ(state("e"), "0 idle");
    EXPECT_EQ(get_point("$SYS/events/e/id"), "7");
}

TEST_F(Events, OfOneKindAreCountedEachByItself)
{
    ASSERT_EQ(add_event("f", kind), VL_OK);
    ASSERT_EQ(raise_event("e"), VL_OK);
    EXPECT_EQ(event_count("e"), "1");
    EXPECT_EQ(event_count("f"), "0");
}

TEST_F(Events, OfManyThreadsAreAllCounted)
{
    const auto raise_often = [] {
        for (int i = 0; i < 50; ++i)
            EXPECT_EQ(raise_event("e", "x"), VL_OK);
    };
    std::vector<std::future<void>> threads;
    for (int i = 0; i < 4; ++i)
        threads.push_back(std::async(std::launch::async, raise_often));
    for (auto& thread : threads)
        thread.get();
    EXPECT_EQ(event_count("e"), "200");
}

TEST_F(Events, AreDeclaredOnceAndForGood)
{
    EXPECT_EQ(declare_event(kind, "other"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(state("e"), "0 idle");
    for (const unsigned int id : {0u, 0xFFFFFFFFu}) {
        EXPECT_EQ(add_event("f", id), NO_MATCH_EVENT_CODE);
        EXPECT_EQ(declare_event(id, ""), VL_OK);
        EXPECT_EQ(add_event("of " + std::to_string(id), id), VL_OK);
        EXPECT_EQ(state("of " + std::to_string(id)), "0 ");
    }
    EXPECT_EQ(event_count("f"), "[3011]");
}

TEST_F(Events, ThatCannotBeAdded)
{
    EXPECT_EQ(add_event("e", kind), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(add_event("", kind), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(vl_add_event(nullptr, kind, nullptr, nullptr), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(add_event(std::string(256, 'n'), kind), PARAMETER_ERROR);
    EXPECT_EQ(add_event(most_data, kind), PARAMETER_ERROR);
    EXPECT_EQ(add_event("f", kind + 1), NO_MATCH_EVENT_CODE);
    EXPECT_EQ(add_event("", kind + 1), INVAILD_NULL_PARAMETER) << "looked at first";
    EXPECT_EQ(add_event("e", kind + 1), NO_MATCH_EVENT_CODE);
    EXPECT_EQ(points_of("$SYS"),
              (Names{"$SYS/events/e/count", "$SYS/events/e/data", "$SYS/events/e/id"}));
}

TEST_F(Events, ThatAreUnknown)
{
    for (const std::string& name : {std::string(), std::string("f"), most_data}) {
        EXPECT_EQ(raise_event(name, "x"), EVENT_DECLARE_NUL);
        EXPECT_EQ(clear_event(name), EVENT_DECLARE_NUL);
        int count = 99;
        EXPECT_EQ(vl_event_count(name.c_str(), &count, nullptr, nullptr),
                  EVENT_DECLARE_NUL);
        EXPECT_EQ(count, 0) << "what the server answers";
    }
    EXPECT_EQ(vl_send_event(nullptr, "x", 1, nullptr, nullptr), EVENT_DECLARE_NUL);
}

TEST_F(Events, UnusualNamesAreNamesLikeOthers)
{
    for (const std::string& name : unusual_names) {
        ASSERT_EQ(add_event(name, kind), VL_OK) << name;
        EXPECT_EQ(raise_event(name, name), VL_OK);
    }
    for (const std::string& name : unusual_names)
        EXPECT_EQ(state(name), "1 " + name);
}

TEST_F(Events, DataHaveALimit)
{
    EXPECT_EQ(declare_event(8, most_data), VL_OK);
    EXPECT_EQ(declare_event(9, most_data + "x"), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(declare_event(kind, most_data + "x"), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(add_event("f", 9), NO_MATCH_EVENT_CODE);
    EXPECT_EQ(raise_event("f", most_data + "x"), EVENT_DECLARE_NUL);
    EXPECT_EQ(raise_event("e", most_data), VL_OK);
    EXPECT_EQ(raise_event("e", most_data + "x"), SIZE_IS_NOT_MATCH);
    EXPECT_TRUE(state("e") == "1 " + most_data);
}

TEST_F(Events, BadDataAreRefused)
{
    EXPECT_EQ(vl_declare_event(8, nullptr, 1, nullptr, nullptr), 126);
    EXPECT_EQ(vl_declare_event(8, "x", -1, nullptr, nullptr), 126);
    EXPECT_EQ(vl_send_event("e", nullptr, 1, nullptr, nullptr), 112);
    EXPECT_EQ(vl_send_event("e", "x", -1, nullptr, nullptr), 112);
    EXPECT_EQ(vl_event_count("e", nullptr, nullptr, nullptr), 153);
    EXPECT_EQ(event_count("e"), "0");
    EXPECT_EQ(vl_declare_event(8, nullptr, 0, nullptr, nullptr), VL_OK);
    EXPECT_EQ(vl_send_event("e", nullptr, 0, nullptr, nullptr), VL_OK);
}

} // namespace
