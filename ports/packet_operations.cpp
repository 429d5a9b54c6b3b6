// Packets and replies.

#include <cstdint>

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/data.h"
#include "api/services.h"

using velmo::api::call;
using velmo::api::fails_with;
using velmo::api::IncomingData;
using velmo::api::OutgoingData;
using velmo::api::PortService;
using velmo::api::require;

namespace {

// A wanted sender as it travels: the pointer's value, whose meaning is the server's.
CORBA::ULongLong sender(void* from)
{
    return reinterpret_cast<std::uintptr_t>(from);
}

// Hands received data to the caller, who frees the block.
void hand_over(const IncomingData& received, void** data, unsigned int* length)
{
    *data = received.new_block();
    *length = received.length();
}

} // namespace

int Velmo_API_Manager::send_packet(unsigned int port, const void* data, int length,
                                   unsigned int option, const char* server_name,
                                   const char* releam)
{
    static constexpr auto rule = fails_with(112, "send_packet M/W Error %s");
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        const OutgoingData packet(data, length);
        return ports.send_packet(port, packet.sequence(), option);
    });
}

int Velmo_API_Manager::send_packet_to_front(unsigned int port, const void* data, int length,
                                            unsigned int option, const char* server_name,
                                            const char* releam)
{
    static constexpr auto rule = fails_with(154);
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        const OutgoingData packet(data, length);
        return ports.send_packet_to_front(port, packet.sequence(), option);
    });
}

int Velmo_API_Manager::receive_packet(unsigned int port, void* from, void* buffer,
                                      unsigned int size, unsigned int option,
                                      const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(123, "receive_packet M/W Error %s");
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        require(buffer || size == 0);
        IncomingData received;
        const int result = ports.receive_packet(port, sender(from), received.out(), option);
        if (result != VL_OK)
            return result;
        if (received.length() != size) {
            // Kept as it is: the data of a packet of another size are not freed,
            // those of a reply are.
            received.abandon();
            return PARAMETER_NOT_MATCH;
        }
        received.copy_to(buffer);
        return VL_OK;
    });
}

int Velmo_API_Manager::receive_packetv(unsigned int port, void* from, void** data,
                                       unsigned int* length, unsigned int option,
                                       const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(123, "receive_packet M/W Error %s");
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        require(data && length);
        // Cleared whenever nothing is received, where receive_reply2 leaves them.
        *data = nullptr;
        *length = 0;
        IncomingData received;
        const int result = ports.receive_packet(port, sender(from), received.out(), option);
        if (result == VL_OK)
            hand_over(received, data, length);
        return result;
    });
}

int Velmo_API_Manager::reply_packet(unsigned int port, const void* data, int length,
                                    unsigned int option, const char* server_name,
                                    const char* releam)
{
    static constexpr auto rule = fails_with(124);
    // Unlike a packet, a reply is copied before the reference is asked for.
    return call<PortService>(
        rule, server_name, releam, [&] { return OutgoingData(data, length); },
        [&](auto& ports, const OutgoingData& reply) -> int {
            return ports.reply_packet(port, reply.sequence(), option);
        });
}

int Velmo_API_Manager::receive_reply(unsigned int port, void* buffer, unsigned int size,
                                     unsigned int option, const char* server_name,
                                     const char* releam)
{
    static constexpr auto rule = fails_with(127);
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        require(buffer || size == 0);
        IncomingData received;
        const int result = ports.receive_reply(port, received.out(), option);
        if (result != VL_OK)
            return result;
        if (received.length() != size)
            return PARAMETER_NOT_MATCH;
        received.copy_to(buffer);
        return VL_OK;
    });
}

int Velmo_API_Manager::receive_reply2(unsigned int port, void** data, unsigned int* length,
                                      unsigned int option, const char* server_name,
                                      const char* releam)
{
    static constexpr auto rule = fails_with(127);
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        require(data && length);
        IncomingData received;
        const int result = ports.receive_reply(port, received.out(), option);
        if (result == VL_OK)
            hand_over(received, data, length);
        return result;
    });
}
