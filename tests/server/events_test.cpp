// Events: declared, added, raised, counted, cleared, saved, followed.
#include "tests/server/event_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Events : public EventFixture {
protected:
    using EventFixture::EventFixture;

    std::string point(const std::string& name) const
    {
        return model::EventPoints(events).read(name).value_or("none");
    }
};

model::EventLimits narrow()
{
    model::EventLimits limits;
    limits.max_declarations = 2;
    limits.max_events = 2;
    limits.data_bytes = 4;
    return limits;
}

class EventsWithinLimits : public Events {
protected:
    EventsWithinLimits() : Events(narrow()) {}
};

TEST_F(Events, ADeclarationIsMadeOnce)
{
    EXPECT_EQ(declare(7, "idle"), VL_OK);
    EXPECT_EQ(declare(7, "idle"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(declare(7, "other"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(declare(8, "idle"), VL_OK) << "another id";
    ASSERT_EQ(events.add_event("e", 7), VL_OK);
    EXPECT_EQ(state("e"), "0 idle") << "the first one holds";
}

TEST_F(Events, AnyIdAndAnyDataCanBeDeclared)
{
    EXPECT_EQ(declare(0, ""), VL_OK);
    EXPECT_EQ(declare(0xFFFFFFFF, std::string("\0\xff", 2)), VL_OK);
    ASSERT_EQ(events.add_event("e", 0xFFFFFFFF), VL_OK);
    EXPECT_EQ(state("e"), std::string("0 \0\xff", 4));
}

TEST_F(Events, ThereIsOneKind)
{
    for (const std::int32_t kind : {0, 2, -1})
        EXPECT_EQ(declare(7, "idle", kind), PARAMETER_ERROR) << kind;
    EXPECT_EQ(events.add_event("e", 7), NO_MATCH_EVENT_CODE) << "nothing was declared";
}

TEST_F(Events, AnEventNeedsADeclaredId)
{
    EXPECT_EQ(events.add_event("e", 7), NO_MATCH_EVENT_CODE);
    declare(7, "idle");
    EXPECT_EQ(events.add_event("e", 8), NO_MATCH_EVENT_CODE);
    EXPECT_EQ(events.add_event("e", 7), VL_OK);
}

TEST_F(Events, AnEventsNameIsLikeThatOfAPort)
{
    declare(7, "idle");
    EXPECT_EQ(events.add_event("", 7), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(events.add_event(std::string(256, 'n'), 7), PARAMETER_ERROR);
    EXPECT_EQ(events.add_event(std::string(255, 'n'), 7), VL_OK);
    EXPECT_EQ(events.add_event("a/b\n\xff", 7), VL_OK);
    EXPECT_EQ(events.add_event("a/b\n\xff", 7), OBJECT_ALREADY_EXSIT);
    declare(8, "other");
    EXPECT_EQ(events.add_event("a/b\n\xff", 8), OBJECT_ALREADY_EXSIT);
}

TEST_F(Events, RaisingCountsAndKeepsTheLastData)
{
    add({"e", "other"});
    EXPECT_EQ(state("e"), "0 idle");
    EXPECT_EQ(raise("e", "first"), VL_OK);
    EXPECT_EQ(state("e"), "1 first");
    EXPECT_EQ(raise("e", "second"), VL_OK);
    EXPECT_EQ(state("e"), "2 second");
    EXPECT_EQ(state("other"), "0 idle");
}

TEST_F(Events, RaisingWithNoDataMeansTheDefaultOnes)
{
    add({"e"});
    ASSERT_EQ(raise("e", "first"), VL_OK);
    EXPECT_EQ(raise("e"), VL_OK);
    EXPECT_EQ(state("e"), "2 idle");
}

TEST_F(Events, TheCountIsTold)
{
    add({"e"});
    std::uint64_t count = 99;
    EXPECT_EQ(events.event_count("e", count), VL_OK);
    EXPECT_EQ(count, 0u);
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(raise("e"), VL_OK);
    EXPECT_EQ(events.event_count("e", count), VL_OK);
    EXPECT_EQ(count, 3u);
}

TEST_F(Events, ClearingMakesAnEventWhatItWas)
{
    add({"e"});
    ASSERT_EQ(raise("e", "first"), VL_OK);
    EXPECT_EQ(events.clear_event("e"), VL_OK);
    EXPECT_EQ(state("e"), "0 idle");
    EXPECT_EQ(events.clear_event("e"), VL_OK) << "again";
    EXPECT_EQ(raise("e", "second"), VL_OK);
    EXPECT_EQ(state("e"), "1 second");
}

TEST_F(Events, AnEventThatIsNotThereHasItsCode)
{
    for (const bool declared : {false, true}) {
        if (declared)
            declare(7, "idle");
        std::uint64_t count = 99;
        EXPECT_EQ(raise("e"), EVENT_DECLARE_NUL);
        EXPECT_EQ(events.event_count("e", count), EVENT_DECLARE_NUL);
        EXPECT_EQ(count, 99u);
        EXPECT_EQ(events.clear_event("e"), EVENT_DECLARE_NUL);
        EXPECT_EQ(state("e"), "none");
    }
}

TEST_F(EventsWithinLimits, ThereAreSoManyDeclarationsAndEvents)
{
    EXPECT_EQ(declare(1, ""), VL_OK);
    EXPECT_EQ(declare(2, ""), VL_OK);
    EXPECT_EQ(declare(3, ""), MEMORY_ALLOCATION_FAI);
    EXPECT_EQ(declare(2, ""), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(events.add_event("a", 1), VL_OK);
    EXPECT_EQ(events.add_event("b", 1), VL_OK);
    EXPECT_EQ(events.add_event("c", 1), MEMORY_ALLOCATION_FAI);
    EXPECT_EQ(events.add_event("b", 1), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(events.names(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(EventsWithinLimits, LargerDataChangeNothing)
{
    EXPECT_EQ(declare(1, "12345"), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(declare(1, "1234"), VL_OK);
    ASSERT_EQ(events.add_event("e", 1), VL_OK);
    EXPECT_EQ(raise("e", "12345"), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(state("e"), "0 1234");
    EXPECT_EQ(raise("e", "abcd"), VL_OK);
}

// ---------------------------------------------------------------- points

TEST_F(Events, CanBeFollowedAsPoints)
{
    add({"e", "a/data"});
    ASSERT_EQ(raise("e", "first"), VL_OK);
    EXPECT_EQ(point("$SYS/events/e/id"), "7");
    EXPECT_EQ(point("$SYS/events/e/count"), "1");
    EXPECT_EQ(point("$SYS/events/e/data"), "first");
    EXPECT_EQ(point("$SYS/events/a/data/data"), "idle") << "a name with a slash";
    EXPECT_EQ(point("$SYS/events/a/data"), "none");
    for (const char* name :
         {"$SYS/events/", "$SYS/events/e", "$SYS/events/e/", "$SYS/events/e/size",
          "$SYS/events/x/count", "$SYS/ports/e/id"})
        EXPECT_EQ(point(name), "none") << name;
    std::vector<std::string> names{"before"};
    model::EventPoints(events).list(names);
    EXPECT_EQ(names, (std::vector<std::string>{
                         "before", "$SYS/events/a/data/id", "$SYS/events/a/data/count",
                         "$SYS/events/a/data/data", "$SYS/events/e/id",
                         "$SYS/events/e/count", "$SYS/events/e/data"}));
}

// ---------------------------------------------------------------- images

TEST_F(Events, ComeBackAsTheyWereSaved)
{
    add({"e", "f"});
    declare(8, "never used");
    ASSERT_EQ(raise("e", "first"), VL_OK);
    const model::EventsImage saved = events.image();

    ASSERT_EQ(raise("e", "second"), VL_OK);
    ASSERT_EQ(events.clear_event("f"), VL_OK);
    declare(9, "");
    ASSERT_EQ(events.add_event("g", 9), VL_OK);
    EXPECT_FALSE(events.image() == saved);
    ASSERT_EQ(events.restore(saved), VL_OK);
    EXPECT_TRUE(events.image() == saved);
    EXPECT_EQ(state("e"), "1 first");
    EXPECT_EQ(state("g"), "none");
    ASSERT_EQ(events.clear_event("e"), VL_OK);
    EXPECT_EQ(state("e"), "0 idle") << "the default data as well";

    EXPECT_EQ(events.restore({}), VL_OK);
    EXPECT_EQ(state("e"), "none");
}

TEST_F(EventsWithinLimits, MoreThanTheLimitsComesBack)
{
    model::EventsImage image;
    for (model::EventId id = 0; id < 3; ++id)
        image.declarations.push_back({id, bytes_of("12345")});
    EXPECT_EQ(events.restore(image), VL_OK);
    EXPECT_TRUE(events.image() == image);
    EXPECT_EQ(declare(9, ""), MEMORY_ALLOCATION_FAI);
}

TEST_F(Events, AnImpossibleImageChangesNothing)
{
    add({"e"});
    const model::EventsImage good = events.image();
    const auto refuses = [&](auto damage) {
        model::EventsImage bad = good;
        damage(bad);
        return events.check(bad) == MIDPLUSDATA_IS_BAD &&
               events.restore(bad) == MIDPLUSDATA_IS_BAD && events.image() == good;
    };
    using Image = model::EventsImage;
    EXPECT_EQ(events.check(good), VL_OK);
    EXPECT_TRUE(refuses([](Image& i) { i.declarations.push_back(i.declarations[0]); }));
    EXPECT_TRUE(refuses([](Image& i) { i.declarations[0].data = nullptr; }));
    EXPECT_TRUE(refuses([](Image& i) { i.declarations.clear(); }));
    EXPECT_TRUE(refuses([](Image& i) { i.events.push_back(i.events[0]); }));
    EXPECT_TRUE(refuses([](Image& i) { i.events[0].data = nullptr; }));
    EXPECT_TRUE(refuses([](Image& i) { i.events[0].name = ""; }));
    EXPECT_TRUE(refuses([](Image& i) { i.events[0].name = std::string(256, 'n'); }));
}

} // namespace
