// A settings file for the library in the test's own process.
#ifndef VELMO_TESTS_SUPPORT_SETTINGS_FILE_H
#define VELMO_TESTS_SUPPORT_SETTINGS_FILE_H

#include <cstdlib>
#include <fstream>
#include <string>

#include "tests/support/temporary_folder.h"

namespace velmo::tests {

// Written to a folder of its own, and named by VELMO_SETTINGS for this process and
// the children that it starts, as long as this object lives.
class SettingsFile {
public:
    explicit SettingsFile(const std::string& content)
    {
        setenv("VELMO_SETTINGS", path().c_str(), 1);
        write(content);
    }

    // Servers without further ado: <velmo ATTRIBUTES> and one <server> for each.
    struct Server {
        std::string name;
        std::string naming_url;
        std::string attributes = "";
    };
    SettingsFile(const std::string& root_attributes, const std::vector<Server>& servers)
        : SettingsFile(document(root_attributes, servers))
    {
    }

    ~SettingsFile() { unsetenv("VELMO_SETTINGS"); }

    void write(const std::string& content)
    {
        std::ofstream(path(), std::ios::trunc) << content;
    }
    void write(const std::string& root_attributes, const std::vector<Server>& servers)
    {
        write(document(root_attributes, servers));
    }

    std::string path() const { return (folder.path() / "velmo.xml").string(); }

private:
    static std::string document(const std::string& root_attributes,
                                const std::vector<Server>& servers)
    {
        std::string text = "<velmo " + root_attributes + ">\n";
        for (const Server& server : servers)
            text += "  <server name=\"" + server.name + "\" naming=\"" + server.naming_url +
                    "\" " + server.attributes + "/>\n";
        return text + "</velmo>\n";
    }

    TemporaryFolder folder;
};

} // namespace velmo::tests

#endif
