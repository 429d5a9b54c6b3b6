// The servers that the settings know.
#ifndef VELMO_CLI_SERVERS_H
#define VELMO_CLI_SERVERS_H

#include <optional>
#include <string>
#include <vector>

#include "cli/memory.h"

namespace velmo::cli {

// One reading of the settings. Contacts nobody.
class Servers {
public:
    Servers() : settings(vl_settings_open(nullptr)) {}

    // As the file lists them; without a file the built-in one. Their texts belong to
    // this object.
    std::vector<vl_settings_server> all() const;

    // Those without a name given go to the first own one; none when there is no such.
    std::optional<vl_settings_server> find(const std::string& name) const;

    bool has_file() const { return *vl_settings_path(settings.get()) != '\0'; }

    // What is wrong with the settings; "" when nothing is.
    std::string fault() const;

private:
    Settings settings;
};

// Why a server or a realm of it could not be reached as far as the settings tell, and what
// to do next. otherwise: what to do when they are well and know the server.
std::string why_unreachable(const std::string& server, const std::string& realm,
                            const std::string& otherwise);

// What holds without a settings file, for people.
std::string without_settings();

} // namespace velmo::cli

#endif
