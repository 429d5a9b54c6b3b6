// The configuration file: the section of velmod's own in a settings file.
#ifndef VELMO_SERVER_CONFIGURATION_H
#define VELMO_SERVER_CONFIGURATION_H

#include <string>
#include <vector>

#include "server/model/template.h"

namespace velmo::server {

// An option as it stands in the file.
struct FileOption {
    int line;
    std::string name; // without dashes
    std::string value;
};

struct Configuration {
    std::vector<FileOption> options;
    std::vector<model::TemplateDefinition> templates;
};

// The attributes of the element velmod in the root are options; `names` are those
// that may stand there. Its elements <listen address="..."/> and <realm name="..."/>
// are the options that may be given several times, and <templates> holds <template>s,
// which have been checked, each by itself. A file without the section gives nothing.
//
// Throws settings::Fault for the first thing that is wrong, with the rest of the
// settings as well. The values of options are not looked at.
Configuration read_configuration(const std::string& path,
                                 const std::vector<std::string>& names);

} // namespace velmo::server

#endif
