// A settings file of the test's own, in an environment without any other.
#ifndef VELMO_TESTS_UTIL_SETTINGS_FIXTURE_H
#define VELMO_TESTS_UTIL_SETTINGS_FIXTURE_H

#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/log_stand_in.h"
#include "tests/support/temporary_folder.h"
#include "util/settings.h"

namespace velmo::tests {

class SettingsTest : public testing::Test {
protected:
    SettingsTest()
    {
        for (const char* name : {"VELMO_SETTINGS", "VELMO_LOCAL_SERVER",
                                 "VELMO_CALL_TIMEOUT_MS", "VELMO_NAMING_TIMEOUT_MS",
                                 "VELMO_CONNECT_TIMEOUT_MS", "XDG_CONFIG_HOME", "HOME"})
            set(name, nullptr);
        clear_logged_lines();
    }

    ~SettingsTest() override
    {
        for (const auto& [name, value] : before)
            change(name.c_str(), value ? value->c_str() : nullptr);
    }

    // Sets or, with null, removes a variable of the environment for this test.
    void set(const char* name, const char* value)
    {
        const char* old = std::getenv(name);
        before.emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
        change(name, value);
    }

    // Below the test's folder.
    std::string path(const std::string& name = "velmo.xml") const
    {
        return (folder.path() / name).string();
    }

    // Writes a file in place; returns its path.
    std::string write(const std::string& text, const std::string& name = "velmo.xml") const
    {
        std::filesystem::create_directories(
            std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }

    std::shared_ptr<const settings::Settings> read(const std::string& text) const
    {
        return settings::Settings::read(write(text));
    }

    static std::string names_at(const settings::Settings& read, std::string_view position)
    {
        std::string names;
        for (const settings::Server* server : read.at(position))
            names += (names.empty() ? "" : " ") + server->name;
        return names;
    }

private:
    static void change(const char* name, const char* value)
    {
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }

    TemporaryFolder folder;
    std::map<std::string, std::optional<std::string>> before;
};

} // namespace velmo::tests

#endif
