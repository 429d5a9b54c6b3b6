// velmod in a naming service that is not its own.
#include <gtest/gtest.h>

#include "tests/server/client.h"
#include "tests/support/loopback.h"
#include "tests/support/omni_names.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

// Its URL with a context below the root.
std::string below(const OmniNames& names, const std::string& context)
{
    return "corbaname::1.2@127.0.0.1:" + std::to_string(names.port()) + "/NameService#" +
           context;
}

class Registrar : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!OmniNames::available())
            GTEST_SKIP() << "omniNames is not installed";
        names.emplace();
        url = names->naming_url();
    }

    std::optional<OmniNames> names;
    std::string url;
    const std::string key = keys::port_service;
};

Process failing_velmod(const std::string& naming)
{
    return Process(
        {velmod_path(), "--no-unix", "--listen", "127.0.0.1:0", "--naming", naming});
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

TEST_F(Registrar, BindsEveryServiceAndCreatesContexts)
{
    Velmod velmod({"--naming", url, "--realm", "alpha", "--realm", "plant/north"});
    EXPECT_EQ(velmod.naming_url(), url);
    for (const char* realm : {"", "ROOT/", "alpha/", "plant/north/"}) {
        Port_Factory_var ports = port_service(url, realm);
        EXPECT_EQ(ports->disconnect_port(1), INVAILD_PORT_HANDLE) << realm;
    }
    EXPECT_TRUE(is_bound(url, keys::service_manager));
}

TEST_F(Registrar, UnbindsWhenItStops)
{
    Velmod velmod({"--naming", url, "--realm", "alpha"});
    EXPECT_EQ(velmod.stop(), 0);
    for (const std::string& path : {key, "ROOT/" + key, "alpha/" + key})
        EXPECT_FALSE(is_bound(url, path)) << path;
    EXPECT_FALSE(is_bound(url, keys::service_manager));
}

TEST_F(Registrar, ReplacesWhatAKilledServerLeft)
{
    Velmod velmod({"--naming", url});
    velmod.kill();
    EXPECT_TRUE(is_bound(url, key));
    EXPECT_THROW(port_service(url)->disconnect_port(1), CORBA::SystemException);
    velmod.restart();
    EXPECT_EQ(port_service(url)->disconnect_port(1), INVAILD_PORT_HANDLE);
}

TEST_F(Registrar, TwoServersShareANamingServiceInContextsOfTheirOwn)
{
    Velmod alpha({"--naming", below(*names, "servers/alpha")});
    Velmod beta({"--naming", below(*names, "servers/beta")});
    EXPECT_EQ(port_service(url, "servers/alpha/")->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(port_service(url, "servers/beta/")->create_port("p", 1, 0), VL_OK);
    EXPECT_FALSE(is_bound(url, key));
    EXPECT_EQ(alpha.stop(), 0);
    EXPECT_FALSE(is_bound(url, "servers/alpha/" + key));
    EXPECT_TRUE(is_bound(url, "servers/beta/" + key));
}

TEST_F(Registrar, ANameThatAnotherServerHasTakenOverStays)
{
    Velmod first({"--naming", url});
    Velmod second({"--naming", url});
    EXPECT_EQ(first.stop(), 0);
    EXPECT_EQ(port_service(url)->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(second.stop(), 0);
    EXPECT_FALSE(is_bound(url, key));
}

TEST_F(Registrar, ItsNamesOutliveARestartOfTheNamingService)
{
    Velmod velmod({"--naming", url});
    names->kill();
    names->restart();
    EXPECT_TRUE(eventually_answered(
        [&] { return port_service(url)->disconnect_port(1) == INVAILD_PORT_HANDLE; }));
}

TEST_F(Registrar, ANamingServiceThatHasGoneDoesNotKeepItFromStopping)
{
    Velmod velmod({"--naming", url});
    names->kill();
    EXPECT_EQ(velmod.stop(), 0);
    EXPECT_TRUE(contains(velmod.process().err(), "event=cannot-withdraw"));
}

TEST_F(Registrar, ANamingServiceThatHangsDoesNotKeepItFromStopping)
{
    Velmod velmod({"--naming", url});
    names->process().signal(SIGSTOP);
    EXPECT_EQ(velmod.stop(), 0);
}

TEST_F(Registrar, AnObjectWhereAContextShouldBeIsAnError)
{
    CosNaming::NamingContext_var root = naming_context(url);
    root->bind(util::name_of_path("ROOT"), root.in());
    Process velmod = failing_velmod(url);
    EXPECT_EQ(velmod.wait(), 1);
    EXPECT_TRUE(contains(velmod.err(), "NotFound")) << velmod.err();
}

TEST(RegistrarFailure, NobodyAnswersAtTheUrl)
{
    const std::string url = naming_url(free_port());
    Process velmod = failing_velmod(url);
    EXPECT_EQ(velmod.wait(), 1);
    EXPECT_EQ(velmod.out(), "");
    EXPECT_TRUE(
        contains(velmod.err(), "cannot register with the naming service at " + url));
    EXPECT_TRUE(contains(velmod.err(), "Start that naming service first")) << velmod.err();
}

TEST(RegistrarFailure, SomebodyListensAndNeverAnswers)
{
    const SilentListener silent;
    Process velmod = failing_velmod(naming_url(silent.port()));
    EXPECT_EQ(velmod.wait(std::chrono::seconds(20)), 1);
    EXPECT_TRUE(contains(velmod.err(), "TIMEOUT")) << velmod.err();
}

TEST(RegistrarFailure, TheUrlIsMalformed)
{
    for (const char* url :
         {"nonsense", "corbaloc:", "corbaname::127.0.0.1#%zz", "http://x/"}) {
        Process velmod = failing_velmod(url);
        EXPECT_EQ(velmod.wait(), 1) << url;
        EXPECT_TRUE(contains(velmod.err(), url)) << velmod.err();
    }
}

TEST(RegistrarFailure, WhatAnswersIsNoNamingService)
{
    Velmod other;
    CORBA::Object_var object = resolve(other.naming_url(), keys::port_service);
    CORBA::String_var reference = client_orb()->object_to_string(object.in());
    Process velmod = failing_velmod(reference.in());
    EXPECT_EQ(velmod.wait(), 1);
    EXPECT_TRUE(contains(velmod.err(), "no naming service")) << velmod.err();
}

TEST(RegistrarFailure, AnotherVelmodsNamesAreItsOwn)
{
    Velmod other;
    Process velmod = failing_velmod(other.naming_url());
    EXPECT_EQ(velmod.wait(), 1);
    EXPECT_TRUE(contains(velmod.err(), "NO_PERMISSION")) << velmod.err();
}

} // namespace
