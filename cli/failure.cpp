#include "cli/failure.h"

#include <map>

#include "cli/servers.h"
#include "cli/text.h"
#include "vl_api.h"

namespace velmo::cli {

namespace {

bool is_remote_failure(int code)
{
    return code >= VL_REMOTE_FAILURE_FIRST && code <= VL_REMOTE_FAILURE_LAST;
}

const std::map<int, std::string>& names()
{
    static const std::map<int, std::string> all = {
#define CODE_AND_NAME(name, code) {code, #name},
        VL_RESULT_CODES(CODE_AND_NAME)
#undef CODE_AND_NAME
    };
    return all;
}

constexpr const char* find_server = "see which servers answer with: velmo server list";
constexpr const char* name_server =
    "name one with --server, or mark one in the settings as this host's own";
constexpr const char* list_points = "list the points with: velmo point ls";
constexpr const char* list_ports = "list the ports with: velmo port ls";
constexpr const char* lost_call =
    "check the server with: velmo server ping; the reason is shown by setting "
    "VELMO_LOG=stderr; --timeout gives it more time";

} // namespace

std::string code_name(int code)
{
    if (is_remote_failure(code))
        return VL_REMOTE_FAILURE_NAME;
    const auto found = names().find(code);
    return found == names().end() ? "" : found->second;
}

std::string code_advice(int code)
{
    static const std::map<int, const char*> advice = {
        {PARAMETER_ERROR, "names have 1 to 255 bytes, descriptions up to 4096, and $SYS/ "
                          "is the server's own"},
        {MEMORY_ALLOCATION_FAI, "remove what is not needed any more"},
        {TIME_OUT, "wait longer, or see that somebody sends"},
        {EMPTY_QUEUE, "wait longer with --wait, or see that somebody sends, or answers"},
        {WOULD_BLOCK, "wait for room, or see that somebody receives"},
        {SENDMSG_TIMEOUT, "see that somebody receives"},
        {ALREADY_CONNECTED, "list the connections with: velmo port ls"},
        {NOT_CONNECTED, "connect two ports with: velmo port connect"},
        {INVAILD_PORT_HANDLE, list_ports},
        {RECEIVER_IS_NOT_EXIST, list_ports},
        {INVAILD_SINK_MODE, "the modes are 30001, 30002 and 30004"},
        {OBJECT_ALREADY_EXSIT, "choose another name, or remove the old one first"},
        {OBJECT_PATCH_FAI, "start the server with a folder for it: velmod --data-dir "
                           "FOLDER; its log has the reason"},
        {NULL_SERVER_NAME, name_server},
        {NAMING_SERVER_NOT_ONLINE, find_server},
        {CREATE_DATAPOINT_FAI, "remove points, or start the server with a larger "
                               "--max-points"},
        {INVAILD_NULL_PARAMETER, "names have at least one byte"},
        {EVENT_DECLARE_NUL, "list the events with: velmo point ls --type '$SYS'; add one "
                            "with: velmo event add"},
        {NO_MATCH_EVENT_CODE, "declare the number first with: velmo event declare"},
        {ABSTRACT_DATA_TYPE_NULL, "list the templates with: velmo point types"},
        {SIZE_IS_NOT_MATCH, "a point's value has the size of its template; what is sent "
                            "and raised, too, is within the server's limits"},
        {VARIABLE_IS_NOT_EXIST, list_points},
        {CONTENDER_IS_NUL, "join the group again with: velmo contend join"},
        {VL_NO_REFERENCE, find_server},
    };
    const auto found = advice.find(code);
    if (found != advice.end())
        return found->second;
    return is_remote_failure(code) ? lost_call : "";
}

std::string code_text(int code)
{
    return to_utf8(get_error_string(code));
}

Failure call_failure(int code, const std::string& action, const std::string& server,
                     const std::string& realm)
{
    const bool unreachable = code == VL_NO_REFERENCE || code == NULL_SERVER_NAME ||
                             code == NAMING_SERVER_NOT_ONLINE;
    const std::string name = code_name(code);
    return Failure(failed,
                   "cannot " + action + ": " + (name.empty() ? "result code" : name) +
                       " (" + std::to_string(code) + "): " + code_text(code),
                   unreachable ? why_unreachable(server, realm, code_advice(code))
                               : code_advice(code));
}

} // namespace velmo::cli
