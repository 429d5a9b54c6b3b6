// Instructions of a call through the library and of the same call on the bare stub, as
// valgrind's callgrind counts them; scripts/check-instructions runs it. The server is
// another process, which is not counted.
//
// Each loop's count goes to a file of its own, whose "desc: Trigger" line says what was
// done and how often.

#include <valgrind/callgrind.h>

#include <string>

#include "bench/points_of_a_server.h"

namespace {

using namespace velmo::bench;

template <class Call>
void count(const char* what, int times, Call call)
{
    CALLGRIND_ZERO_STATS;
    for (int i = 0; i < times; ++i)
        call();
    const std::string name = std::string(what) + " " + std::to_string(times);
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

// What there is a first time for is over.
template <class Call>
void count_later(const char* what, Call call)
{
    for (int i = 0; i < 10; ++i)
        call();
    count(what, 1000, call);
}

constexpr unsigned int port = 1;

void send_and_receive_by_library(const std::vector<char>& packet)
{
    expect_ok(vl_send_packet(port, packet.data(), static_cast<int>(packet.size()), 0,
                             nullptr, nullptr));
    void* data = nullptr;
    unsigned int length = 0;
    expect_ok(vl_receive_packetv(port, nullptr, &data, &length, 0, nullptr, nullptr));
    vl_free_memory(&data);
}

void send_and_receive_by_stub(Velmo::DT_PORT_SVC::Port_Factory_ptr ports,
                              const std::vector<char>& packet)
{
    Velmo::DATA_BUFFER data;
    data.length(static_cast<CORBA::ULong>(packet.size()));
    std::memcpy(data.get_buffer(), packet.data(), packet.size());
    expect_ok(ports->send_packet(port, data, 0));
    Velmo::DATA_BUFFER_var received;
    expect_ok(ports->receive_packet(port, 0, received.out(), 0));
    std::vector<char> block(received->get_buffer(),
                            received->get_buffer() + received->length());
}

} // namespace

int main()
{
    const PointsOfAServer server;
    std::vector<char> value(64, 'x');
    count("first_call", 1, [&] { get_by_library(value); });

    const auto points = server.connect();
    count_later("set_by_stub", [&] { expect_ok(set_by_stub(points.in(), value)); });
    count_later("set_by_library", [&] { expect_ok(set_by_library(value)); });
    count_later("get_by_stub", [&] { expect_ok(get_by_stub(points.in(), value)); });
    count_later("get_by_library", [&] { expect_ok(get_by_library(value)); });

    expect_ok(vl_create_port("bench", port, 0, nullptr, nullptr));
    const Velmo::DT_PORT_SVC::Port_Factory_var ports =
        vlReferenceContainer::instance()->GetPortReferenceWithServerName("S", nullptr);
    count_later("packet_by_stub", [&] { send_and_receive_by_stub(ports.in(), value); });
    count_later("packet_by_library", [&] { send_and_receive_by_library(value); });

    count_later("vl_get_servername", [] { vl_get_servername("own"); });
    count_later("get_error_string", [] { get_error_string(VL_OK); });
    return 0;
}
