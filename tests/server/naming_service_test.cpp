// Two servers of two realms each in one naming service, over restarts of either side.
#include <gtest/gtest.h>

#include <csignal>

#include "tests/server/client.h"
#include "tests/support/omni_names.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

const std::vector<std::string> realms{"", "ROOT/", "alpha/", "plant/north/"};
const std::vector<std::string> realm_keys{
    keys::port_service, keys::data_template_point_service, keys::data_template_service,
    keys::contention_service};

class NamingService : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!OmniNames::available())
            GTEST_SKIP() << "omniNames is not installed";
        names.emplace();
        url = names->naming_url();
        a.emplace(arguments("servers/a"));
        b.emplace(arguments("servers/b"));
    }

    std::vector<std::string> arguments(const std::string& root) const
    {
        return {"--naming",
                "corbaname::1.2@127.0.0.1:" + std::to_string(names->port()) +
                    "/NameService#" + root,
                "--realm",
                "alpha",
                "--realm",
                "plant/north"};
    }

    // Whether every service of a server is bound, and none of the other's instead.
    bool complete(const std::string& root,
                  const std::vector<std::string>& of_realms = realms)
    {
        for (const std::string& realm : of_realms)
            for (const std::string& key : realm_keys)
                if (!is_bound(url, root + "/" + realm + key))
                    return false;
        return is_bound(url, root + "/" + keys::service_manager);
    }

    bool bound_nowhere(const std::string& root)
    {
        for (const std::string& realm : realms)
            for (const std::string& key : realm_keys)
                if (is_bound(url, root + "/" + realm + key))
                    return false;
        return !is_bound(url, root + "/" + keys::service_manager);
    }

    Port_Factory_var ports(const std::string& root, const std::string& realm) const
    {
        return port_service(url, root + "/" + realm);
    }

    static std::string log(Velmod& velmod) { return velmod.process().err(); }

    static bool contains(const std::string& text, const std::string& part)
    {
        return text.find(part) != std::string::npos;
    }

    std::optional<OmniNames> names;
    std::string url;
    std::optional<Velmod> a, b;
};

TEST_F(NamingService, EveryServiceOfEveryRealmIsBoundAndLeadsToItsServer)
{
    EXPECT_TRUE(complete("servers/a"));
    EXPECT_TRUE(complete("servers/b"));
    EXPECT_EQ(ports("servers/a", "alpha/")->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(ports("servers/a", "alpha/")->create_port("p", 1, 0), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(ports("servers/a", "plant/north/")->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(ports("servers/b", "alpha/")->create_port("p", 1, 0), VL_OK);
}

TEST_F(NamingService, RootIsTheUnnamedRealm)
{
    EXPECT_EQ(ports("servers/a", "")->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(ports("servers/a", "ROOT/")->create_port("p", 1, 0), OBJECT_ALREADY_EXSIT);
}

TEST_F(NamingService, ACleanStopUnbindsEverythingOfThatServerAlone)
{
    EXPECT_EQ(a->stop(), 0);
    EXPECT_TRUE(bound_nowhere("servers/a"));
    EXPECT_TRUE(complete("servers/b"));
}

TEST_F(NamingService, OneThatBeginsAnewIsFilledAgainByBoth)
{
    names->kill();
    names->restart_empty();
    EXPECT_TRUE(eventually_answered([&] { return complete("servers/a"); }));
    EXPECT_TRUE(eventually_answered([&] { return complete("servers/b"); }));
    EXPECT_EQ(ports("servers/a", "alpha/")->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(ports("servers/b", "alpha/")->create_port("p", 1, 0), VL_OK);
    EXPECT_TRUE(eventually([&] { return contains(log(*a), "again=yes"); })) << log(*a);
    EXPECT_EQ(a->stop(), 0);
    EXPECT_TRUE(bound_nowhere("servers/a"));
}

TEST_F(NamingService, OneThatWasAwayIsToldOnceAndFoundAgain)
{
    names->kill();
    EXPECT_TRUE(eventually([&] { return contains(log(*a), "event=naming-lost"); }));
    names->restart_empty();
    EXPECT_TRUE(eventually([&] { return contains(log(*a), "event=naming-found"); }));
    EXPECT_TRUE(eventually_answered([&] { return complete("servers/a"); }));
    const std::string text = log(*a);
    EXPECT_EQ(text.find("event=naming-lost"), text.rfind("event=naming-lost"));
}

TEST_F(NamingService, ANameThatSomebodyRemovesComesBack)
{
    CosNaming::NamingContext_var root = naming_context(url);
    const std::string name = "servers/a/alpha/" + realm_keys[1];
    root->unbind(util::name_of_path(name));
    EXPECT_FALSE(is_bound(url, name));
    EXPECT_TRUE(eventually([&] { return is_bound(url, name); }));
}

TEST_F(NamingService, ANameThatAnotherServerHasIsNotTakenBack)
{
    // Whoever has begun last has the names; the other one restores what is missing.
    Velmod second(arguments("servers/a"));
    CosNaming::NamingContext_var root = naming_context(url);
    root->unbind(util::name_of_path("servers/a/alpha/" + realm_keys[0]));
    EXPECT_TRUE(eventually([&] { return contains(log(*a) + log(second), "again=yes"); }));
    ASSERT_EQ(ports("servers/a", "")->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(a->stop(), 0);
    EXPECT_EQ(ports("servers/a", "")->create_port("p", 1, 0), OBJECT_ALREADY_EXSIT);
}

TEST_F(NamingService, AServerThatWasKilledBindsAnew)
{
    a->kill();
    a->restart();
    EXPECT_TRUE(complete("servers/a"));
    EXPECT_EQ(ports("servers/a", "alpha/")->create_port("p", 1, 0), VL_OK);
}

TEST(PersistentReferences, OutliveARestartOnTheSameEndpoint)
{
    Velmod velmod({"--realm", "alpha"});
    std::vector<Port_Factory_var> old;
    for (const char* realm : {"", "alpha/"})
        old.push_back(port_service(velmod.naming_url(), realm));
    CORBA::Object_var manager = resolve(velmod.naming_url(), keys::service_manager);
    velmod.kill();
    velmod.restart();
    for (Port_Factory_var& ports : old) {
        EXPECT_TRUE(eventually_answered(
            [&] { return ports->disconnect_port(1) == INVAILD_PORT_HANDLE; }));
        EXPECT_EQ(ports->create_port("p", 1, 0), VL_OK);
    }
    EXPECT_TRUE(eventually_answered([&] { return !manager->_non_existent(); }));
}

// Generous, but below what each call to the naming service might take.
constexpr std::chrono::seconds short_end{20};

TEST_F(NamingService, OneThatHangsDoesNotHoldUpTheEnd)
{
    names->process().suspend();
    EXPECT_TRUE(eventually([&] { return contains(log(*a), "event=naming-lost"); }));
    for (Velmod* velmod : {&*a, &*b}) {
        velmod->process().signal(SIGTERM);
        EXPECT_EQ(velmod->process().wait(short_end), 0);
        EXPECT_TRUE(contains(log(*velmod), "cannot-withdraw")) << log(*velmod);
    }
}

} // namespace
