// Those who accept a connection and never answer, or do not even accept it.
#include <netinet/in.h>
#include <sys/socket.h>

#include <csignal>
#include <thread>

#include "tests/faults/servers.h"
#include "tests/server/client.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;

namespace {

TEST(Silence, OfTheServerDuringCallsEndsThemAtTheirTimeOut)
{
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("SIGSTOP of the server during calls of 8 threads; SIGCONT");
    ASSERT_TRUE(port_is_there());
    velmod.process().suspend();
    std::vector<std::thread> callers;
    for (int i = 0; i < 8; ++i)
        callers.emplace_back([&] {
            const int code = fault.call(
                [] { return wait_for_packet(7, std::chrono::milliseconds(100)); });
            EXPECT_TRUE(code == 123 || code == VL_NO_REFERENCE) << code;
        });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE) << "its naming service is as silent";
    // It is not asked again for a while: nobody waits for it.
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    velmod.process().signal(SIGCONT);
    fault.recovers(make_port);
}

class NamingService : public RegisteredServer {};

TEST_F(NamingService, ThatIsSilentCostsItsTimeOutOnceInAWhile)
{
    Fault fault("SIGSTOP of omniNames before a look-up; SIGCONT", naming_timeout);
    names->process().suspend();
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    EXPECT_EQ(fault.call([] { return vl_mid_connect(nullptr); }), NAMING_SERVER_NOT_ONLINE);
    names->process().signal(SIGCONT);
    fault.recovers(make_port);
}

TEST_F(NamingService, ThatIsSilentDoesNotConcernWhoHasItsReferences)
{
    Fault fault("SIGSTOP of omniNames after a look-up");
    ASSERT_TRUE(port_is_there());
    names->process().suspend();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(fault.call(make_port), VL_OK);
}

// The same object, of an unknown type: whoever narrows the reference asks its server.
std::string without_type(const std::string& ior)
{
    constexpr std::size_t prefix = 4 + 2 * 4; // "IOR:", the byte order and its padding
    const auto digit = [&](std::size_t at) {
        return std::stoul(ior.substr(at, 2), nullptr, 16);
    };
    const std::size_t length = digit(prefix) + (digit(prefix + 2) << 8); // little-endian
    const std::size_t padded = (length + 3) / 4 * 4;
    return ior.substr(0, prefix) + "0100000000000000" + ior.substr(prefix + 8 + 2 * padded);
}

TEST_F(NamingService, ThatNamesASilentServerOfUnknownTypeCostsItsTimeOut)
{
    const std::string url = names->naming_url();
    {
        CORBA::Object_var port_service = resolve(url, velmo::keys::port_service);
        CORBA::String_var ior = client_orb()->object_to_string(port_service.in());
        CORBA::Object_var untyped =
            client_orb()->string_to_object(without_type(ior.in()).c_str());
        naming_context(url)->rebind(velmo::util::name_of_path(velmo::keys::port_service),
                                    untyped.in());
    }
    Fault fault("SIGSTOP of the server, found through omniNames, while its reference is "
                "narrowed; SIGCONT",
                naming_timeout);
    velmod->process().suspend();
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    velmod->process().signal(SIGCONT);
    fault.recovers(make_port);
}

// A port of 127.0.0.1 on which nobody answers as long as this object lives, as at an
// address that leads nowhere: it drops what asks for a connection.
class BlackHole {
public:
    BlackHole() : listener(listening_socket(number))
    {
        check_system_call(listen(listener.get(), 0) == 0, "listen");
        for (int i = 0; i < 4; ++i) { // more than it has room for
            sockaddr_in address{};
            address.sin_family = AF_INET;
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            address.sin_port = htons(number);
            queue.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
            static_cast<void>(connect(queue.back().get(),
                                      reinterpret_cast<const sockaddr*>(&address),
                                      sizeof address));
        }
    }
    std::uint16_t port() const { return number; }

private:
    std::uint16_t number = 0;
    Descriptor listener;
    std::vector<Descriptor> queue;
};

TEST(Address, ThatLeadsNowhereCostsTheConnectTimeOutOnceInAWhile)
{
    std::optional<BlackHole> hole(std::in_place);
    FaultSettings settings(naming_url(hole->port()));
    Fault fault("an address that leads nowhere, 8 threads", naming_timeout);
    std::vector<std::thread> callers;
    for (int i = 0; i < 8; ++i)
        callers.emplace_back([&] {
            for (int call = 0; call < 5; ++call)
                EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
        });
    for (std::thread& caller : callers)
        caller.join();
    const std::uint16_t port = hole->port();
    hole.reset();
    Velmod velmod(
        {"--server", "S", "--no-unix", "--listen", "127.0.0.1:" + std::to_string(port)});
    fault.recovers(make_port);
}

} // namespace
