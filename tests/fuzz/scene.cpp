#include "tests/fuzz/scene.h"

#include <map>
#include <memory>
#include <stdexcept>
#include <utility>

#include "idl/service_keys.h"
#include "tests/support/log_stand_in.h"
#include "tests/support/naming_stand_in.h"
#include "tests/support/reader_stand_in.h"
#include "tests/support/scripted_server.h"
#include "vlReferenceContainer.h"

namespace velmo::tests {

namespace {

const char* const operations[] = {"add_event",
                                  "check_null_data",
                                  "clear_event",
                                  "com_chennal_seq",
                                  "connect_port",
                                  "create_DTP",
                                  "create_port",
                                  "create_set",
                                  "declare_event",
                                  "disconnect_port",
                                  "enable_copy",
                                  "event_count",
                                  "get_DTP",
                                  "get_DTP_description",
                                  "get_DTP_type",
                                  "get_all_point_by_typename",
                                  "get_all_point_name",
                                  "get_connection_info",
                                  "get_dtp_info",
                                  "get_query_data_type",
                                  "get_releam_seq",
                                  "load_DTP_snapshot",
                                  "load_port_snapshot",
                                  "make_DTP_snapshot",
                                  "make_DT_snapshot",
                                  "make_port_snapshot",
                                  "out_contend",
                                  "receive_packet",
                                  "receive_reply",
                                  "regist_contender",
                                  "register_port_host",
                                  "remove_DTP",
                                  "reply_packet",
                                  "send_event",
                                  "send_packet",
                                  "send_packet_to_front",
                                  "set_DTP",
                                  "set_DTP_description",
                                  "update_contender"};

const char* const offered_realms[] = {"", "alpha"};

bool offers(const std::string& server, const std::string& realm)
{
    if (server != "home" && server != "far")
        return false;
    for (const char* offered : offered_realms)
        if (realm == offered)
            return true;
    return false;
}

const Script::Answer exceptions[] = {
    nullptr,
    Script::raising(CORBA::TRANSIENT(1, CORBA::COMPLETED_NO)),
    Script::raising(CORBA::COMM_FAILURE(2, CORBA::COMPLETED_MAYBE)),
    Script::raising(CORBA::OBJECT_NOT_EXIST(0x80000000, CORBA::COMPLETED_YES)),
    Script::raising(CORBA::NO_MEMORY()),
    Script::raising(CORBA::UNKNOWN()),
    Script::raising(std::runtime_error("the server's own")),
};

// Lives to the end: references are being dropped while the process exits.
struct World {
    World()
    {
        for (ScriptedServer* server : {&home, &far})
            for (const char* operation : operations)
                (*server)->answer(operation, [this] { return answer(); });
        for (const char* realm : offered_realms)
            for (const char* key : keys::all) {
                references[{"home", service_name(realm, key)}] = home.reference(key);
                references[{"far", service_name(realm, key)}] = far.reference(key);
            }
    }

    CORBA::Object_var look_up(const std::string& server, const std::string& name) const
    {
        if (server == "broken")
            throw CORBA::INTERNAL();
        const auto found = references.find({server, name});
        return found == references.end() ? CORBA::Object_var(CORBA::Object::_nil())
                                         : found->second;
    }

    ScriptedServer home;
    ScriptedServer far{ScriptedServer::Reach::over_the_wire};
    std::map<NamingStandIn::Lookup, CORBA::Object_var> references;
    std::optional<std::string> default_server;
    Script::Answer answer;
};

World& world()
{
    static World& only = *std::make_unique<World>().release();
    return only;
}

} // namespace

void open_scene()
{
    world();
}

void set_scene(Input& input)
{
    NamingStandIn& naming = NamingStandIn::instance();
    naming.reset();
    naming.resolve_with([](const std::string& server, const std::string& name) {
        return world().look_up(server, name);
    });
    naming.set_reachable({"home", "far"});

    // "" is a record without a name, and "0000" stands for no record at all.
    static const std::pair<std::vector<std::string>, std::optional<std::string>> own[] = {
        {{"home", "far"}, "home"},  {{"far"}, "far"},         {{"", "home"}, "home"},
        {{"away", "home"}, "away"}, {{"", ""}, std::nullopt}, {{}, "0000"}};
    const auto& [names, first] = own[input.index(std::size(own))];
    ReaderStandIn::instance().reset();
    ReaderStandIn::instance().set_servers("own", names);
    world().default_server = first;
    vlReferenceContainer::instance()->BuildSettingData();
}

Call::Call(Input& given) : input(given)
{
    static const char* const servers[] = {nullptr, "", "home", "far", "away", "broken"};
    static const char* const realms[] = {nullptr, "", "alpha", "beta"};
    server = input.once_in(16) ? input.text() : servers[input.index(std::size(servers))];
    realm = input.once_in(16) ? input.text() : realms[input.index(std::size(realms))];
    exception = input.once_in(3) ? input.index(std::size(exceptions)) : 0;

    reply.result = input.once_in(2) ? input.number() : VL_OK;
    reply.text = input.string();
    reply.more_text = "more " + reply.text;
    reply.count = input.number();
    reply.data = input.bytes();
    reply.names = input.strings();
    reply.more_names = input.strings();
    for (std::size_t i = 0; i < reply.names->size(); ++i)
        reply.connections->emplace_back(
            (*reply.names)[i], i < reply.more_names->size() ? (*reply.more_names)[i] : "");
    if (chosen_server() != "far" && input.once_in(16)) {
        // Nothing delivered, as nobody else can do it.
        reply.data.reset();
        reply.names.reset();
        reply.more_names.reset();
        reply.connections.reset();
    }
    success = reply.result;
}

std::optional<std::string> Call::chosen_server() const
{
    if (server && *server)
        return server;
    if (world().default_server)
        return world().default_server;
    return server ? std::optional<std::string>("") : std::nullopt;
}

Call::End Call::end() const
{
    const std::optional<std::string> chosen = chosen_server();
    if (refused_at_once)
        return End::refused;
    if (!chosen)
        return End::no_server;
    if (*chosen == "broken")
        return End::look_up_raises;
    if (!offers(*chosen, realm ? realm : ""))
        return End::no_reference;
    if (refused)
        return End::refused;
    return exception != 0 ? End::fails : End::answers;
}

void Call::begin() const
{
    world().answer = exception != 0 ? exceptions[exception] : [this] { return reply; };
    world().home->forget_calls();
    world().far->forget_calls();
    clear_logged_lines();
}

void Call::finish(bool raised, const char* log_text) const
{
    const End end = this->end();
    require(raised == (end == End::look_up_raises),
            "what a look-up raises passes on, and nothing else does");

    const bool remote = end == End::fails || end == End::answers;
    const std::size_t made = world().home->calls().size() + world().far->calls().size();
    require(made == (remote ? remote_calls : 0), "as many remote calls as needed");

    const auto lines = logged_lines();
    require(lines.size() == (end == End::fails && log_text ? 1 : 0),
            "a line is logged for an exception alone, where there is a text for it");
    require(lines.empty() || lines[0].rfind(log_text, 0) == 0, "the line begins so");
}

int Call::expected(const Codes& codes) const
{
    switch (end()) {
    case End::no_server:
        return codes.no_server;
    case End::no_reference:
        return codes.no_reference;
    case End::answers:
        return success;
    default:
        return codes.failure;
    }
}

void Call::take(char* text, bool there, const std::string& value)
{
    require((text != nullptr) == there, "a text is there after success alone");
    if (!text)
        return;
    require(value == text, "the text is the server's");
    CORBA::string_free(text);
}

} // namespace velmo::tests
