// Data that servants take from calls and lend to answers, instead of copying them.
#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "server/model/realm.h"
#include "server/services/point_servant.h"
#include "server/services/port_servant.h"
#include "tests/server/client.h"
#include "tests/support/test_orb.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

using Velmo::DT_POINT_SVC::DT_Point_Factory;
using Velmo::DT_POINT_SVC::DT_Point_Factory_var;
using Velmo::DT_PORT_SVC::Port_Factory;
using Velmo::DT_PORT_SVC::Port_Factory_var;

constexpr CORBA::ULong large = 300000; // more than sockets hold: sent from where it lies

Velmo::DATA_BUFFER filled(CORBA::ULong length, CORBA::Octet with)
{
    Velmo::DATA_BUFFER data;
    data.length(length);
    std::fill_n(data.get_buffer(), length, with);
    return data;
}

bool is_filled(const Velmo::DATA_BUFFER& data, CORBA::ULong length)
{
    const CORBA::Octet* first = data.get_buffer();
    return data.length() == length &&
           std::all_of(first, first + length,
                       [&](CORBA::Octet byte) { return byte == *first; });
}

// Servants in the process of their callers, to whom all sequences belong.
class ServantsAtHome : public ::testing::Test {
protected:
    model::Realm realm{""};
    const services::Calls calls{nullptr, 1u << 20};
    const services::Snapshots snapshots{nullptr, realm};
    Published<services::PointServant> point_servant{realm.points, snapshots, calls};
    Published<services::PortServant> port_servant{realm.ports, realm.events, snapshots,
                                                  calls};
    DT_Point_Factory_var points = DT_Point_Factory::_narrow(point_servant.reference().in());
    Port_Factory_var ports = Port_Factory::_narrow(port_servant.reference().in());
};

TEST_F(ServantsAtHome, LeaveTheCallersDataAlone)
{
    const Velmo::DATA_BUFFER data = filled(large, 'x');
    ASSERT_EQ(points->create_DTP("p", "bytes"), VL_OK);
    ASSERT_EQ(points->set_DTP("p", data), VL_OK);
    EXPECT_TRUE(is_filled(data, large));
    ASSERT_EQ(ports->create_port("q", 1, 0), VL_OK);
    ASSERT_EQ(ports->send_packet(1, data, 0), VL_OK);
    EXPECT_TRUE(is_filled(data, large));
}

TEST_F(ServantsAtHome, GiveDataThatTheCallerMayChange)
{
    ASSERT_EQ(points->create_DTP("p", "bytes"), VL_OK);
    ASSERT_EQ(points->set_DTP("p", filled(large, 'x')), VL_OK);
    Velmo::DATA_BUFFER_var first, second;
    ASSERT_EQ(points->get_DTP("p", first.out()), VL_OK);
    ASSERT_TRUE(first->release());
    first->get_buffer()[0] = 'y';
    ASSERT_EQ(points->get_DTP("p", second.out()), VL_OK);
    EXPECT_TRUE(is_filled(second.in(), large));

    Velmo::NAME_SEQ_var names;
    ASSERT_EQ(points->get_all_point_name(names.out()), VL_OK);
    EXPECT_TRUE(names->release());
    EXPECT_STREQ(names[0u], "p");
}

// The daemon, whose callers are in other processes.
class LentData : public ::testing::Test {
protected:
    template <class Service>
    typename Service::_var_type service(const char* key) const
    {
        CORBA::Object_var object = resolve(velmod.naming_url(), key);
        return Service::_narrow(object.in());
    }

    Velmod velmod;
    DT_Point_Factory_var points =
        service<DT_Point_Factory>(keys::data_template_point_service);
    Port_Factory_var ports = service<Port_Factory>(keys::port_service);
};

TEST_F(LentData, AValueIsWholeWhileItIsReplaced)
{
    ASSERT_EQ(points->create_DTP("p", "bytes"), VL_OK);
    ASSERT_EQ(points->set_DTP("p", filled(large, 'a')), VL_OK);
    std::atomic<bool> reading{true};
    std::thread writer([&] {
        for (CORBA::Octet with = 'a'; reading; with = with == 'a' ? 'b' : 'a')
            ASSERT_EQ(points->set_DTP("p", filled(large, with)), VL_OK);
    });
    for (int i = 0; i < 200; ++i) {
        Velmo::DATA_BUFFER_var value;
        EXPECT_EQ(points->get_DTP("p", value.out()), VL_OK);
        EXPECT_TRUE(is_filled(value.in(), large));
    }
    reading = false;
    writer.join();
}

TEST_F(LentData, APacketLeavesItsQueueWhole)
{
    ASSERT_EQ(ports->create_port("q", 1, 0), VL_OK);
    for (const CORBA::ULong length : {0u, 1u, 1023u, 1024u, 32769u, large}) {
        ASSERT_EQ(ports->send_packet(1, filled(length, 'a'), 0), VL_OK);
        ASSERT_EQ(ports->send_packet(1, filled(length, 'b'), 0), VL_OK);
    }
    for (const CORBA::ULong length : {0u, 1u, 1023u, 1024u, 32769u, large})
        for (const CORBA::Octet with : {'a', 'b'}) {
            Velmo::DATA_BUFFER_var packet;
            ASSERT_EQ(ports->receive_packet(1, 0, packet.out(), 0), VL_OK);
            ASSERT_TRUE(is_filled(packet.in(), length)) << length;
            EXPECT_TRUE(length == 0 || packet->get_buffer()[0] == with);
        }
}

TEST_F(LentData, NamesAreCompleteWhilePointsGo)
{
    std::string members;
    constexpr int count = 2000;
    for (int i = 0; i < count; ++i)
        members += std::to_string(i) + "\n";
    Velmo::DATA_BUFFER data;
    data.length(static_cast<CORBA::ULong>(members.size()));
    std::copy(members.begin(), members.end(), data.get_buffer());
    ASSERT_EQ(points->create_set("stays", "bytes", data), VL_OK);
    std::atomic<bool> reading{true};
    std::thread writer([&] {
        while (reading) {
            ASSERT_EQ(points->create_DTP("comes and goes", "bytes"), VL_OK);
            ASSERT_EQ(points->remove_DTP("comes and goes"), VL_OK);
        }
    });
    for (int i = 0; i < 50; ++i) {
        Velmo::NAME_SEQ_var names;
        EXPECT_EQ(points->get_all_point_name(names.out()), VL_OK);
        const auto staying = std::count_if(
            names->get_buffer(), names->get_buffer() + names->length(),
            [](const char* name) { return std::string(name).find("stays/") == 0; });
        EXPECT_EQ(staying, count);
    }
    reading = false;
    writer.join();
}

} // namespace
