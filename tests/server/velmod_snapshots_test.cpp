// Snapshots of the running daemon, called over the broker.
#include <atomic>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "tests/server/client.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

using Velmo::DT_POINT_SVC::DT_Point_Factory;
using Velmo::DT_POINT_SVC::DT_Point_Factory_var;

class VelmodSnapshots : public ::testing::Test {
protected:
    DT_Point_Factory_var points() const
    {
        CORBA::Object_var object =
            resolve(velmod.naming_url(), keys::data_template_point_service);
        return DT_Point_Factory_var(DT_Point_Factory::_narrow(object.in()));
    }

    std::string get(const char* name) const
    {
        Velmo::DATA_BUFFER_var value;
        const CORBA::Long result = points()->get_DTP(name, value.out());
        return result == VL_OK ? text(value.in()) : "[" + std::to_string(result) + "]";
    }

    TemporaryFolder folder;
    Velmod velmod{{"--data-dir", folder.path(), "--load"}};
};

TEST_F(VelmodSnapshots, PortsCanBeLoadedWhileTheServerRuns)
{
    Port_Factory_var ports = port_service(velmod.naming_url());
    EXPECT_EQ(ports->load_port_snapshot(), NON_EXIST_DATA);
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    ASSERT_EQ(ports->send_packet(1, buffer("saved"), 0), VL_OK);
    ASSERT_EQ(ports->make_port_snapshot(), VL_OK);
    ASSERT_EQ(ports->send_packet(1, buffer("later"), 0), VL_OK);
    ASSERT_EQ(ports->create_port("later", 2, 0), VL_OK);
    ASSERT_EQ(ports->load_port_snapshot(), VL_OK);
    Velmo::DATA_BUFFER_var data;
    ASSERT_EQ(ports->receive_packet(1, 0, data.out(), 0), VL_OK);
    EXPECT_EQ(text(data.in()), "saved");
    EXPECT_EQ(ports->receive_packet(1, 0, data.out(), 0), EMPTY_QUEUE);
    EXPECT_EQ(ports->receive_packet(2, 0, data.out(), 0), INVAILD_PORT_HANDLE);
}

TEST_F(VelmodSnapshots, AWaitingReceiverIsNotForgottenByALoad)
{
    Port_Factory_var ports = port_service(velmod.naming_url());
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    ASSERT_EQ(ports->make_port_snapshot(), VL_OK);
    std::atomic<bool> over{false};
    std::thread receiver([&] {
        Velmo::DATA_BUFFER_var data;
        EXPECT_EQ(ports->receive_packet(1, 0, data.out(), 0xFFFFFFFF), TIME_OUT);
        over = true;
    });
    EXPECT_TRUE(eventually([&] { return ports->load_port_snapshot() == VL_OK && over; }));
    receiver.join();
}

TEST_F(VelmodSnapshots, WhatWasSavedIsNotLostByAKillWhileTheNextIsSaved)
{
    constexpr int count = 500;
    std::mt19937 random(9);
    std::uniform_int_distribution<int> milliseconds(0, 30);
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(points()->create_DTP(std::to_string(i).c_str(), "text"), VL_OK);
    for (int round = 0; round < 5; ++round) {
        const std::string value = "round " + std::to_string(round);
        DT_Point_Factory_var service = points();
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(service->set_DTP(std::to_string(i).c_str(), buffer(value)), VL_OK);
        ASSERT_EQ(service->make_DTP_snapshot(), VL_OK);
        std::thread saver([&] {
            try {
                while (service->make_DTP_snapshot() == VL_OK) {
                }
            } catch (const CORBA::SystemException&) {
                // The server has gone.
            }
        });
        // Not for anything to happen: any moment is as good.
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds(random)));
        velmod.kill();
        saver.join();
        velmod.restart();
        EXPECT_TRUE(eventually_answered([&] { return get("0") == value; })) << round;
        EXPECT_EQ(get(std::to_string(count - 1).c_str()), value);
    }
}

} // namespace
