// velmo, run for a test.
#ifndef VELMO_TESTS_CLI_VELMO_H
#define VELMO_TESTS_CLI_VELMO_H

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

namespace velmo::tests {

using Words = std::vector<std::string>;

struct Result {
    int status = -1; // -1: it did not end
    std::string out;
    std::string err;
};

// The words of a command line, split at blanks.
Words words(const std::string& line);

// The command to start velmo by, with these words.
Process::Command velmo_command(const Words& words);

// Its environment in every test: no settings, language or colours of this machine's user.
Process::Environment plain_environment();

// A run, to its end, of a few words; input is on standard input.
Result run_velmo(const Words& words, const std::string& input = "",
                 const Process::Environment& environment = {});
Result run_velmo(const std::string& words);

// The result of a successful run with --json, each line of which has to be of the shape in
// schemas/GROUP_VERB.json, after the first words.
std::vector<nlohmann::json> run_json_lines(const Words& words,
                                           const std::string& input = "");
nlohmann::json run_json(const Words& words, const std::string& input = "");
nlohmann::json run_json(const std::string& words);

// A server that commands without --server go to, with the realm "plant" beside the unnamed
// one and a folder for snapshots.
class CommandTest : public ::testing::Test {
protected:
    // Fails unless it succeeds without a message.
    std::string good(const Words& words, const std::string& input = "");
    std::string good(const std::string& words);

    TemporaryFolder folder;
    Velmod velmod{{"--server", "S", "--realm", "plant", "--data-dir",
                   (folder.path() / "data").string()}};
    SettingsFile settings{"local=\"S\"", {{"S", velmod.naming_url()}}};
};

bool contains(const std::string& text, const std::string& part);

} // namespace velmo::tests

#endif
