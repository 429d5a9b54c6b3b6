// Realms of a server.
#include "tests/e2e/one_server.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;

namespace {

Names realms(const char* server = nullptr)
{
    return listed([&](NameList* list) { return vl_releam_seq(list, server); });
}

class Realms : public OneServer {
protected:
    Realms() : OneServer({"--realm", "R", "--realm", "plant/north"}) {}
};

TEST_F(Realms, AreListed)
{
    EXPECT_EQ(realms(), (Names{"ROOT", "R", "plant/north"}));
    EXPECT_EQ(realms("S"), (Names{"ROOT", "R", "plant/north"}));
}

TEST(RealmList, ServerThatCannotBeReachedHasTheRootRealm)
{
    SettingsFile settings("", {{"S", naming_url(free_port())}});
    EXPECT_EQ(realms("S"), Names{"ROOT"});
}

TEST(RealmList, ListIsRefusedWhereItHasNowhereToGo)
{
    EXPECT_EQ(vl_releam_seq(nullptr, "S"), 137);
}

TEST_F(Realms, EachHasPortsOfItsOwn)
{
    EXPECT_EQ(create_port("p", 1), VL_OK);
    EXPECT_EQ(create_port("p", 1, 0, "R"), VL_OK);
    EXPECT_EQ(create_port("p", 1, 0, "plant/north"), VL_OK);
    EXPECT_EQ(create_port("p", 1, 0, "R"), OBJECT_ALREADY_EXSIT);
    ASSERT_EQ(send(1, "to R", 0, "R"), VL_OK);
    EXPECT_EQ(receive(1), "[2002]");
    EXPECT_EQ(receive(1, 0, 0, "plant/north"), "[2002]");
    EXPECT_EQ(receive(1, 0, 0, "R"), "to R");
}

TEST_F(Realms, EachHasPointsOfItsOwn)
{
    ASSERT_EQ(create_point("p", "text"), VL_OK);
    ASSERT_EQ(create_point("p", "int8", "R"), VL_OK);
    ASSERT_EQ(set_point("p", "unnamed"), VL_OK);
    ASSERT_EQ(set_point("p", "R", "R"), VL_OK);
    EXPECT_EQ(point_info("p"), "text||unnamed");
    EXPECT_EQ(point_info("p", "R"), "int8||R");
    EXPECT_EQ(get_point("p", "plant/north"), "[4002]");
    EXPECT_EQ(all_points("plant/north"), Names{});
}

TEST_F(Realms, EachHasEventsOfItsOwn)
{
    ASSERT_EQ(declare_event(7, ""), VL_OK);
    ASSERT_EQ(add_event("e", 7), VL_OK);
    ASSERT_EQ(raise_event("e"), VL_OK);
    EXPECT_EQ(vl_add_event("e", 7, nullptr, "R"), NO_MATCH_EVENT_CODE);
    ASSERT_EQ(vl_declare_event(7, nullptr, 0, nullptr, "R"), VL_OK);
    ASSERT_EQ(vl_add_event("e", 7, nullptr, "R"), VL_OK);
    int count = 99;
    EXPECT_EQ(vl_event_count("e", &count, nullptr, "R"), VL_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(event_count("e"), "1");
}

TEST_F(Realms, EachHasContendersOfItsOwn)
{
    ASSERT_EQ(regist("g", "a", 1), VL_OK);
    EXPECT_EQ(vl_update_contender("g", "a", nullptr, nullptr, "R"), CONTENDER_IS_NUL);
    ASSERT_EQ(vl_regist_contender("g", "b", nullptr, 0, nullptr, 0, nullptr, "R"), VL_OK);
    EXPECT_EQ(get_point("$SYS/contention/g/master"), "a");
    EXPECT_EQ(get_point("$SYS/contention/g/master", "R"), "b");
    EXPECT_EQ(get_point("$SYS/contention/g/master", "plant/north"), "[4002]");
}

TEST_F(Realms, RootIsAnotherNameOfTheUnnamedOne)
{
    ASSERT_EQ(create_point("p"), VL_OK);
    ASSERT_EQ(create_port("p", 1, 0, "ROOT"), VL_OK);
    ASSERT_EQ(vl_regist_contender("g", "a", nullptr, 0, nullptr, 0, nullptr, "ROOT"),
              VL_OK);
    EXPECT_EQ(all_points("ROOT"), Names{"p"});
    EXPECT_EQ(create_port("p", 1, 0, ""), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(update("g", "a"), VL_OK);
    EXPECT_EQ(listed([](NameList* list) {
                  return vl_get_query_data_type(list, nullptr, "ROOT");
              }).size(),
              13u);
}

} // namespace
