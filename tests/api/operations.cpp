#include "tests/api/operations.h"

#include "idl/service_keys.h"
#include "tests/support/callers_list.h"
#include "vlReferenceContainer.h"
#include "vl_api.h"

namespace velmo::tests {

std::set<int> Operation::codes() const
{
    return {0, failures.broker, failures.other, failures.no_server, failures.no_reference};
}

void PrintTo(const Operation& operation, std::ostream* out)
{
    *out << operation.name;
}

Script::Reply full_reply(int result)
{
    Script::Reply reply;
    reply.result = result;
    reply.data = "hello";
    reply.names = Script::Names{"a", "b"};
    reply.more_names = Script::Names{"c"};
    reply.connections = Script::Pairs(1, {"from", "to"});
    reply.text = "text";
    reply.more_text = "more";
    reply.count = 17;
    return reply;
}

std::vector<Operation> contention_operations()
{
    return {
        {"vl_regist_contender",
         "regist_contender",
         keys::contention_service,
         [](const char* server, const char* realm) {
             return vl_regist_contender("group", "one", "hello", 5, "role", -3, server,
                                        realm);
         },
         R"(regist_contender("group", "one", "hello", "role", -3))",
         {155, 155}},
        {"vl_update_contender",
         "update_contender",
         keys::contention_service,
         [](const char* server, const char* realm) {
             return vl_update_contender("group", "one", "unused", server, realm);
         },
         R"(update_contender("group", "one"))",
         {156, 156}},
        {"vl_out_contend",
         "out_contend",
         keys::contention_service,
         [](const char* server, const char* realm) {
             return vl_out_contend("group", "one", "unused", server, realm);
         },
         R"(out_contend("group", "one"))",
         {157, 157}},
    };
}

std::vector<Operation> realm_operations()
{
    Operation list{"vl_releam_seq",
                   "get_releam_seq",
                   keys::service_manager,
                   [](const char* server, const char*) {
                       return with_name_list([server](NameList* realms) {
                           return vl_releam_seq(realms, server);
                       });
                   },
                   "get_releam_seq()",
                   {137, 137}};
    list.failures.no_reference = 0; // the realm ROOT
    list.cache = Operation::Cache::none;
    list.hands_on = false;
    return {list};
}

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> all = [] {
        std::vector<Operation> joined;
        for (const auto group :
             {port_operations, point_operations, contention_operations, realm_operations})
            for (const Operation& operation : group())
                joined.push_back(operation);
        return joined;
    }();
    return all;
}

const std::vector<Operation>& idle_operations()
{
    static const std::vector<Operation> all = {
        {"vl_load_dt_snapshot",
         nullptr,
         nullptr,
         vl_load_dt_snapshot,
         nullptr,
         {0, 0, nullptr, 0, 0}},
        {"vl_load_port_snapshot",
         nullptr,
         nullptr,
         vl_load_port_snapshot,
         nullptr,
         {0, 0, nullptr, 0, 0}},
    };
    return all;
}

void give_back_lost_reference(const char* server, const char* realm)
{
    vlReferenceContainer& registry = *vlReferenceContainer::instance();
    const ACE_String_Base<char> name(realm ? realm : "");
    for (const auto& cached : registry.GetReleamList(server)) {
        if (cached != name)
            continue;
        const Velmo::DT_PORT_SVC::Port_Factory_var mine =
            registry.GetPortReferenceWithServerName(server, realm);
        CORBA::release(mine.in());
    }
}

} // namespace velmo::tests
