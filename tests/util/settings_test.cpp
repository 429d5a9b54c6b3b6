// What a settings file without fault says, and where it is found.
#include "util/settings.h"

#include <filesystem>

#include "tests/util/settings_fixture.h"
#include "vlServerInfoXmlImpl.h"

namespace velmo::tests {
namespace {

using settings::Milliseconds;
using settings::Server;
using settings::Settings;

const std::string two_servers = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- two of them -->
<velmo local="alpha">
  <server name="alpha" host="alpha.example.com"/>
  <server name="beta" naming="corbaname::b.example.com#beta" role="slave"/>
</velmo>
)";

// ------------------------------------------------------------------ servers

TEST_F(SettingsTest, ServersComeInTheOrderOfTheFileWithLineAndOrigin)
{
    const auto read = this->read(two_servers);
    ASSERT_EQ(read->error(), "");
    ASSERT_EQ(read->servers().size(), 2u);
    const Server& alpha = read->servers()[0];
    EXPECT_EQ(alpha.name, "alpha");
    EXPECT_EQ(alpha.host, "alpha.example.com");
    EXPECT_EQ(alpha.line, 4);
    EXPECT_EQ(alpha.naming_url.value, "corbaloc::1.2@alpha.example.com:2809/NameService");
    EXPECT_EQ(alpha.naming_url.origin, "line 4");
    EXPECT_EQ(alpha.role, "");
    const Server& beta = read->servers()[1];
    EXPECT_EQ(beta.naming_url.value, "corbaname::b.example.com#beta");
    EXPECT_EQ(beta.host, "");
    EXPECT_EQ(beta.role, "slave");
    EXPECT_EQ(beta.line, 5);
}

TEST_F(SettingsTest, PortGoesIntoTheUrl)
{
    const auto read = this->read("<velmo><server name='a' host='h' port='65535'/></velmo>");
    ASSERT_NE(read->find("a"), nullptr) << read->error();
    EXPECT_EQ(read->find("a")->naming_url.value, "corbaloc::1.2@h:65535/NameService");
}

TEST_F(SettingsTest, Ipv6HostsAreBracketedInTheUrlHoweverTheyAreWritten)
{
    const auto read =
        this->read("<velmo><server name='a' host='2001:db8::1'/>"
                   "<server name='b' host='[2001:db8::1]' port='1'/></velmo>");
    ASSERT_EQ(read->error(), "");
    EXPECT_EQ(read->find("a")->naming_url.value,
              "corbaloc::1.2@[2001:db8::1]:2809/NameService");
    EXPECT_EQ(read->find("b")->naming_url.value,
              "corbaloc::1.2@[2001:db8::1]:1/NameService");
}

TEST_F(SettingsTest, NamesMayHoldAnyUtf8UpTo32Bytes)
{
    const std::string longest =
        "Z\u00fcrich/\u6771\u4eac \U0001f600 0123456789ab"; // 32 bytes
    ASSERT_EQ(longest.size(), 32u);
    const auto read =
        this->read("<velmo><server name='" + longest + "' host='h'/></velmo>");
    ASSERT_EQ(read->error(), "");
    EXPECT_NE(read->find(longest.c_str()), nullptr);
}

TEST_F(SettingsTest, ByteOrderMarkAndWindowsLineEndsAreFine)
{
    const auto read =
        this->read("\xef\xbb\xbf<velmo>\r\n<server name='a'\r\n host='h'/>\r\n"
                   "</velmo>\r\n");
    ASSERT_EQ(read->error(), "");
    EXPECT_EQ(read->find("a")->line, 2);
}

TEST_F(SettingsTest, SectionOfTheDaemonIsPassedOver)
{
    const auto read =
        this->read("<velmo><velmod listen='x'><realm>text</realm><server/></velmod>"
                   "<server name='a' host='h'/></velmo>");
    ASSERT_EQ(read->error(), "");
    EXPECT_EQ(read->servers().size(), 1u);
}

TEST_F(SettingsTest, FindTakesListedNamesOnly)
{
    const auto read = this->read(two_servers);
    ASSERT_NE(read->find("beta"), nullptr);
    EXPECT_EQ(read->find("beta")->name, "beta");
    EXPECT_EQ(read->find("Beta"), nullptr);
    EXPECT_EQ(read->find("0000"), nullptr);
    EXPECT_EQ(read->find(""), nullptr);
    EXPECT_EQ(read->find(nullptr), nullptr);
}

TEST_F(SettingsTest, ManyServersAndDeepNestingAreRead)
{
    constexpr int depth = 20000;
    std::string text = "<velmo local='0'>";
    for (int i = 0; i < depth; ++i)
        text += "\n<server name='" + std::to_string(i) + "' host='h'>";
    for (int i = 0; i < depth; ++i)
        text += "</server>";
    const auto read = this->read(text + "</velmo>");
    ASSERT_EQ(read->error(), "");
    ASSERT_EQ(read->servers().size(), static_cast<std::size_t>(depth));
    EXPECT_EQ(read->servers().back().line, depth + 1);
    EXPECT_EQ(names_at(*read, "child"), "1");
    EXPECT_EQ(read->at("others").size(), static_cast<std::size_t>(depth - 2));
}

// ---------------------------------------------------------------- time-outs

TEST_F(SettingsTest, DefaultTimeouts)
{
    const auto read = this->read(two_servers);
    const Server* alpha = read->find("alpha");
    ASSERT_NE(alpha, nullptr);
    EXPECT_EQ(alpha->call_timeout.value, Milliseconds(30000));
    EXPECT_EQ(alpha->naming_timeout.value, Milliseconds(2000));
    EXPECT_EQ(read->connect_timeout().value, Milliseconds(2000));
    EXPECT_EQ(alpha->call_timeout.origin, "default");
    EXPECT_EQ(alpha->naming_timeout.origin, "default");
    EXPECT_EQ(read->connect_timeout().origin, "default");
}

const std::string with_timeouts = R"(<velmo call_timeout_ms="1"
       naming_timeout_ms="2" connect_timeout_ms="0">
  <server name="a" host="h" call_timeout_ms="2147483647">
    <server name="b" host="h" naming_timeout_ms="0"/>
  </server>
</velmo>)";

TEST_F(SettingsTest, TimeoutsOfTheServerThenOfTheRootNotOfTheEnclosingServer)
{
    const auto read = this->read(with_timeouts);
    ASSERT_EQ(read->error(), "");
    const Server* a = read->find("a");
    EXPECT_EQ(a->call_timeout.value, Milliseconds(2147483647));
    EXPECT_EQ(a->call_timeout.origin, "line 3");
    EXPECT_EQ(a->naming_timeout.value, Milliseconds(2));
    EXPECT_EQ(a->naming_timeout.origin, "line 1");
    const Server* b = read->find("b");
    EXPECT_EQ(b->call_timeout.value, Milliseconds(1));
    EXPECT_EQ(b->naming_timeout.value, Milliseconds(0));
    EXPECT_EQ(b->naming_timeout.origin, "line 4");
    EXPECT_EQ(read->connect_timeout().value, Milliseconds(0));
    EXPECT_EQ(read->connect_timeout().origin, "line 1");
}

TEST_F(SettingsTest, EnvironmentOverridesEveryTimeout)
{
    set("VELMO_CALL_TIMEOUT_MS", "11");
    set("VELMO_NAMING_TIMEOUT_MS", "0");
    set("VELMO_CONNECT_TIMEOUT_MS", "13");
    const auto read = this->read(with_timeouts);
    const Server* a = read->find("a");
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->call_timeout.value, Milliseconds(11));
    EXPECT_EQ(a->call_timeout.origin, "environment variable VELMO_CALL_TIMEOUT_MS");
    EXPECT_EQ(a->naming_timeout.value, Milliseconds(0));
    EXPECT_EQ(read->connect_timeout().value, Milliseconds(13));
    EXPECT_TRUE(read->warnings().empty());
}

TEST_F(SettingsTest, TimeoutOfTheEnvironmentThatIsNoneIsIgnoredWithAWarning)
{
    for (const char* text :
         {"abc", "-1", "1.5", "10s", " 1", "2147483648", "99999999999999999999"}) {
        set("VELMO_CALL_TIMEOUT_MS", text);
        const auto read = this->read(with_timeouts);
        EXPECT_EQ(read->error(), "") << text;
        EXPECT_EQ(read->find("b")->call_timeout.value, Milliseconds(1)) << text;
        ASSERT_EQ(read->warnings().size(), 1u) << text;
        EXPECT_NE(read->warnings()[0].find("VELMO_CALL_TIMEOUT_MS"), std::string::npos);
        EXPECT_NE(read->warnings()[0].find(text), std::string::npos);
    }
}

TEST_F(SettingsTest, EmptyVariablesAreAsUnset)
{
    for (const char* name : {"VELMO_CALL_TIMEOUT_MS", "VELMO_LOCAL_SERVER"})
        set(name, "");
    const auto read = this->read(two_servers);
    EXPECT_TRUE(read->warnings().empty());
    EXPECT_EQ(names_at(*read, "own"), "alpha");
    EXPECT_EQ(read->find("alpha")->call_timeout.origin, "default");
}

// ------------------------------------------------------------ finding the file

TEST_F(SettingsTest, TheNamedFileStandsBeforeTheUsers)
{
    set("XDG_CONFIG_HOME", path("config").c_str());
    write(two_servers, "config/velmo/velmo.xml");
    const auto users = Settings::read();
    EXPECT_EQ(users->path(), path("config/velmo/velmo.xml"));
    EXPECT_EQ(users->path_origin(), "user's configuration");

    set("VELMO_SETTINGS", write(with_timeouts, "named.xml").c_str());
    const auto named = Settings::read();
    EXPECT_EQ(named->path(), path("named.xml"));
    EXPECT_EQ(named->path_origin(), "environment variable VELMO_SETTINGS");
    EXPECT_NE(named->find("b"), nullptr);
}

TEST_F(SettingsTest, UsersFileIsBelowHomeWithoutXdgConfigHome)
{
    set("HOME", path("home").c_str());
    write(two_servers, "home/.config/velmo/velmo.xml");
    for (const char* not_a_folder : {"", "relative"}) {
        set("XDG_CONFIG_HOME", not_a_folder);
        EXPECT_EQ(Settings::read()->path(), path("home/.config/velmo/velmo.xml"));
    }
    set("VELMO_SETTINGS", "");
    EXPECT_EQ(Settings::read()->path_origin(), "user's configuration");
}

TEST_F(SettingsTest, ReadingAGivenPathSaysSo)
{
    set("VELMO_SETTINGS", path("other.xml").c_str());
    EXPECT_EQ(read(two_servers)->path_origin(), "argument");
}

class WithoutFile : public SettingsTest {
protected:
    void SetUp() override
    {
        if (std::filesystem::exists("/etc/velmo/velmo.xml"))
            GTEST_SKIP() << "this machine has a settings file";
        set("HOME", path("nobody").c_str());
    }
};

TEST_F(WithoutFile, ThereIsTheBuiltInServerAndNothingAtAnyPosition)
{
    set("VELMO_NAMING_TIMEOUT_MS", "5");
    for (const char* home : {"set", "unset"}) {
        if (home == std::string("unset"))
            set("HOME", nullptr);
        const auto read = Settings::read();
        EXPECT_EQ(read->path(), "");
        EXPECT_EQ(read->path_origin(), "no file");
        EXPECT_EQ(read->error(), "");
        EXPECT_TRUE(read->servers().empty());
        EXPECT_EQ(names_at(*read, "own"), "");
        const Server* server = read->find("0000");
        ASSERT_NE(server, nullptr);
        EXPECT_EQ(server->naming_url.value, "corbaloc::1.2@127.0.0.1:2809/NameService");
        EXPECT_EQ(server->naming_url.origin, "default");
        EXPECT_EQ(server->call_timeout.value, Milliseconds(30000));
        EXPECT_EQ(server->naming_timeout.value, Milliseconds(5));
        EXPECT_EQ(read->find("alpha"), nullptr);
        EXPECT_EQ(read->find(""), nullptr);
    }
}

TEST_F(WithoutFile, FileInPlaceOfAFolderIsNoSettingsFile)
{
    set("HOME", write("", "file").c_str());
    EXPECT_EQ(Settings::read()->path_origin(), "no file");
}

TEST_F(WithoutFile, NamingAnotherLocalServerIsAFault)
{
    set("VELMO_LOCAL_SERVER", "0000");
    EXPECT_NE(Settings::read()->find("0000"), nullptr);
    set("VELMO_LOCAL_SERVER", "alpha");
    const auto read = Settings::read();
    EXPECT_NE(read->error().find("VELMO_LOCAL_SERVER"), std::string::npos);
    EXPECT_NE(read->error().find("alpha"), std::string::npos);
    EXPECT_EQ(read->find("0000"), nullptr);
    EXPECT_EQ(read->find("alpha"), nullptr);
    EXPECT_TRUE(read->perhaps_mended());
}

TEST_F(WithoutFile, TheReaderGivesNoServers)
{
    vlServerInfoXmlImpl reader;
    for (const std::string_view word : settings::position_words)
        EXPECT_TRUE(reader.GetServerInfo(std::string(word).c_str()).empty()) << word;
    EXPECT_TRUE(logged_lines().empty());
}

// ---------------------------------------------------------------- the reader

TEST_F(SettingsTest, TheReaderGivesRecordsOfNameAndUrl)
{
    set("VELMO_SETTINGS", write(two_servers).c_str());
    vlServerInfoXmlImpl reader;
    const auto own = reader.GetServerInfo("own");
    ASSERT_EQ(own.size(), 1u);
    EXPECT_STREQ(own[0].name, "alpha");
    EXPECT_STREQ(own[0].information, "corbaloc::1.2@alpha.example.com:2809/NameService");
    EXPECT_EQ(reader.GetServerInfo("slave").size(), 1u);
    EXPECT_TRUE(reader.GetServerInfo("OWN").empty());
    EXPECT_TRUE(reader.GetServerInfo(nullptr).empty());
}

TEST_F(SettingsTest, TheReaderCutsWhatDoesNotFitTheRecord)
{
    const std::string name(32, 'n');
    const std::string url = "corbaloc::" + std::string(300, 'h') + "/NameService";
    set("VELMO_SETTINGS",
        write("<velmo><server name='" + name + "' naming='" + url + "'/></velmo>").c_str());
    vlServerInfoXmlImpl reader;
    const auto others = reader.GetServerInfo("others");
    ASSERT_EQ(others.size(), 1u);
    EXPECT_EQ(others[0].name, name);
    EXPECT_EQ(others[0].information, url.substr(0, 255));
    EXPECT_EQ(settings::current()->find(name.c_str())->naming_url.value, url);
}

TEST_F(SettingsTest, WhatTheReaderReadIsWhatTheProcessGoesBy)
{
    set("VELMO_SETTINGS", write(two_servers).c_str());
    const vlServerInfoXmlImpl first;
    const auto old = settings::current();
    EXPECT_NE(old->find("alpha"), nullptr);
    write(with_timeouts);
    EXPECT_EQ(settings::current(), old); // a healthy file is not watched
    const vlServerInfoXmlImpl second;
    EXPECT_EQ(settings::current()->find("alpha"), nullptr);
    EXPECT_NE(settings::current()->find("b"), nullptr);
    EXPECT_NE(old->find("alpha"), nullptr); // whoever holds it may go on
}

} // namespace
} // namespace velmo::tests
