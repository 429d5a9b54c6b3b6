// Which server and realm is meant.
#include "tests/e2e/one_server.h"
#include "tests/support/loopback.h"
#include "velmo/velmo.hpp"

using namespace velmo::tests;

namespace {

class CppServer : public OneServer {
protected:
    CppServer() : OneServer({"--realm", "test"}) {}
};

TEST_F(CppServer, NamesARealm)
{
    const velmo::Points here;
    const velmo::Points there({"S", "test"});
    ASSERT_TRUE(there.create("level", "float64"));
    EXPECT_TRUE(here.all()->empty());
    EXPECT_EQ(velmo::Points({"", "test"}).all()->size(), 1U);
    EXPECT_STREQ(there.server().name(), "S");
    EXPECT_EQ(here.server().realm(), nullptr);
    EXPECT_TRUE(velmo::Points({"S", "none"}).all().error() == VL_NO_REFERENCE);
}

TEST_F(CppServer, TellsWhetherItCanBeReached)
{
    EXPECT_TRUE(velmo::Server().connect());
    EXPECT_TRUE(velmo::Server("S").is_connected());
    EXPECT_EQ(velmo::Server("unknown").connect().code(), NAMING_SERVER_NOT_ONLINE);
    EXPECT_TRUE(velmo::Server("unknown").is_connected().error() ==
                velmo::Condition::not_reached);
    EXPECT_TRUE(velmo::disconnect());
    EXPECT_TRUE(velmo::Server().connect()) << "it closes nothing";
}

TEST_F(CppServer, ListsItsRealms)
{
    const auto realms = velmo::Server().realms();
    EXPECT_EQ(Names(realms->begin(), realms->end()), (Names{"ROOT", "test"}));
}

TEST_F(CppServer, IsFoundByItsPosition)
{
    const velmo::ServerNames own = velmo::servers_at("own");
    ASSERT_EQ(own.size(), 1U);
    EXPECT_STREQ(own[0], "S");
    EXPECT_EQ(Names(own.begin(), own.end()), Names{"S"});
    EXPECT_TRUE(velmo::servers_at(std::string("parent")).empty());
}

TEST(CppNoServer, IsACodeOfEveryCall)
{
    SettingsFile settings("local=\"S\"", {{"S", naming_url(free_port())}});
    EXPECT_TRUE(velmo::Ports().send(1, "x").error() == velmo::Condition::not_reached);
    EXPECT_TRUE(velmo::Points().all().error() == velmo::Condition::not_reached);
    EXPECT_THROW(velmo::Events().count("e").value(), std::system_error);
}

} // namespace
