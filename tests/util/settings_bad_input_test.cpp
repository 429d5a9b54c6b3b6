// Settings files with faults: each is told with file, line and reason, and
// with none of them has any server an address.
#include <filesystem>
#include <random>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/util/settings_fixture.h"

namespace velmo::tests {
namespace {

using settings::Settings;

struct BadFile {
    const char* title;
    int line;
    const char* reason; // a part of it
    std::string text;
};

void PrintTo(const BadFile& file, std::ostream* out)
{
    *out << file.title;
}

const std::string long_name(33, 'n');

// A server on the second line with these attributes.
std::string server(const std::string& attributes)
{
    return "<velmo>\n<server " + attributes + "/>\n</velmo>";
}

const std::vector<BadFile> bad_files{
    {"Empty", 1, "root element velmo is missing", ""},
    {"WhiteSpaceAlone", 1, "root element velmo is missing", "\n \n"},
    {"CommentAlone", 1, "root element velmo is missing", "<!-- -->"},
    {"NotXml", 1, "text that does not belong here: \"[servers]\"", "[servers]"},
    {"NotXmlWithATag", 2, "not XML", "<velmo>\n< 5 && 6>\n</velmo>"},
    {"Truncated", 3, "not XML", "<velmo>\n<server name='a' host='h'/>\n<server nam"},
    {"TruncatedBetweenElements", 2, "not XML", "<velmo>\n<server name='a' host='h'/>\n"},
    {"TruncatedComment", 2, "not XML", "<velmo>\n<!-- </velmo>"},
    {"CrossedTags", 3, "not XML",
     "<velmo>\n<server name='a' host='h'>\n</velmo>\n</server>"},
    {"WrongRoot", 2, "root element is \"velmos\"", "<!-- -->\n<velmos></velmos>"},
    {"SecondRoot", 2, "second root", "<velmo/>\n<velmo/>"},
    {"TextBehindTheRoot", 4, "text", "<velmo/>\n\n\nrest"},
    {"TextBehindALoneCarriageReturn", 1, "text", "\rtext"},
    {"TextBehindLineEndsOfTwoBytes", 3, "text", "<velmo/>\r\n\r\ntext"},
    {"TextBehindAReferenceToALineEnd", 2, "text", "<velmo>\n&#10;&#10;text</velmo>"},
    {"LittleTextBehindAByteOrderMark", 2, "text", "\xef\xbb\xbf\nx\ny<velmo/>"},
    {"TextBehindAByteOrderMark", 3, "text", "\xef\xbb\xbf\n\ntext"},
    {"TextInTheRoot", 3, "text", "<velmo>\n\nalpha</velmo>"},
    {"TextInAServer", 2, "text", "<velmo>\n<server name='a' host='h'>b</server></velmo>"},
    {"CharacterData", 2, "text", "<velmo>\n<![CDATA[x]]></velmo>"},
    {"NulByte", 2, "NUL",
     std::string("<velmo>\n<server name='a\0b' host='h'/></velmo>", 42)},
    {"NulByReference", 2, "character", server("name='a&#0;b' host='h'")},
    {"NulByHexadecimalReference", 2, "character", server("name='a&#x000;b' host='h'")},
    {"NulByOverflowOfAReference", 2, "character", server("name='a&#4294967296;' host='h'")},
    {"SurrogateByReference", 2, "character", server("name='&#xd800;' host='h'")},
    {"ReferenceToNothing", 2, "character", server("name='&#;' host='h'")},
    {"OverlongUtf8", 2, "UTF-8", server("name='\xc0\x80' host='h'")},
    {"OtherEncoding", 2, "UTF-8", server("name='Z\xfcrich' host='h'")},
    {"WideEncoding", 1, "NUL", std::string("\xff\xfe<\0v\0e\0l\0m\0o\0/\0>\0", 18)},

    {"UnknownElement", 2, "unknown element \"servr\"",
     "<velmo>\n<servr name='a'/></velmo>"},
    {"UnknownElementInAServer", 3, "unknown element",
     "<velmo>\n<server name='a' host='h'>\n<port/></server></velmo>"},
    {"SectionOfTheDaemonInAServer", 2, "unknown element",
     "<velmo>\n<server name='a' host='h'><velmod/></server></velmo>"},
    {"UnknownAttribute", 2, "unknown attribute \"hots\"", server("name='a' hots='h'")},
    {"UnknownAttributeOfTheRoot", 1, "unknown attribute", "<velmo locale='a'/>"},
    {"ConnectTimeoutOfAServer", 2, "unknown attribute",
     server("name='a' host='h' connect_timeout_ms='1'")},
    {"AttributeTwice", 2, "\"host\" twice", server("name='a' host='h' host='i'")},

    {"NoName", 2, "without a name", server("host='h'")},
    {"EmptyName", 2, "name is empty", server("name='' host='h'")},
    {"LongName", 2, "33 bytes", server("name='" + long_name + "' host='h'")},
    {"LongNameInBytesOnly", 2, "33 bytes",
     server("name='\u00e4\u00e4\u00e4\u00e4\u00e4\u00e4\u00e4\u00e4\u00e4\u00e4\u00e4\u00e4"
            "\u00e4\u00e4\u00e4\u00e4n' host='h'")},
    {"DuplicateName", 3, "\"a\" is already there on line 2",
     "<velmo>\n<server name='a' host='h'/>\n<server name='a' host='i'/></velmo>"},
    {"DuplicateNameInside", 3, "already there on line 2",
     "<velmo>\n<server name='a' host='h'>\n<server name='a' host='i'/></server></velmo>"},

    {"NeitherNamingNorHost", 2, "needs naming or host", server("name='a'")},
    {"PortAlone", 2, "needs naming or host", server("name='a' port='1'")},
    {"NamingAndHost", 2, "either", server("name='a' naming='corbaloc::h/N' host='h'")},
    {"NamingAndPort", 2, "either", server("name='a' naming='corbaloc::h/N' port='1'")},
    {"NamingNoUrl", 2, "not a URL", server("name='a' naming='localhost:2809'")},
    {"NamingEmpty", 2, "not a URL", server("name='a' naming=''")},
    {"NamingSchemeAlone", 2, "not a URL", server("name='a' naming='corbaloc:'")},
    {"HostEmpty", 2, "host \"\"", server("name='a' host=''")},
    {"HostWithPort", 2, "host \"h:1\"", server("name='a' host='h:1'")},
    {"HostThatExtendsTheUrl", 2, "host", server("name='a' host='h/x#'")},
    {"TwoHosts", 2, "host", server("name='a' host='h,:i'")},
    {"PortEmpty", 2, "port", server("name='a' host='h' port=''")},
    {"PortZero", 2, "port", server("name='a' host='h' port='0'")},
    {"PortTooLarge", 2, "port \"65536\"", server("name='a' host='h' port='65536'")},
    {"PortHuge", 2, "port", server("name='a' host='h' port='4294967297'")},
    {"PortNegative", 2, "port", server("name='a' host='h' port='-1'")},
    {"PortWithText", 2, "port", server("name='a' host='h' port='2809x'")},
    {"BadRole", 2, "\"Master\" is neither", server("name='a' host='h' role='Master'")},
    {"EmptyRole", 2, "neither", server("name='a' host='h' role=''")},

    {"CallTimeoutNoNumber", 2, "call_timeout_ms",
     server("name='a' host='h' call_timeout_ms='1s'")},
    {"NamingTimeoutNegative", 2, "naming_timeout_ms",
     server("name='a' host='h' naming_timeout_ms='-1'")},
    {"CallTimeoutTooLarge", 1, "2147483648", "<velmo call_timeout_ms='2147483648'/>"},
    {"ConnectTimeoutEmpty", 1, "connect_timeout_ms", "<velmo connect_timeout_ms=''/>"},
    {"LocalIsNotListed", 1, "local names the server \"b\"",
     "<velmo local='b'><server name='a' host='h'/></velmo>"},
    {"LocalEmpty", 1, "local",
     "<velmo local=''><server name='a' host='localhost'/></velmo>"},
};

class BadFiles : public SettingsTest, public testing::WithParamInterface<BadFile> {};

TEST_P(BadFiles, IsReportedWithFileLineAndReasonAndListsNothing)
{
    const auto read = this->read(GetParam().text);
    const std::string start = path() + ":" + std::to_string(GetParam().line) + ": ";
    EXPECT_EQ(read->error().substr(0, start.size()), start) << read->error();
    EXPECT_NE(read->error().find(GetParam().reason, start.size()), std::string::npos)
        << read->error();
    EXPECT_TRUE(read->servers().empty());
    for (const std::string_view word : settings::position_words)
        EXPECT_EQ(names_at(*read, word), "") << word;
    for (const char* name : {"a", "0000", ""})
        EXPECT_EQ(read->find(name), nullptr) << name;
}

INSTANTIATE_TEST_SUITE_P(Settings, BadFiles, testing::ValuesIn(bad_files),
                         [](const auto& file) { return file.param.title; });

// ------------------------------------------------- files that cannot be read

class Unreadable : public SettingsTest {
protected:
    void expect_refused(const std::string& where, const std::string& reason)
    {
        set("VELMO_SETTINGS", where.c_str());
        const auto read = Settings::read();
        const std::string start = where + ":1: ";
        EXPECT_EQ(read->error().substr(0, start.size()), start) << read->error();
        EXPECT_NE(read->error().find(reason), std::string::npos) << read->error();
        EXPECT_EQ(read->find("0000"), nullptr);
        EXPECT_EQ(read->path(), where);
    }
};

TEST_F(Unreadable, NamedFileIsMissing)
{
    expect_refused(path("missing.xml"), "No such file");
}

TEST_F(Unreadable, Folder)
{
    expect_refused(path("."), "not a regular file");
}

TEST_F(Unreadable, LinkThatLeadsNowhereHidesTheFilesBehindIt)
{
    std::filesystem::create_directories(path("config/velmo"));
    std::filesystem::create_symlink("gone", path("config/velmo/velmo.xml"));
    set("XDG_CONFIG_HOME", path("config").c_str());
    const auto read = Settings::read();
    EXPECT_EQ(read->error().find(path("config/velmo/velmo.xml") + ":1: "), 0u)
        << read->error();
    EXPECT_EQ(read->find("0000"), nullptr);
}

TEST_F(Unreadable, WithoutPermission)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    std::filesystem::permissions(write("<velmo/>"), std::filesystem::perms::none);
    expect_refused(path(), "Permission denied");
}

TEST_F(Unreadable, PipeIsNotWaitedFor)
{
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    expect_refused(path("pipe"), "not a regular file");
}

TEST_F(Unreadable, Device)
{
    expect_refused("/dev/zero", "not a regular file");
}

TEST_F(Unreadable, HundredMegabytesAreNotRead)
{
    write("<velmo/>");
    std::filesystem::resize_file(path(), 100u << 20); // takes no room on the disk
    expect_refused(path(), "larger than 4 MiB");
}

TEST_F(Unreadable, TheSizeLimitIsExact)
{
    std::string text = "<velmo/>";
    text.append((4u << 20) - text.size(), ' ');
    EXPECT_EQ(read(text)->error(), "");
    EXPECT_NE(read(text + " ")->error().find("larger than 4 MiB"), std::string::npos);
}

// --------------------------------------------------- damage of any other kind

const std::string healthy = R"(<velmo local="a" call_timeout_ms="10">
  <server name="a" host="localhost" port="1" role="master">
    <server name="b" naming="corbaloc::h:1/NameService" naming_timeout_ms="7"/>
  </server>
</velmo>)";

TEST_F(SettingsTest, EveryTruncationIsAFault)
{
    ASSERT_EQ(read(healthy)->error(), "");
    for (std::size_t length = 0; length < healthy.size(); ++length) {
        const auto read = this->read(healthy.substr(0, length));
        EXPECT_NE(read->error(), "") << length;
        EXPECT_TRUE(read->servers().empty()) << length;
    }
}

TEST_F(SettingsTest, DamagedBytesGiveEitherAFaultOrSoundServers)
{
    std::mt19937 random(20240229);
    const std::string spice = "<>&\"'/= #x;\0\xff!-[]?09az\n";
    for (int round = 0; round < 2000; ++round) {
        std::string text = healthy;
        for (int change = 0; change < 3; ++change)
            text[random() % text.size()] = spice[random() % spice.size()];
        const auto read = this->read(text);
        EXPECT_TRUE(read->error().empty() || read->servers().empty());
        for (const settings::Server& server : read->servers()) {
            EXPECT_FALSE(server.name.empty()) << text;
            EXPECT_LE(server.name.size(), 32u) << text;
            EXPECT_FALSE(server.naming_url.value.empty()) << text;
            EXPECT_EQ(read->find(server.name.c_str()), &server) << text;
        }
    }
}

TEST_F(SettingsTest, DeepNestingOfUnknownElementsIsAFault)
{
    std::string text = "<velmo>";
    for (int i = 0; i < 500000; ++i)
        text += "<a>";
    EXPECT_NE(read(text)->error(), "");
    for (int i = 0; i < 500000; ++i)
        text += "</a>";
    EXPECT_NE(read(text + "</velmo>")->error().find("unknown element"), std::string::npos);
}

TEST_F(SettingsTest, TextOfTheFileIsShownCutAndWithoutControlCharacters)
{
    const std::string error =
        read(server("name='a' " + std::string(1000, 'x') + "='1'"))->error();
    EXPECT_LT(error.size(), path().size() + 200);
    const std::string escape = read(server("name='a' host='\x1b[31m\n'"))->error();
    EXPECT_EQ(escape.find('\x1b'), std::string::npos);
    EXPECT_NE(escape.find("[31m"), std::string::npos);
}

TEST_F(SettingsTest, UnlistedLocalServerOfTheEnvironmentIsAFaultOnTheRootsLine)
{
    set("VELMO_LOCAL_SERVER", "z");
    const auto read = this->read("\n" + healthy);
    EXPECT_EQ(read->error().find(path() + ":2: "), 0u) << read->error();
    EXPECT_NE(read->error().find("VELMO_LOCAL_SERVER"), std::string::npos);
    EXPECT_NE(read->error().find("\"z\""), std::string::npos);
    EXPECT_EQ(read->find("a"), nullptr);
}

} // namespace
} // namespace velmo::tests
