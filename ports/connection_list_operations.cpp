// Listing the connections of a server's ports.

#include <cstring>

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/data.h"
#include "api/name_list.h"
#include "api/services.h"

using velmo::api::call;
using velmo::api::fails_with;
using velmo::api::IncomingNames;
using velmo::api::PortService;
using Velmo::DT_PORT_SVC::Connection;

namespace {

constexpr std::size_t text_area = sizeof ConnectionBlock::first_text;

void copy_text(char* area, std::size_t size, const char* text)
{
    const std::size_t length = strnlen(text, size - 1);
    std::memcpy(area, text, length);
    area[length] = '\0';
}

// A first text too long for its area runs on through the second's, so it comes last.
ConnectionBlock* new_block(const Connection& connection)
{
    void* const memory = velmo::api::allocate_block(sizeof(ConnectionBlock));
    auto* const block = static_cast<ConnectionBlock*>(memory);
    block->next = nullptr;
    char* const areas = static_cast<char*>(memory);
    copy_text(areas + text_area, text_area, connection.to_name);
    copy_text(areas, 2 * text_area, connection.from_name);
    return block;
}

// What fails half-way leaves the blocks that are done in the list, and a count that
// includes the one that was to follow.
void fill(ConnectionList& list, const Velmo::DT_PORT_SVC::CONNECTION_SEQ& connections)
{
    ConnectionBlock** next = &list.first;
    for (CORBA::ULong i = 0; i < connections.length(); ++i) {
        ++list.count;
        *next = new_block(connections[i]);
        next = &(*next)->next;
    }
}

} // namespace

int Velmo_API_Manager::get_connection_info(ConnectionList* list, const char* server_name,
                                           const char* releam)
{
    static constexpr auto rule = fails_with(151);
    if (!list)
        return rule.other_failure;
    // Before the server is chosen: every failure leaves an empty list.
    list->first = nullptr;
    list->count = 0;
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        Velmo::DT_PORT_SVC::CONNECTION_SEQ_var connections;
        const int result = ports.get_connection_info(connections.out());
        if (result == VL_OK && connections.operator->())
            fill(*list, connections.in());
        return result;
    });
}

int Velmo_API_Manager::com_chennal_seq(NameList* list, const char* server_name,
                                       const char* releam)
{
    // A failure casts no doubt on the reference.
    static constexpr auto rule = fails_with(143).keeping_reference();
    if (!list)
        return rule.other_failure;
    // Before the server is chosen: every failure leaves an empty list.
    velmo::api::clear(*list);
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        IncomingNames outgoing;
        IncomingNames incoming;
        const int result = ports.com_chennal_seq(outgoing.out(), incoming.out());
        if (result == VL_OK)
            velmo::api::fill(*list, outgoing.names(), incoming.names());
        return result;
    });
}
