// A port service and the short words in which tests talk to it.
#ifndef VELMO_TESTS_SERVER_PORT_FIXTURE_H
#define VELMO_TESTS_SERVER_PORT_FIXTURE_H

#include <future>
#include <string>

#include <gtest/gtest.h>

#include "server/model/port_service.h"
#include "tests/server/images.h"
#include "tests/support/eventually.h"

namespace velmo::tests {

constexpr std::uint32_t plain = 30001;
constexpr std::uint32_t exclusive = 30002;
constexpr std::uint32_t from_host = 30004;

constexpr model::WaitOption long_enough = 60000; // for what is bound to come
constexpr model::WaitOption short_wait = 20;     // for what does not

inline model::PortLimits patient_limits()
{
    model::PortLimits limits;
    limits.max_wait = patience;
    return limits;
}

// Limits of a few bytes and packets.
inline model::PortLimits narrow_limits(std::size_t queue_bytes)
{
    model::PortLimits limits = patient_limits();
    limits.queue_bytes = queue_bytes;
    return limits;
}

class PortFixture : public ::testing::Test {
protected:
    explicit PortFixture(const model::PortLimits& limits = patient_limits()) : ports(limits)
    {
    }

    // Ports "p1", "p2", ... of these handles.
    void create(std::initializer_list<model::Handle> handles, std::uint32_t capacity = 0)
    {
        for (const model::Handle handle : handles)
            ASSERT_EQ(ports.create_port(name(handle), handle, capacity), VL_OK);
    }

    static std::string name(model::Handle handle) { return "p" + std::to_string(handle); }

    vl_result connect(model::Handle from, model::Handle to, std::uint32_t mode = plain)
    {
        return ports.connect_port(name(from), name(to), mode);
    }

    vl_result send(model::Handle port, const std::string& text, model::WaitOption wait = 0)
    {
        return ports.send_packet(port, bytes_of(text), wait);
    }

    vl_result reply(model::Handle port, const std::string& text, model::WaitOption wait = 0)
    {
        return ports.reply_packet(port, bytes_of(text), wait);
    }

    // What a port receives, or the code in brackets.
    std::string receive(model::Handle port, model::WaitOption wait = 0,
                        std::uint64_t from = 0)
    {
        model::Data packet;
        return text_of(ports.receive_packet(port, from, packet, wait), packet);
    }

    // All that is queued at a port, one after the other.
    std::string drain(model::Handle port)
    {
        std::string all;
        for (std::string text = receive(port); text != "[2002]"; text = receive(port))
            all += text;
        return all;
    }

    std::string receive_reply(model::Handle port, model::WaitOption wait = 0)
    {
        model::Data packet;
        return text_of(ports.receive_reply(port, packet, wait), packet);
    }

    // A call on a thread of its own; gives it when it waits.
    template <class Call>
    auto waiting(Call call)
    {
        const std::size_t before = ports.waiting();
        auto result = std::async(std::launch::async, call);
        EXPECT_TRUE(eventually([&] { return ports.waiting() == before + 1; }));
        return result;
    }

    // The packet, or the code in brackets.
    static std::string text_of(vl_result result, const model::Data& packet)
    {
        return result == VL_OK ? std::string(packet->begin(), packet->end())
                               : "[" + std::to_string(result) + "]";
    }

    model::PortService ports;
};

} // namespace velmo::tests

#endif
