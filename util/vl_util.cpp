// The C face of the utility library.
#include "vl_util.h"

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "orb/corba.h"
#include "util/settings.h"
#include "vl_result.h"

using velmo::settings::Milliseconds;
using velmo::settings::Settings;

struct vl_settings {
    std::shared_ptr<const Settings> read;
    std::vector<std::string> positions; // of each server, in one text
};

namespace {

unsigned int to_number(Milliseconds time)
{
    return static_cast<unsigned int>(time.count());
}

std::string joined(const std::vector<std::string>& words)
{
    std::string result;
    for (const std::string& word : words)
        result += (result.empty() ? "" : " ") + word;
    return result;
}

} // namespace

void vl_string_free(char* string)
{
    CORBA::string_free(string);
}

vl_settings* vl_settings_open(const char* path)
{
    try {
        auto opened = std::make_unique<vl_settings>();
        opened->read = path ? Settings::read(path) : Settings::read();
        for (const velmo::settings::Server& server : opened->read->servers())
            opened->positions.push_back(joined(server.positions));
        return opened.release();
    } catch (const std::exception&) { // no memory
        return nullptr;
    }
}

void vl_settings_close(vl_settings* settings)
{
    const std::unique_ptr<vl_settings> closed(settings);
}

const char* vl_settings_path(const vl_settings* settings)
{
    return settings ? settings->read->path().c_str() : "";
}

const char* vl_settings_path_origin(const vl_settings* settings)
{
    return settings ? settings->read->path_origin().c_str() : "";
}

const char* vl_settings_error(const vl_settings* settings)
{
    const bool faulty = settings && !settings->read->error().empty();
    return faulty ? settings->read->error().c_str() : nullptr;
}

unsigned int vl_settings_connect_timeout(const vl_settings* settings, const char** origin)
{
    if (origin)
        *origin = settings ? settings->read->connect_timeout().origin.c_str() : "";
    return settings ? to_number(settings->read->connect_timeout().value) : 0;
}

int vl_settings_server_count(const vl_settings* settings)
{
    return settings ? static_cast<int>(settings->read->servers().size()) : 0;
}

int vl_settings_get_server(const vl_settings* settings, int index,
                           vl_settings_server* server)
{
    if (!server || index < 0 || index >= vl_settings_server_count(settings))
        return PARAMETER_ERROR;
    const auto i = static_cast<std::size_t>(index);
    const velmo::settings::Server& found = settings->read->servers()[i];
    server->name = found.name.c_str();
    server->parent = found.parent.c_str();
    server->role = found.role.c_str();
    server->positions = settings->positions[i].c_str();
    server->naming_url = found.naming_url.value.c_str();
    server->naming_origin = found.naming_url.origin.c_str();
    server->call_timeout_ms = to_number(found.call_timeout.value);
    server->call_timeout_origin = found.call_timeout.origin.c_str();
    server->naming_timeout_ms = to_number(found.naming_timeout.value);
    server->naming_timeout_origin = found.naming_timeout.origin.c_str();
    server->line = found.line;
    return VL_OK;
}
