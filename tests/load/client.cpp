#include "tests/load/client.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "tests/e2e/calls.h"

namespace velmo::tests {

namespace {

constexpr unsigned int forever = 0xFFFFFFFF;
constexpr unsigned int groups = 8; // that contenders of several clients stand in
constexpr const char* description = "what the load is made of";

std::string port_name(const std::string& client)
{
    return client + "/port";
}
std::string receiver_name(const std::string& client)
{
    return client + "/receiver";
}
std::string event_name(const std::string& client)
{
    return client + "/event";
}

} // namespace

Client::Client(unsigned int number)
    : name("client " + std::to_string(number)), port(2 * number + 1), receiver(port + 1)
{
    EXPECT_EQ(create_port(port_name(name), port), VL_OK);
    EXPECT_EQ(create_port(receiver_name(name), receiver), VL_OK);
    EXPECT_EQ(declare_event(number, "declared"), VL_OK);
    EXPECT_EQ(add_event(event_name(name), number), VL_OK);
}

void Client::wait_for_packet()
{
    EXPECT_EQ(receive(port, forever), "go on");
    EXPECT_EQ(reply(port, "going on"), VL_OK);
    EXPECT_EQ(receive_reply(port), "going on");
}

void Client::end_waiting() const
{
    EXPECT_EQ(send(port, "go on"), VL_OK);
}

void Client::do_round()
{
    ++round;
    use_point();
    use_mailbox();
    use_connection();
    use_event();
    use_contention();
    fail();
}

// Mostly small, sometimes beyond what a message takes in one piece.
std::string Client::payload() const
{
    const std::size_t size = round % 16 == 0 ? 65536 : round * 37 % 1500;
    return std::string(size, static_cast<char>('a' + round % 26));
}

void Client::use_point()
{
    const std::string point = name + "/point";
    const std::string value = payload();
    EXPECT_EQ(timed("create point", [&] { return create_point(point, "bytes"); }), VL_OK);
    EXPECT_EQ(timed("set point", [&] { return set_point(point, value); }), VL_OK);
    EXPECT_EQ(timed("describe point",
                    [&] {
                        return vl_set_data_template_point_description(
                            point.c_str(), description, nullptr, nullptr);
                    }),
              VL_OK);
    PointInfo info;
    EXPECT_EQ(timed("get point", [&] { return get_info(point, info); }), VL_OK);
    EXPECT_EQ(info.type, "bytes");
    EXPECT_EQ(info.description, description);
    EXPECT_TRUE(info.value == value) << "of " << value.size() << " bytes";
    const Names names = timed("list points", [] { return all_points(); });
    EXPECT_NE(std::find(names.begin(), names.end(), point), names.end());
    EXPECT_EQ(
        timed("remove point",
              [&] { return vl_remove_template_point(point.c_str(), nullptr, nullptr); }),
        VL_OK);
}

void Client::use_mailbox()
{
    const std::string packet = payload();
    EXPECT_EQ(timed("send", [&] { return send(port, packet); }), VL_OK);
    EXPECT_TRUE(timed("receive", [&] { return receive(port); }) == packet);
    EXPECT_EQ(timed("reply", [&] { return reply(port, "answer"); }), VL_OK);
    EXPECT_EQ(timed("receive reply", [&] { return receive_reply(port); }), "answer");
}

void Client::use_connection()
{
    EXPECT_EQ(
        timed("connect", [&] { return connect(port_name(name), receiver_name(name)); }),
        VL_OK);
    EXPECT_EQ(send(port, "question"), VL_OK);
    EXPECT_EQ(receive(receiver, forever, port), "question");
    EXPECT_EQ(reply(receiver, "answer"), VL_OK);
    EXPECT_EQ(receive_reply(port, forever), "answer");
    EXPECT_EQ(
        timed("disconnect", [&] { return vl_disconenct_port(port, nullptr, nullptr); }),
        VL_OK);
    calls += 4;
}

void Client::use_event()
{
    const std::string event = event_name(name);
    EXPECT_EQ(timed("raise event", [&] { return raise_event(event, "raised"); }), VL_OK);
    EXPECT_EQ(timed("count event", [&] { return event_count(event); }), "1");
    EXPECT_EQ(timed("clear event", [&] { return clear_event(event); }), VL_OK);
}

void Client::use_contention()
{
    const std::string group = "group " + std::to_string(port % groups);
    EXPECT_EQ(
        timed("register",
              [&] { return regist(group, name, static_cast<int>(port), "data", "role"); }),
        VL_OK);
    EXPECT_EQ(timed("update", [&] { return update(group, name); }), VL_OK);
    EXPECT_EQ(timed("withdraw", [&] { return withdraw(group, name); }), VL_OK);
}

// Calls that a server refuses are the ones whose results are forgotten to be freed.
void Client::fail()
{
    EXPECT_EQ(timed("receive nothing", [&] { return receive(port); }),
              in_brackets(EMPTY_QUEUE));
    PointInfo info;
    EXPECT_EQ(timed("get no point", [&] { return get_info(name, info); }),
              VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(timed("no such realm", [&] { return set_point(name, "", "none"); }), 99);
}

} // namespace velmo::tests
