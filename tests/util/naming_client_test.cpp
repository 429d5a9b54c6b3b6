// The naming client against real naming services and against ports where there is
// none.

#include "vlNaming_Client.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <atomic>
#include <thread>
#include <vector>

#include "idl/service_keys.h"
#include "orb/client.h"
#include "tests/support/loopback.h"
#include "tests/support/omni_names.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"
#include "vlServerInfoXmlImpl.h"

using namespace velmo::tests;

namespace {

const char* const port_key = velmo::keys::port_service;

CORBA::Object_var look_up(const char* server, const char* name)
{
    return vlNaming_Client::GetInstance()->GetReferenceWithServerName(server, name);
}

bool found(const char* server, const char* name = port_key)
{
    return !CORBA::is_nil(look_up(server, name).in());
}

bool connected(const char* server)
{
    return vlNaming_Client::GetInstance()->isConnect(server) != nullptr;
}

// What a call on a port service gives: a port that exists already is an answer too.
CORBA::Long create_port(CORBA::Object_ptr object)
{
    auto ports = Velmo::DT_PORT_SVC::Port_Factory::_narrow(object);
    Velmo::DT_PORT_SVC::Port_Factory_var owned = ports;
    return owned->create_port("port", 1, 0);
}

TEST(NamingClient, FindsTheServicesOfVelmod)
{
    Velmod velmod({"--realm", "R"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    EXPECT_TRUE(found("S"));
    EXPECT_TRUE(found("S", "/R/ref_key_data_port_naming_service"));
    EXPECT_TRUE(found("S", "/ROOT/ref_key_data_port_naming_service"));
    EXPECT_TRUE(found("S", velmo::keys::service_manager));
    EXPECT_FALSE(found("S", "/other/ref_key_data_port_naming_service"));
    EXPECT_FALSE(found("S", "no such key"));
    EXPECT_STREQ(vlNaming_Client::GetInstance()->isConnect("S"),
                 velmod.naming_url().c_str());
    EXPECT_EQ(create_port(look_up("S", port_key).in()), 0);
}

TEST(NamingClient, FindsServicesInOmniNames)
{
    if (!OmniNames::available())
        GTEST_SKIP() << "omniNames is not installed";
    OmniNames names;
    Velmod velmod({"--naming", names.naming_url(), "--realm", "R"});
    SettingsFile settings("", {{"S", names.naming_url()}});
    EXPECT_TRUE(connected("S"));
    EXPECT_EQ(create_port(look_up("S", port_key).in()), 0);
    EXPECT_TRUE(found("S", "/R/ref_key_data_port_naming_service"));
}

TEST(NamingClient, ServersShareANamingServiceBelowContexts)
{
    if (!OmniNames::available())
        GTEST_SKIP() << "omniNames is not installed";
    OmniNames names;
    const std::string host = "corbaname::1.2@127.0.0.1:" + std::to_string(names.port());
    Velmod alpha({"--server", "alpha", "--naming", host + "#alpha"});
    Velmod beta({"--server", "beta", "--naming", host + "#beta"});
    SettingsFile settings(
        "", {{"A", host + "#alpha"}, {"B", host + "#beta"}, {"C", host + "#gamma"}});
    EXPECT_EQ(create_port(look_up("A", port_key).in()), 0);
    EXPECT_EQ(create_port(look_up("B", port_key).in()), 0) << "reached the other server";
    EXPECT_TRUE(connected("B"));
    EXPECT_FALSE(found("C"));
    EXPECT_FALSE(connected("C"));
}

TEST(NamingClient, RefusesAnObjectOfAnotherInterface)
{
    if (!OmniNames::available())
        GTEST_SKIP() << "omniNames is not installed";
    Velmod velmod;
    OmniNames names;
    SettingsFile settings("", {{"S", velmod.naming_url()}, {"N", names.naming_url()}});
    // The service manager under the key of the port service.
    CORBA::Object_var manager = look_up("S", velmo::keys::service_manager);
    int argc = 0;
    CORBA::ORB_var orb = CORBA::ORB_init(argc, nullptr);
    CORBA::Object_var object = orb->string_to_object(names.naming_url().c_str());
    CosNaming::NamingContext_var root = CosNaming::NamingContext::_narrow(object.in());
    CosNaming::Name name;
    name.length(1);
    name[0].id = port_key;
    root->bind(name, manager.in());

    EXPECT_TRUE(connected("N"));
    EXPECT_FALSE(found("N"));
}

TEST(NamingClient, KnowsNoServerThatTheSettingsDoNotList)
{
    Velmod velmod;
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    EXPECT_FALSE(found("T"));
    EXPECT_FALSE(connected("T"));
    EXPECT_FALSE(found(""));
    EXPECT_FALSE(found(nullptr));
    EXPECT_FALSE(connected(nullptr));
    EXPECT_FALSE(found("0000")) << "the stand-in for an own server is not one";
    EXPECT_FALSE(found("S", nullptr));
}

TEST(NamingClient, RefusedConnectionGivesNil)
{
    SettingsFile settings("", {{"S", naming_url(free_port())}});
    EXPECT_FALSE(found("S"));
    EXPECT_FALSE(connected("S"));
}

TEST(NamingClient, ListenerThatNeverAnswersCostsTheNamingTimeoutOnce)
{
    SilentListener listener;
    SettingsFile settings(
        "", {{"S", naming_url(listener.port()), "naming_timeout_ms=\"300\""}});
    EXPECT_FALSE(found("S"));
    const std::size_t asked = listener.connections();
    EXPECT_GE(asked, 1u);
    // It rests now: nobody asks it for a while.
    EXPECT_FALSE(found("S"));
    EXPECT_FALSE(connected("S"));
    EXPECT_EQ(listener.connections(), asked);
    // But not for ever.
    EXPECT_TRUE(eventually([&] {
        found("S");
        return listener.connections() > asked;
    }));
}

TEST(NamingClient, ManyCallersOfADeadNamingServiceMakeOneConnection)
{
    SilentListener listener;
    SettingsFile settings(
        "", {{"S", naming_url(listener.port()), "naming_timeout_ms=\"1000\""}});
    std::atomic<int> successes{0};
    std::vector<std::thread> callers;
    for (int i = 0; i < 8; ++i)
        callers.emplace_back([&] { successes += found("S"); });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(successes, 0);
    EXPECT_EQ(listener.connections(), 1u);
}

TEST(NamingClient, FindsARestartedServerAtTheFirstLookUp)
{
    Velmod velmod;
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    ASSERT_TRUE(found("S"));
    velmod.kill();
    EXPECT_FALSE(found("S"));
    EXPECT_FALSE(connected("S"));
    velmod.restart();
    EXPECT_TRUE(found("S"));
    velmod.kill();
    velmod.restart();
    EXPECT_TRUE(found("S")) << "the broken connection is the naming client's to mend";
}

TEST(NamingClient, FindsAServerInARestartedOmniNames)
{
    if (!OmniNames::available())
        GTEST_SKIP() << "omniNames is not installed";
    OmniNames names;
    Velmod velmod({"--naming", names.naming_url()});
    SettingsFile settings("", {{"S", names.naming_url()}});
    ASSERT_TRUE(found("S"));
    names.kill();
    EXPECT_FALSE(found("S"));
    names.restart();
    EXPECT_TRUE(found("S"));
}

TEST(NamingClient, CallsThroughItsReferencesTimeOut)
{
    Velmod velmod;
    SettingsFile settings("", {{"S", velmod.naming_url(), "call_timeout_ms=\"300\""}});
    CORBA::Object_var object = look_up("S", port_key);
    ASSERT_EQ(create_port(object.in()), 0);
    velmod.process().suspend();
    try {
        create_port(object.in());
        ADD_FAILURE() << "a stopped server answered";
    } catch (const CORBA::SystemException& error) {
        EXPECT_TRUE(velmo::orb::is_timeout(error)) << velmo::orb::describe(error);
    }
    velmod.process().signal(SIGCONT);
}

TEST(NamingClient, StoppedServerCostsTheNamingTimeout)
{
    Velmod velmod;
    SettingsFile settings("", {{"S", velmod.naming_url(), "naming_timeout_ms=\"300\""}});
    ASSERT_TRUE(found("S"));
    velmod.process().suspend();
    EXPECT_FALSE(found("S"));
    velmod.process().signal(SIGCONT);
    EXPECT_TRUE(eventually([] { return found("S"); }));
}

TEST(NamingClient, GoesByTheSettingsReadLast)
{
    Velmod velmod;
    SettingsFile settings("", {{"S", naming_url(free_port())}});
    EXPECT_FALSE(found("S"));
    settings.write("", {{"S", velmod.naming_url()}});
    EXPECT_FALSE(found("S")) << "healthy settings are read only on request";
    vlServerInfoXmlImpl reader;
    EXPECT_TRUE(found("S"));
}

TEST(NamingClient, FaultySettingsResolveNothingUntilTheyAreMended)
{
    Velmod velmod;
    SettingsFile settings("<velmo><server name=\"S\"");
    EXPECT_FALSE(found("S"));
    EXPECT_FALSE(found("0000"));
    settings.write("", {{"S", velmod.naming_url()}});
    EXPECT_TRUE(found("S"));
}

TEST(NamingClient, MalformedUrlGivesNil)
{
    SettingsFile settings("", {{"S", "corbaname::localhost#%zz"}, {"T", "nonsense"}});
    EXPECT_FALSE(found("S"));
    EXPECT_FALSE(found("T"));
    EXPECT_FALSE(connected("T"));
}

TEST(NamingClient, StartsAnewAfterItWasEnded)
{
    Velmod velmod;
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    vlNaming_Client::ExitInstance();
    ASSERT_TRUE(found("S"));
    vlNaming_Client::ExitInstance();
    vlNaming_Client::ExitInstance();
    EXPECT_TRUE(found("S"));
}

TEST(NamingClient, MayBeEndedWhileOthersAreLookingUp)
{
    Velmod velmod;
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    std::atomic<bool> enough{false};
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i) {
        callers.emplace_back([&] {
            while (!enough)
                found("S"); // or not: its ORB may go at any moment
        });
    }
    for (int i = 0; i < 50; ++i)
        vlNaming_Client::ExitInstance();
    enough = true;
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_TRUE(found("S"));
}

TEST(NamingClient, LeavesTheApplicationsOrbAlone)
{
    int argc = 0;
    CORBA::ORB_var application = CORBA::ORB_init(argc, nullptr);
    Velmod velmod;
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    ASSERT_TRUE(found("S"));
    vlNaming_Client::ExitInstance();
    CORBA::Object_var object = application->string_to_object(velmod.naming_url().c_str());
    EXPECT_FALSE(object->_non_existent());
}

TEST(NamingClient, SurvivesTheDestructionOfTheOrbByTheApplication)
{
    Velmod velmod;
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    ASSERT_TRUE(found("S"));
    int argc = 0;
    CORBA::ORB_var application = CORBA::ORB_init(argc, nullptr);
    application->destroy();
    EXPECT_TRUE(found("S"));
    EXPECT_TRUE(connected("S"));
}

TEST(NamingClient, ServesManyThreads)
{
    Velmod velmod({"--realm", "R"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    std::atomic<int> failures{0};
    std::vector<std::thread> callers;
    for (int i = 0; i < 8; ++i) {
        callers.emplace_back([&, i] {
            for (int round = 0; round < 20; ++round) {
                const bool realm = (i + round) % 2 != 0;
                failures +=
                    !found("S", realm ? "/R/ref_key_data_port_naming_service" : port_key);
                failures += !connected("S");
            }
        });
    }
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(failures, 0);
}

} // namespace
