// Exports that receive packets and replies.

#include "tests/fuzz/exports.h"

#include <algorithm>
#include <optional>

#include "tests/support/intended_leak.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

// Where a new block goes.
struct BlockOut {
    explicit BlockOut(Call& call)
        : data_given(!call.input.once_in(8)), length_given(!call.input.once_in(8))
    {
        call.refuse_if(!data_given || !length_given);
    }

    void** data_pointer() { return data_given ? &data : nullptr; }
    unsigned int* length_pointer() { return length_given ? &length : nullptr; }

    void require_untouched() const
    {
        require(data == &earlier && length == 77, "data and length stay as they were");
    }
    void require_cleared() const { require(!data && length == 0, "nothing was received"); }
    void require_block(const std::string& value) // and frees it
    {
        require(data && length == value.size(), "a block is there");
        require(std::equal(value.begin(), value.end(), static_cast<const char*>(data)),
                "the block holds the data");
        vl_free_memory(&data);
    }

    char earlier = 0;
    void* data = &earlier;
    unsigned int length = 77;
    bool data_given;
    bool length_given;
};

std::string delivered(const Call& call)
{
    return call.reply.data.value_or("");
}

// receive(buffer, size)
template <class Receive>
void check_receive(Call& call, const Codes& codes, bool keeps_another_size, Receive receive)
{
    const std::string data = delivered(call);
    Buffer buffer(call.input.once_in(4) ? call.input.index(100) : data.size());
    void* given = call.input.once_in(8) ? nullptr : buffer.pointer();
    call.refuse_if(!given && buffer.size() != 0);
    const bool another_size = call.succeeded() && buffer.size() != data.size();
    if (another_size)
        call.success = PARAMETER_NOT_MATCH;
    call.check(codes, [&] {
        std::optional<IntendedLeak> leak;
        if (another_size && keeps_another_size)
            leak.emplace();
        return receive(given, static_cast<unsigned int>(buffer.size()));
    });
    buffer.require_beginning(call.succeeded() && !another_size ? data : "");
}

void* sender(Call& call)
{
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(call.input.handle()));
}

void receive_packet(Call& call)
{
    const unsigned int port = call.input.handle();
    const unsigned int option = call.input.handle();
    void* from = sender(call);
    check_receive(call, {123, "receive_packet M/W Error "}, true,
                  [&](void* buffer, unsigned int size) {
                      return vl_receive_packet(port, from, buffer, size, option,
                                               call.server, call.realm);
                  });
}

void receive_reply(Call& call)
{
    const unsigned int port = call.input.handle();
    const unsigned int option = call.input.handle();
    check_receive(call, {127}, false, [&](void* buffer, unsigned int size) {
        return vl_receive_reply(port, buffer, size, option, call.server, call.realm);
    });
}

void receive_packetv(Call& call)
{
    const unsigned int port = call.input.handle();
    const unsigned int option = call.input.handle();
    void* from = sender(call);
    BlockOut block(call);
    call.check({123, "receive_packet M/W Error "}, [&] {
        return vl_receive_packetv(port, from, block.data_pointer(), block.length_pointer(),
                                  option, call.server, call.realm);
    });
    if (call.succeeded())
        block.require_block(delivered(call));
    else if (call.answered() || call.end() == Call::End::fails)
        block.require_cleared();
    else
        block.require_untouched();
}

void receive_reply2(Call& call)
{
    const unsigned int port = call.input.handle();
    const unsigned int option = call.input.handle();
    BlockOut block(call);
    call.check({127}, [&] {
        return vl_receive_reply2(port, block.data_pointer(), block.length_pointer(), option,
                                 call.server, call.realm);
    });
    if (call.succeeded())
        block.require_block(delivered(call));
    else
        block.require_untouched();
}

void event_count(Call& call)
{
    constexpr int untouched = 77;
    const char* event = call.input.text();
    int count = untouched;
    int* given = call.input.once_in(8) ? nullptr : &count;
    call.refuse_if(!given);
    call.check({153},
               [&] { return vl_event_count(event, given, call.server, call.realm); });
    require(count == (call.answered() ? call.reply.count : untouched),
            "the count is the server's, whatever the result");
}

} // namespace

Exercises packet_exports()
{
    return {receive_packet, receive_packetv, receive_reply, receive_reply2, event_count};
}

} // namespace velmo::tests
