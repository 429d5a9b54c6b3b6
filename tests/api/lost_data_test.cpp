// What becomes of the data that a remote call brings, once the caller has them or not.

#include <string>

#include "tests/api/scarce_memory.h"
#include "tests/support/intended_leak.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

// A length that nothing else in the process has.
constexpr unsigned int length = 4321;

// A function that fetches data of that length; exact says whether it is told so.
struct Fetching {
    const char* name;
    const char* remote;
    int (*fetch)(bool exact);
    int inexact_result;
    int data_kept; // sequences that are not freed when the length was another one
};

void PrintTo(const Fetching& fetching, std::ostream* out)
{
    *out << fetching.name;
}

int receive_packet(bool exact)
{
    std::string buffer(length, '?');
    return vl_receive_packet(7, nullptr, buffer.data(), exact ? length : length + 1, 0,
                             nullptr, nullptr);
}

int receive_reply(bool exact)
{
    std::string buffer(length, '?');
    return vl_receive_reply(7, buffer.data(), exact ? length : length + 1, 0, nullptr,
                            nullptr);
}

int receive_packetv(bool)
{
    void* data = nullptr;
    unsigned int received = 0;
    const int result =
        vl_receive_packetv(7, nullptr, &data, &received, 0, nullptr, nullptr);
    vl_free_memory(&data);
    return result;
}

int receive_reply2(bool)
{
    void* data = nullptr;
    unsigned int received = 0;
    const int result = vl_receive_reply2(7, &data, &received, 0, nullptr, nullptr);
    vl_free_memory(&data);
    return result;
}

int get_data_template_point(bool exact)
{
    std::string buffer(length, '?');
    return vl_get_data_template_point("point", buffer.data(), exact ? int{length} : 1,
                                      nullptr, nullptr);
}

int point_info(bool)
{
    CORBA::String_var type;
    CORBA::String_var description;
    void* data = nullptr;
    unsigned int received = 0;
    const int result = get_dtp_info2("point", &type.out(), &description.out(), &data,
                                     &received, nullptr, nullptr);
    vl_free_memory(&data);
    return result;
}

class LostDataTest : public ServerTest, public ::testing::WithParamInterface<Fetching> {
protected:
    void deliver(int result)
    {
        home->answer(GetParam().remote, Reply{result, std::string(length, 'd')});
    }
};

INSTANTIATE_TEST_SUITE_P(
    Operations, LostDataTest,
    ::testing::Values(
        Fetching{"vl_receive_packet", "receive_packet", receive_packet, 2012, 1},
        Fetching{"vl_receive_packetv", "receive_packet", receive_packetv, 0, 0},
        Fetching{"vl_receive_reply", "receive_reply", receive_reply, 2012, 0},
        Fetching{"vl_receive_reply2", "receive_reply", receive_reply2, 0, 0},
        Fetching{"vl_get_data_template_point", "get_DTP", get_data_template_point, 0, 0},
        Fetching{"get_dtp_info2", "get_dtp_info", point_info, 0, 0}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_P(LostDataTest, received_data_are_freed)
{
    const WatchedArrays arrays(length);
    deliver(0);
    EXPECT_EQ(GetParam().fetch(true), 0);
    EXPECT_GE(arrays.made(), 1);
    EXPECT_EQ(arrays.alive(), 0);
}

TEST_P(LostDataTest, data_that_come_with_an_error_are_freed)
{
    const WatchedArrays arrays(length);
    deliver(5);
    EXPECT_EQ(GetParam().fetch(true), 5);
    EXPECT_GE(arrays.made(), 1);
    EXPECT_EQ(arrays.alive(), 0);
}

// Alone the data of a packet are not, each time.
TEST_P(LostDataTest, data_of_another_size_than_the_callers_are_freed_unless_a_packets)
{
    const WatchedArrays arrays(length);
    deliver(0);
    const IntendedLeak the_packet;
    for (int time = 1; time <= 3; ++time) {
        EXPECT_EQ(GetParam().fetch(false), GetParam().inexact_result);
        EXPECT_EQ(arrays.alive(), time * GetParam().data_kept);
    }
}

} // namespace

} // namespace velmo::tests
