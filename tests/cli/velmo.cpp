#include "tests/cli/velmo.h"

#include <sstream>

#include "tests/cli/schema.h"

namespace velmo::tests {

namespace {

const nlohmann::json& schema_for(const Words& words)
{
    static std::map<std::string, nlohmann::json> known;
    std::string path = std::string(SCHEMAS_FOLDER) + "/" + words.at(0);
    for (const std::string& end : {words.size() > 1 ? "_" + words[1] : "", std::string()})
        if (const std::string file = path + end + ".json"; std::ifstream(file))
            return known.emplace(file, nlohmann::json::parse(std::ifstream(file)))
                .first->second;
    throw std::runtime_error("there is no schema " + path);
}

} // namespace

Words words(const std::string& line)
{
    std::istringstream stream(line);
    Words result;
    for (std::string word; stream >> word;)
        result.push_back(word);
    return result;
}

Process::Command velmo_command(const Words& words)
{
    Process::Command command{VELMO_PATH};
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

Process::Environment plain_environment()
{
    return {{"HOME", "/nonexistent"},
            {"XDG_CONFIG_HOME", "/nonexistent"},
            {"VELMO_LANG", "en"},
            {"NO_COLOR", ""}};
}

Result run_velmo(const Words& words, const std::string& input,
                 const Process::Environment& environment)
{
    Process::Environment all = environment;
    all.merge(plain_environment());
    Process::Streams streams;
    streams.input = input;
    Process process(velmo_command(words), all, streams);
    const int status = process.wait().value_or(-1);
    return {status, process.out(), process.err()};
}

Result run_velmo(const std::string& line)
{
    return run_velmo(words(line));
}

std::vector<nlohmann::json> run_json_lines(const Words& given, const std::string& input)
{
    Words command = given;
    command.insert(command.begin(), "--json");
    const Result result = run_velmo(command, input);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    std::vector<nlohmann::json> documents;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
        documents.push_back(nlohmann::json::parse(line));
        EXPECT_EQ(difference(schema_for(given), documents.back()), "") << line;
    }
    return documents;
}

nlohmann::json run_json(const Words& given, const std::string& input)
{
    const std::vector<nlohmann::json> documents = run_json_lines(given, input);
    EXPECT_EQ(documents.size(), 1u);
    return documents.empty() ? nlohmann::json() : documents.front();
}

nlohmann::json run_json(const std::string& line)
{
    return run_json(words(line));
}

std::string CommandTest::good(const Words& given, const std::string& input)
{
    const Result result = run_velmo(given, input);
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(given);
    EXPECT_EQ(result.err, "");
    return result.out;
}

std::string CommandTest::good(const std::string& line)
{
    return good(words(line));
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace velmo::tests
