// Exports that call no service.

#include "tests/fuzz/exports.h"

#include <cstdlib>
#include <cstring>

#include "vl_api.h"

namespace velmo::tests {

namespace {

// connect(server)
void check_connect(Call& call, int (*connect)(const char*))
{
    const auto server = call.chosen_server();
    const int expected = !server                                 ? NULL_SERVER_NAME
                         : *server == "home" || *server == "far" ? VL_OK
                                                                 : NAMING_SERVER_NOT_ONLINE;
    require(connect(call.server) == expected, "only some naming services answer");
}

void mid_connect(Call& call)
{
    check_connect(call, vl_mid_connect);
}

void mid_is_connect(Call& call)
{
    check_connect(call, vl_mid_is_connect);
}

void mid_disconnect(Call&)
{
    require(vl_mid_disconnect() == VL_OK, "it closes nothing");
}

void get_servername(Call& call)
{
    const char* position = call.input.once_in(2) ? "own" : call.input.text();
    const ServerRecord record = vl_get_servername(position);
    const bool own = position && std::strcmp(position, "own") == 0;
    require(own || record.count == 0, "no server is known elsewhere");
    for (int i = 0; i < VL_SERVER_RECORD_NAMES; ++i)
        require((record.names[i] != nullptr) == (i < record.count),
                "as many names as counted");
}

void error_string(Call& call)
{
    const wchar_t* text = get_error_string(call.input.number());
    require(text && *text, "every code has a text");
}

void free_memory(Call& call)
{
    void* block = call.input.once_in(2) ? std::malloc(call.input.index(100)) : nullptr;
    vl_free_memory(&block);
    require(!block, "a freed block is forgotten");
    vl_free_memory(nullptr);
}

} // namespace

Exercises general_exports()
{
    return {mid_connect,    mid_is_connect, mid_disconnect,
            get_servername, error_string,   free_memory};
}

} // namespace velmo::tests
