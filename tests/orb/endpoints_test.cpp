#include "orb/server.h"

#include <gtest/gtest.h>

using namespace velmo::orb;

namespace {

TEST(UrlHost, PutsNumericIpv6InBrackets)
{
    EXPECT_EQ(url_host("::1"), "[::1]");
    EXPECT_EQ(url_host("[::1]"), "[::1]");
    EXPECT_EQ(url_host("127.0.0.1"), "127.0.0.1");
    EXPECT_EQ(url_host("host.example"), "host.example");
}

// An ORB is one a process, and so one a test.

TEST(ServerOrb, PublishesTheFreePortThatItFound)
{
    ServerOptions options;
    options.endpoints = {{"127.0.0.1", 0}};
    CORBA::ORB_var orb = make_server_orb(options);
    CORBA::Object_var object = orb->resolve_initial_references("RootPOA");
    PortableServer::POA_var root = PortableServer::POA::_narrow(object.in());
    CORBA::Object_var reference = root->create_reference("IDL:Test:1.0");
    const Endpoint endpoint = published_endpoint(orb.in(), reference.in());
    EXPECT_EQ(endpoint.host, "127.0.0.1");
    EXPECT_NE(endpoint.port, 0);
    orb->destroy();
}

TEST(PublishedEndpoint, IsReadFromAReferencesString)
{
    int argc = 0;
    CORBA::ORB_var orb = CORBA::ORB_init(argc, nullptr);
    CORBA::Object_var object = orb->string_to_object("corbaloc::1.2@host.example:1234/Key");
    const Endpoint endpoint = published_endpoint(orb.in(), object.in());
    EXPECT_EQ(endpoint.host, "host.example");
    EXPECT_EQ(endpoint.port, 1234);
    orb->destroy();
}

TEST(PublishedEndpoint, IsNotThereForNil)
{
    int argc = 0;
    CORBA::ORB_var orb = CORBA::ORB_init(argc, nullptr);
    EXPECT_THROW(published_endpoint(orb.in(), CORBA::Object::_nil()), std::runtime_error);
    orb->destroy();
}

TEST(ServerOrb, SaysThatAPortIsTaken)
{
    ServerOptions options;
    options.endpoints = {{"203.0.113.1", 1}}; // an address that no host has
    EXPECT_THROW(make_server_orb(options), EndpointError);
}

} // namespace
