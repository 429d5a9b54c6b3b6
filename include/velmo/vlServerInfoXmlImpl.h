// Reads the servers and their positions from the settings file.
#ifndef VELMO_VLSERVERINFOXMLIMPL_H
#define VELMO_VLSERVERINFOXMLIMPL_H

#include <memory>
#include <vector>

#include "vl_export.h"

// One server as the settings give it; a plain record, copied by value.
struct _ServerInfoData {
    char information[256]; // the URL of its naming service, NUL-terminated, cut to fit
    char name[33];         // at most 32 bytes and a NUL
};
static_assert(sizeof(_ServerInfoData) == 289, "the record's size is part of the interface");

namespace velmo::settings {
class Settings;
}

class VL_EXPORT vlServerInfoXmlImpl {
public:
    // Finds and reads the settings file: VELMO_SETTINGS, else
    // $XDG_CONFIG_HOME/velmo/velmo.xml (or ~/.config/velmo/velmo.xml), else
    // /etc/velmo/velmo.xml. What it read becomes what the process's naming
    // client goes by. A file that is missing yields no servers; one that is
    // faulty as well, and is reported through the log, once for each fault.
    // Never throws on account of a file.
    vlServerInfoXmlImpl();
    virtual ~vlServerInfoXmlImpl();

    // The servers at a position ("parent", "own", "sibling", "child", "others",
    // "master", "slave") in the order of the file; none for any other word.
    std::vector<_ServerInfoData> GetServerInfo(const char* position);

private:
    std::shared_ptr<const velmo::settings::Settings> settings;
};

#endif
