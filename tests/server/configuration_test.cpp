// What velmod is told by its configuration file and its command line.
#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "server/options.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using namespace velmo::server;
using std::chrono::milliseconds;
using velmo::tests::TemporaryFolder;

namespace {

// In an environment without any settings file.
class Configuration : public ::testing::Test {
protected:
    Configuration()
    {
        unsetenv("VELMO_SETTINGS");
        setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
    }

    std::string write(const std::string& text, const std::string& name = "c.xml") const
    {
        const std::filesystem::path path = folder.path() / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
        return path.string();
    }

    // With a section velmod of these attributes and this content, and more arguments.
    Options read(const std::string& attributes, const std::string& content = "",
                 Arguments arguments = {}) const
    {
        const std::string path =
            write("<velmo>\n<velmod " + attributes + ">" + content + "</velmod>\n</velmo>");
        arguments.insert(arguments.end(), {"--config", path});
        return read_options(arguments);
    }

    static std::string failure(const Arguments& arguments)
    {
        try {
            read_options(arguments);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no failure";
    }

    TemporaryFolder folder;
};

TEST_F(Configuration, WithoutAFileAndArgumentsTheDefaultsHold)
{
    const Options options = read_options({});
    EXPECT_EQ(options.server, "0000");
    EXPECT_EQ(options.file, "");
    EXPECT_TRUE(options.realms.empty());
    ASSERT_EQ(options.endpoints.size(), 1u);
    EXPECT_EQ(host_and_port(options.endpoints[0]), "127.0.0.1:2809");
    EXPECT_TRUE(options.use_unix_socket);
    EXPECT_FALSE(options.metrics);
    EXPECT_EQ(options.limits.max_message, 64u << 20);
    EXPECT_EQ(options.limits.max_wait, milliseconds(20000));
    EXPECT_TRUE(options.given.empty());
}

TEST_F(Configuration, EveryOptionHasItsPlaceInTheFile)
{
    const Options options =
        read(R"(server="press" naming="corbaloc::1.2@h:1/NameService" no-unix="true"
                data-dir="/var/x" load="true" metrics="127.0.0.1:9464" max-points="7"
                max-queue-bytes="2K" max-message="3M" max-wait="40" lease="500")",
             R"(<listen address="127.0.0.1:1"/><listen address="[::1]:2"/>
                <realm name="a"/><realm name="plant/north"/>)");
    EXPECT_EQ(options.server, "press");
    EXPECT_EQ(options.naming, "corbaloc::1.2@h:1/NameService");
    EXPECT_FALSE(options.use_unix_socket);
    EXPECT_EQ(options.data_dir, "/var/x");
    EXPECT_TRUE(options.load);
    ASSERT_TRUE(options.metrics);
    EXPECT_EQ(host_and_port(*options.metrics), "127.0.0.1:9464");
    EXPECT_EQ(options.limits.max_points, 7u);
    EXPECT_EQ(options.limits.max_queue_bytes, 2048u);
    EXPECT_EQ(options.limits.max_message, 3u << 20);
    EXPECT_EQ(options.limits.max_wait, milliseconds(40));
    EXPECT_EQ(options.limits.lease, milliseconds(500));
    ASSERT_EQ(options.endpoints.size(), 2u);
    EXPECT_EQ(host_and_port(options.endpoints[1]), "[::1]:2");
    EXPECT_EQ(options.realms, (std::vector<std::string>{"a", "plant/north"}));
    EXPECT_EQ(read(R"(unix-socket="/tmp/s")").unix_socket, "/tmp/s");
}

TEST_F(Configuration, TheCommandLineWins)
{
    const Options options =
        read(R"(server="file" max-points="1" max-wait="2" no-unix="true")",
             R"(<realm name="file"/><realm name="other"/>)",
             {"--server", "line", "--realm", "line", "--max-wait", "3", "--unix-socket",
              "/tmp/s"});
    EXPECT_EQ(options.server, "line");
    EXPECT_EQ(options.realms, std::vector<std::string>{"line"});
    EXPECT_EQ(options.limits.max_wait, milliseconds(3));
    EXPECT_EQ(options.limits.max_points, 1u);
    EXPECT_TRUE(options.use_unix_socket);
    EXPECT_EQ(options.unix_socket, "/tmp/s");
}

TEST_F(Configuration, WhatOnePlaceSaysAndTheOtherNeedsGoTogether)
{
    EXPECT_TRUE(read(R"(load="true")", "", {"--data-dir", "/var/x"}).load);
    EXPECT_TRUE(read(R"(data-dir="/var/x")", "", {"--load"}).load);
    EXPECT_NE(failure({"--load"}).find("--data-dir"), std::string::npos);
}

TEST_F(Configuration, TemplatesAreDefinitions)
{
    const Options options = read("", R"(<templates>
        <template name="pressure" type="float64" initial="1.5" description="in bar"/>
        <template name="label" type="text" max-size="32"/>
        <template name="block" type="bytes" size="4" initial="00ff00ff"/>
      </templates>)");
    ASSERT_EQ(options.templates.size(), 3u);
    EXPECT_EQ(options.templates[0].name, "pressure");
    EXPECT_EQ(options.templates[0].kind, "float64");
    EXPECT_EQ(options.templates[0].initial, "1.5");
    EXPECT_EQ(options.templates[0].description, "in bar");
    EXPECT_EQ(options.templates[1].max_size, 32u);
    EXPECT_EQ(options.templates[1].initial, std::nullopt);
    EXPECT_EQ(options.templates[2].size, 4u);
}

TEST_F(Configuration, TheSettingsFileIsReadWhereNoOtherIsNamed)
{
    const std::string usual =
        write("<velmo><server name='s' host='h'/><velmod server='usual'/></velmo>",
              "velmo/velmo.xml");
    EXPECT_EQ(read_options({}).server, "usual");
    EXPECT_EQ(read_options({}).file, usual);
    setenv("VELMO_SETTINGS", write("<velmo><velmod server='named'/></velmo>").c_str(), 1);
    EXPECT_EQ(read_options({}).server, "named");
    EXPECT_EQ(read(R"(server="asked for")").server, "asked for");
}

TEST_F(Configuration, AFileWithoutTheSectionChangesNothing)
{
    const std::string path = write("<velmo><server name='s' host='h'/></velmo>");
    EXPECT_EQ(read_options({"--config", path}).server, "0000");
}

TEST_F(Configuration, AFileThatCannotBeReadIsNamedWithTheReason)
{
    const std::string path = (folder.path() / "none.xml").string();
    EXPECT_EQ(failure({"--config", path}),
              path + ":1: the file cannot be read: No such file or directory");
    EXPECT_NE(failure({"--config", folder.path().string()}).find("not a regular file"),
              std::string::npos);
}

struct Slip {
    const char* text; // of the file
    const char* line;
    const char* reason;
};

class Faulty : public Configuration, public ::testing::WithParamInterface<Slip> {};

TEST_P(Faulty, IsReportedWithFileLineAndReason)
{
    const std::string path = write(GetParam().text);
    const std::string message = failure({"--config", path});
    EXPECT_EQ(message.rfind(path + ":" + GetParam().line + ": ", 0), 0u) << message;
    EXPECT_NE(message.find(GetParam().reason), std::string::npos) << message;
}

// The text of a section, from line 2 on, that holds this.
#define SECTION(content) "<velmo>\n<velmod>\n" content "</velmod></velmo>"
#define TEMPLATES(content) SECTION("<templates>\n" content "</templates>")

INSTANTIATE_TEST_SUITE_P(
    Velmod, Faulty,
    ::testing::Values(
        Slip{"", "1", "the root element velmo is missing"},
        Slip{"<velmo>\n<velmod", "2", "not XML"},
        Slip{"<velmo>\n<velmod/>\n<velmod/></velmo>", "3", "a second section"},
        Slip{"<velmo><velmod/>\n<server/></velmo>", "2", "a server without a name"},
        Slip{"<velmo>\n<velmod max-point='1'/></velmo>", "2", "unknown attribute"},
        Slip{"<velmo><velmod ready-fd='3'/></velmo>", "1", "unknown attribute"},
        Slip{"<velmo><velmod config='x'/></velmo>", "1", "unknown attribute"},
        Slip{"<velmo><velmod help='true'/></velmo>", "1", "unknown attribute"},
        Slip{"<velmo><velmod lease='1' lease='1'/></velmo>", "1", "twice"},
        Slip{"<velmo>\n\n<velmod max-points='many'/></velmo>", "3", "max-points"},
        Slip{"<velmo><velmod max-points='-1'/></velmo>", "1", "max-points"},
        Slip{"<velmo><velmod max-points=''/></velmo>", "1", "max-points"},
        Slip{"<velmo><velmod max-message='0'/></velmo>", "1", "max-message"},
        Slip{"<velmo><velmod max-message='1X'/></velmo>", "1", "max-message"},
        Slip{"<velmo><velmod max-message='99999999999G'/></velmo>", "1", "max-message"},
        Slip{"<velmo><velmod max-queue-bytes='-1K'/></velmo>", "1", "max-queue-bytes"},
        Slip{"<velmo><velmod lease='0'/></velmo>", "1", "lease"},
        Slip{"<velmo><velmod max-wait='1 h'/></velmo>", "1", "max-wait"},
        Slip{"<velmo><velmod load='maybe'/></velmo>", "1", "load"},
        Slip{"<velmo><velmod load=''/></velmo>", "1", "load is empty"},
        Slip{"<velmo><velmod metrics='9464'/></velmo>", "1", "HOST:PORT"},
        Slip{"<velmo><velmod metrics='h:99999'/></velmo>", "1", "there is no port"},
        Slip{"<velmo><velmod server=''/></velmo>", "1", "server"},
        Slip{"<velmo><velmod no-unix='true' unix-socket='/s'/></velmo>", "1", "unix"},
        Slip{SECTION("words"), "3", "text that does not belong here"},
        Slip{SECTION("<port/>"), "3", "unknown element \"port\" in velmod"},
        Slip{SECTION("<realm/>"), "3", "realm without name"},
        Slip{SECTION("<realm name='a'>x</realm>"), "3", "text that does not belong"},
        Slip{SECTION("<realm name='a'><realm name='b'/></realm>"), "3", "in realm"},
        Slip{SECTION("<realm name='a'/>\n<realm name='a'/>"), "4", "given twice"},
        Slip{SECTION("<realm name='a'/>\n<realm name='ROOT'/>"), "4", "ROOT"},
        Slip{SECTION("<realm name='a//b'/>"), "3", "must not be empty"},
        Slip{SECTION("<realm name='[a,b]' x=''/>"), "3", "unknown attribute"},
        Slip{SECTION("<listen/>"), "3", "listen without address"},
        Slip{SECTION("<listen address='h:x'/>"), "3", "there is no port"},
        Slip{SECTION("<templates x=''/>"), "3", "unknown attribute"},
        Slip{TEMPLATES("<realm name='a'/>"), "4", "unknown element"},
        Slip{TEMPLATES("<template type='int8'/>"), "4", "a template without name"},
        Slip{TEMPLATES("<template name='a'/>"), "4", "a template without type"},
        Slip{TEMPLATES("<template name='' type='int8'/>"), "4", "1 to 255 bytes"},
        Slip{TEMPLATES("<template name='a' type='int9'/>"), "4", "int9"},
        Slip{TEMPLATES("<template name='a' type='text' size='x'/>"), "4", "size is"},
        Slip{TEMPLATES("<template name='a' type='text' size='-1'/>"), "4", "size is"},
        Slip{TEMPLATES("<template name='a' type='int8' size='1'/>"), "4", "size"},
        Slip{TEMPLATES("<template name='a' type='int8' initial='300'/>"), "4", "300"},
        Slip{TEMPLATES("<template name='a' type='bytes' initial='0g'/>"), "4", "0g"},
        Slip{TEMPLATES("<template name='int8' type='int8'/>"), "4", "built in"},
        Slip{
            TEMPLATES("<template name='a' type='int8'/>\n<template name='a' type='text'/>"),
            "5", "already there on line 4"}));

TEST_F(Configuration, ATemplateMayBeTooLargeForTheServersMessages)
{
    // What does not fit is found when the realms are made, not here.
    EXPECT_EQ(read("max-message='10'",
                   "<templates><template name='a' type='bytes' size='11'/></templates>")
                  .templates.size(),
              1u);
}

TEST_F(Configuration, WhatCannotChangeWhileRunningIsNamed)
{
    const Options running = read(R"(max-points="1" server="a")", "", {"--no-unix"});
    EXPECT_TRUE(needing_restart(running, running).empty());
    const Options limits =
        read(R"(max-points="2" max-wait="1" lease="1" server="a")", "", {"--no-unix"});
    EXPECT_TRUE(needing_restart(running, limits).empty());
    const Options others = read(R"(server="b" max-message="1")", R"(<realm name="r"/>)");
    EXPECT_EQ(needing_restart(running, others),
              (std::vector<std::string>{"server", "realm", "no-unix", "max-message"}));
}

} // namespace
