// Realms of a server.

#include "vl_api.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/loopback.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"
#include "vl_util.h"

using namespace velmo::tests;

namespace {

std::vector<std::string> realms(const char* server)
{
    NameList list{99, nullptr};
    EXPECT_EQ(vl_releam_seq(&list, server), VL_OK);
    std::vector<std::string> names(list.names, list.names + list.count);
    for (unsigned int i = 0; i < list.count; ++i)
        vl_string_free(list.names[i]);
    vl_free_memory(reinterpret_cast<void**>(&list.names));
    return names;
}

TEST(Realms, AreListed)
{
    Velmod velmod({"--realm", "R", "--realm", "Q"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    EXPECT_EQ(realms("S"), (std::vector<std::string>{"ROOT", "R", "Q"}));
}

TEST(Realms, ServerThatCannotBeReachedHasTheRootRealm)
{
    SettingsFile settings("", {{"S", naming_url(free_port())}});
    EXPECT_EQ(realms("S"), std::vector<std::string>{"ROOT"});
}

TEST(Realms, ListIsRefusedWhereItHasNowhereToGo)
{
    EXPECT_EQ(vl_releam_seq(nullptr, "S"), 137);
}

TEST(Realms, EachHasPortsOfItsOwn)
{
    Velmod velmod({"--realm", "R"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    EXPECT_EQ(vl_create_port("p", 1, 0, "S", nullptr), VL_OK);
    EXPECT_EQ(vl_create_port("p", 1, 0, "S", "R"), VL_OK);
    EXPECT_EQ(vl_create_port("p", 1, 0, "S", "R"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(vl_create_port("p", 1, 0, "S", ""), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(vl_create_port("p", 1, 0, "S", "ROOT"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(vl_create_port("p", 1, 0, "S", "unknown"), VL_NO_REFERENCE);
}

} // namespace
