// Calls of a client that give up in time, and those that need not.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <numeric>
#include <string>

#include "VelmoC.h"
#include "idl/service_keys.h"
#include "orb/client.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

namespace velmo::tests {

namespace {

using orb::Milliseconds;
using Ports = Velmo::DT_PORT_SVC::Port_Factory;
using Points = Velmo::DT_POINT_SVC::DT_Point_Factory;
using Clock = std::chrono::steady_clock;

constexpr Milliseconds soon{300};
constexpr Milliseconds late{60000};
constexpr Milliseconds never{0};
constexpr CORBA::ULong port = 7;

// By the way to the server: its options.
class CallTimeout : public testing::TestWithParam<const char*> {
protected:
    CallTimeout()
        : velmod(GetParam() ? std::vector<std::string>{GetParam()}
                            : std::vector<std::string>{})
    {
        client = orb::join_or_make(Milliseconds(2000));
        EXPECT_EQ(ports(late)->create_port("port", port, 0), VL_OK);
    }

    template <class Interface>
    typename Interface::_var_type service(const char* key, Milliseconds timeout)
    {
        const CORBA::Object_var root =
            client->string_to_object(velmod.naming_url().c_str());
        const CosNaming::NamingContext_var context =
            CosNaming::NamingContext::_narrow(root.in());
        CosNaming::Name name;
        name.length(1);
        name[0].id = key;
        const CORBA::Object_var found = context->resolve(name);
        return orb::narrow<Interface>(client.in(), found.in(), late, timeout);
    }
    Ports::_var_type ports(Milliseconds timeout)
    {
        return service<Ports>(keys::port_service, timeout);
    }
    Points::_var_type points(Milliseconds timeout)
    {
        return service<Points>(keys::data_template_point_service, timeout);
    }

    // The server has nothing to give, and says so after that long.
    static CORBA::Long wait_for_a_packet(Ports::_ptr_type service, Milliseconds wait)
    {
        Velmo::DATA_BUFFER_var data;
        return service->receive_packet(port, 0, data.out(),
                                       static_cast<CORBA::ULong>(wait.count()));
    }

    template <class Call>
    static void expect_gives_up(Call call)
    {
        const auto start = Clock::now();
        try {
            call();
            ADD_FAILURE() << "it did not give up";
        } catch (const CORBA::SystemException& error) {
            EXPECT_TRUE(orb::is_timeout(error)) << orb::describe(error);
        }
        EXPECT_GE(Clock::now() - start, soon - Milliseconds(1));
    }

    static Velmo::DATA_BUFFER large_value()
    {
        Velmo::DATA_BUFFER value;
        value.length(16u << 20);
        std::iota(value.get_buffer(), value.get_buffer() + value.length(), CORBA::Octet{1});
        return value;
    }

    Velmod velmod;
    CORBA::ORB_var client;
};

TEST_P(CallTimeout, EndsAWaitForTheAnswer)
{
    const auto service = ports(soon);
    expect_gives_up([&] { wait_for_a_packet(service.in(), late); });
    // Nothing is left behind on the connection for the next call to stumble over.
    EXPECT_EQ(service->create_port("other", port + 1, 0), VL_OK);
    expect_gives_up([&] { wait_for_a_packet(service.in(), late); });
}

TEST_P(CallTimeout, EndsAWaitForAServerThatDoesNotRead)
{
    const auto service = points(soon);
    ASSERT_EQ(service->create_DTP("point", "bytes"), VL_OK);
    const Velmo::DATA_BUFFER value = large_value();
    velmod.process().suspend();
    expect_gives_up([&] { service->set_DTP("point", value); });
    velmod.process().signal(SIGCONT);
    EXPECT_EQ(service->remove_DTP("point"), VL_OK);
}

TEST_P(CallTimeout, IsEachReferencesOwnOnTheSameConnections)
{
    const auto hasty = ports(soon), patient = ports(late), endless = ports(never);
    for (int round = 0; round < 2; ++round) {
        expect_gives_up([&] { wait_for_a_packet(hasty.in(), late); });
        for (const auto& unhurried : {patient, endless})
            EXPECT_EQ(wait_for_a_packet(unhurried.in(), soon + Milliseconds(100)),
                      TIME_OUT);
    }
}

TEST_P(CallTimeout, EndsNoOtherCall)
{
    const auto patient = ports(late), hasty = ports(soon);
    auto waiting = std::async(std::launch::async,
                              [&] { return wait_for_a_packet(patient.in(), 3 * soon); });
    expect_gives_up([&] { wait_for_a_packet(hasty.in(), late); });
    EXPECT_EQ(waiting.get(), TIME_OUT);
}

TEST_P(CallTimeout, LetsLargeValuesPassBothWays)
{
    const auto service = points(late);
    ASSERT_EQ(service->create_DTP("point", "bytes"), VL_OK);
    const Velmo::DATA_BUFFER value = large_value();
    ASSERT_EQ(service->set_DTP("point", value), VL_OK);
    Velmo::DATA_BUFFER_var back;
    ASSERT_EQ(service->get_DTP("point", back.out()), VL_OK);
    ASSERT_EQ(back->length(), value.length());
    EXPECT_TRUE(std::equal(value.get_buffer(), value.get_buffer() + value.length(),
                           back->get_buffer()));
}

TEST_P(CallTimeout, IsNotWhatAServerCostsThatDies)
{
    const auto service = ports(late);
    velmod.process().suspend(); // so that the call has begun before the end
    auto call = std::async(std::launch::async,
                           [&] { return wait_for_a_packet(service.in(), late); });
    velmod.kill();
    try {
        call.get();
        ADD_FAILURE() << "a dead server answered";
    } catch (const CORBA::SystemException& error) {
        EXPECT_FALSE(orb::is_timeout(error)) << orb::describe(error);
    }
}

INSTANTIATE_TEST_SUITE_P(Tcp, CallTimeout, testing::Values("--no-unix"));
INSTANTIATE_TEST_SUITE_P(Unix, CallTimeout, testing::Values(nullptr));

} // namespace

} // namespace velmo::tests
