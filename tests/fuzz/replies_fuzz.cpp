// Malformed replies: an export that gets one fails or takes it for what it says, and the
// next calls work. The first two bytes choose the export and the reply; then comes what
// is done to it, six bytes each: where (two bytes), what, and a value.

#include <memory>

#include "idl/service_keys.h"
#include "tests/support/giop.h"
#include "tests/fuzz/require.h"
#include "tests/fuzz/tampering_relay.h"
#include "tests/support/log_stand_in.h"
#include "tests/support/naming_stand_in.h"
#include "tests/support/reader_stand_in.h"
#include "tests/support/scripted_server.h"
#include "vl_api.h"
#include "vlReferenceContainer.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

// ------------------------------------------------------- what is called

void free_names(NameList& list)
{
    for (unsigned int i = 0; list.names && i < list.count; ++i) {
        require(list.names[i], "a list has as many names as it says");
        CORBA::string_free(list.names[i]);
    }
    vl_free_memory(reinterpret_cast<void**>(&list.names));
}

template <class Get>
int names(Get get)
{
    NameList list{};
    const int result = get(&list, nullptr, nullptr);
    free_names(list);
    return result;
}

int channels()
{
    return names(vl_com_chennal_seq);
}

int realms()
{
    NameList list{};
    const int result = vl_releam_seq(&list, nullptr);
    free_names(list);
    return result;
}

int connections()
{
    ConnectionList list{};
    const int result = vl_get_connection_info(&list, nullptr, nullptr);
    int count = 0;
    for (const ConnectionBlock* block = list.first; block; block = block->next)
        ++count;
    require(list.count == count, "a list has as many blocks as it says");
    vl_destory_connection_seq(&list);
    return result;
}

template <class Receive>
int received(Receive receive)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int result = receive(&data, &length);
    require(result != VL_OK || data, "data that are there have a block");
    vl_free_memory(&data);
    return result;
}

int packet()
{
    return received([](void** data, unsigned int* length) {
        return vl_receive_packetv(1, nullptr, data, length, 0, nullptr, nullptr);
    });
}

int reply()
{
    return received([](void** data, unsigned int* length) {
        return vl_receive_reply2(1, data, length, 0, nullptr, nullptr);
    });
}

int value()
{
    char buffer[16];
    return vl_get_data_template_point("p", buffer, sizeof buffer, nullptr, nullptr);
}

int text(char* given)
{
    CORBA::string_free(given);
    return given ? VL_OK : VL_FAIL;
}

int type()
{
    return text(vl_get_data_template_point_type("p", nullptr, nullptr));
}

int description()
{
    return text(vl_get_data_template_point_description("p", nullptr, nullptr));
}

int info()
{
    char* texts[] = {nullptr, nullptr};
    const int result = received([&](void** data, unsigned int* length) {
        return get_dtp_info2("p", &texts[0], &texts[1], data, length, nullptr, nullptr);
    });
    for (char* each : texts)
        CORBA::string_free(each);
    return result;
}

int count()
{
    int count = 0;
    return vl_event_count("e", &count, nullptr, nullptr);
}

int contention()
{
    return vl_update_contender("g", "c", nullptr, nullptr, nullptr);
}

constexpr int (*exports[])() = {[] { return names(vl_get_all_point_name); },
                                channels,
                                [] { return names(vl_get_query_data_type); },
                                realms,
                                connections,
                                packet,
                                reply,
                                value,
                                type,
                                description,
                                info,
                                count,
                                contention};

// ---------------------------------------------------- what is done to it

class Edits {
public:
    Edits(const std::uint8_t* first, std::size_t size) : bytes(first, first + size) {}

    void operator()(std::string& message)
    {
        for (std::size_t at = 0; at + edit_bytes <= bytes.size(); at += edit_bytes)
            edit(message, at);
    }

private:
    static constexpr std::size_t edit_bytes = 6;

    std::size_t number(std::size_t at, std::size_t count) const
    {
        std::size_t result = 0;
        for (std::size_t i = 0; i < count; ++i)
            result |= static_cast<std::size_t>(bytes[at + i]) << 8 * i;
        return result;
    }

    void edit(std::string& message, std::size_t at) const
    {
        const std::size_t where = number(at, 2) % (message.size() + 1);
        const auto byte = static_cast<char>(bytes[at + 3]);
        const auto aligned = where / 4 * 4;
        switch (bytes[at + 2] % 6) {
        case 0:
            if (where < message.size())
                message[where] = byte;
            break;
        case 1: // a number
            if (aligned + 4 <= message.size())
                message.replace(aligned, 4, 1, byte)
                    .insert(aligned + 1, 3, byte < 0 ? '\xff' : '\0');
            break;
        case 2: // a large one
            if (aligned + 4 <= message.size())
                message[aligned + 3 - number(at + 4, 1) % 4] = byte;
            break;
        case 3:
            message.insert(where, number(at + 4, 2) % 1024, byte);
            break;
        case 4:
            message.erase(where, number(at + 4, 2) % 64);
            break;
        default:
            giop::correct_body_sizes(message);
        }
    }

    const std::vector<std::uint8_t> bytes;
};

// ------------------------------------------------------------- the scene

Script::Reply answer(std::uint8_t choice)
{
    Script::Reply reply;
    reply.result = choice % 4 == 3 ? NON_EXIST_DATA : VL_OK;
    reply.text = std::string(choice % 32, 't');
    reply.more_text = "more";
    reply.count = choice;
    reply.data = std::string(16, 'd');
    reply.names = Script::Names(choice % 8, "name");
    reply.more_names = Script::Names{"", "more"};
    reply.connections = Script::Pairs(choice % 8, {"from", "to"});
    return reply;
}

const char* const operations[] = {
    "get_all_point_name",  "com_chennal_seq",     "get_query_data_type", "get_releam_seq",
    "get_connection_info", "receive_packet",      "receive_reply",       "get_DTP",
    "get_DTP_type",        "get_DTP_description", "get_dtp_info",        "event_count",
    "update_contender"};
static_assert(std::size(operations) == std::size(exports));

// Lives to the end.
struct World {
    World()
    {
        ReaderStandIn::instance().set_servers("own", {"home"});
        vlReferenceContainer::instance()->BuildSettingData();
        // New at every look-up: the broker changes one by what a reply tells of it.
        NamingStandIn::instance().resolve_with(
            [this](const std::string&, const std::string& key) {
                return with_port(home.reference(key), relay.port());
            });
    }

    void answer_with(const Script::Reply& reply)
    {
        for (const char* operation : operations)
            home->answer(operation, reply);
    }

    ScriptedServer home;
    TamperingRelay relay{
        orb::published_endpoint(test_orb(), home.reference(keys::port_service).in()).port};
};

World& world()
{
    static World& only = *std::make_unique<World>().release();
    return only;
}

// A call may still find the connection broken that another one lost, and each failure
// has the next one look the service up.
void require_recovery(int (*call)())
{
    world().answer_with(answer(0));
    for (int attempt = 0; attempt < 3; ++attempt)
        if (call() == VL_OK)
            return;
    require(false, "the calls after a malformed reply work");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    world();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size < 2)
        return 0;
    clear_logged_lines();
    int (*const call)() = exports[bytes[0] % std::size(exports)];
    world().answer_with(answer(bytes[1]));
    world().relay.tamper_with(Edits(bytes + 2, size - 2));
    call();
    world().relay.tamper_with(nullptr); // where there was no reply
    // The one that keeps its reference, and with it what the broker has learned from the
    // reply about addressing, until another operation on ports fails.
    if (call == channels)
        vlReferenceContainer::instance()->ReleasePortReference("home", nullptr);
    require_recovery(call);
    return 0;
}
