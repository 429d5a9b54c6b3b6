// Every example tells what is wrong when there is no server.
#include <filesystem>

#include "tests/examples/example.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;

namespace {

const std::vector<Process::Command> commands{{"events", "raise", "x"},
                                             {"failover", "drive"},
                                             {"failover", "a", "1"},
                                             {"fan_out"},
                                             {"ping_pong"},
                                             {"points"},
                                             {"request_reply", "serve"},
                                             {"request_reply", "ask", "1", "x"},
                                             {"thermostat"},
                                             {"threads"}};

TEST(Unreachable, EveryExampleEndsWithTheCodeAndItsText)
{
    SettingsFile settings("local=\"S\"", {{"S", naming_url(free_port())}});
    for (Process::Command command : commands) {
        command.front() = example(command.front());
        Process process(command, {{"VELMO_LANG", "en"}});
        EXPECT_EQ(process.wait(), 1) << command.front();
        EXPECT_NE(process.err().find("99"), std::string::npos) << process.err();
        EXPECT_NE(process.err().find("The server does not answer."), std::string::npos)
            << process.err();
    }
}

TEST(Unreachable, NoExampleIsForgotten)
{
    int sources = 0;
    for (const auto& file : std::filesystem::directory_iterator(EXAMPLE_SOURCES)) {
        const std::string name = file.path().stem();
        if (file.path().extension() != ".c" && file.path().extension() != ".cpp")
            continue;
        ++sources;
        bool run = false;
        for (const Process::Command& command : commands)
            run = run || command.front() == name;
        EXPECT_TRUE(run) << name;
    }
    EXPECT_EQ(sources, 8);
}

TEST(Usage, IsToldForWrongArguments)
{
    const std::vector<Process::Command> wrong{
        {"events"}, {"failover"}, {"failover", "a"}, {"request_reply", "ask", "100", "x"}};
    for (Process::Command command : wrong) {
        command.front() = example(command.front());
        Process process(command);
        EXPECT_EQ(process.wait(), 2) << command.front();
        EXPECT_EQ(process.err().substr(0, 7), "usage: ");
    }
}

} // namespace
