// The C face of the utility library.
#include "vl_util.h"

#include "orb/corba.h"
#include "tests/util/settings_fixture.h"
#include "tests/util/vl_util_from_c.h"
#include "vl_result.h"

namespace velmo::tests {
namespace {

const std::string family = R"(<velmo local="own" connect_timeout_ms="9">
  <server name="parent" host="h" role="master">
    <server name="own" naming="corbaloc::o/NameService" role="slave" call_timeout_ms="0"/>
  </server>
</velmo>)";

class VlUtil : public SettingsTest {
protected:
    vl_settings* open(const std::string& text)
    {
        opened.reset(vl_settings_open(write(text).c_str()));
        return opened.get();
    }

private:
    std::unique_ptr<vl_settings, void (*)(vl_settings*)> opened{nullptr, vl_settings_close};
};

TEST_F(VlUtil, StringsOfTheBrokerAreFreed)
{
    vl_string_free(CORBA::string_dup("text"));
    vl_string_free(nullptr);
}

TEST_F(VlUtil, ServersAreGivenWithEverythingTheSettingsSay)
{
    const vl_settings* settings = open(family);
    ASSERT_NE(settings, nullptr);
    EXPECT_EQ(vl_settings_error(settings), nullptr);
    EXPECT_EQ(vl_settings_path(settings), path());
    EXPECT_STREQ(vl_settings_path_origin(settings), "argument");
    ASSERT_EQ(vl_settings_server_count(settings), 2);

    vl_settings_server server;
    ASSERT_EQ(vl_settings_get_server(settings, 1, &server), VL_OK);
    EXPECT_STREQ(server.name, "own");
    EXPECT_STREQ(server.parent, "parent");
    EXPECT_STREQ(server.role, "slave");
    EXPECT_STREQ(server.positions, "own slave");
    EXPECT_STREQ(server.naming_url, "corbaloc::o/NameService");
    EXPECT_STREQ(server.naming_origin, "line 3");
    EXPECT_EQ(server.call_timeout_ms, 0u);
    EXPECT_STREQ(server.call_timeout_origin, "line 3");
    EXPECT_EQ(server.naming_timeout_ms, 2000u);
    EXPECT_STREQ(server.naming_timeout_origin, "default");
    EXPECT_EQ(server.line, 3);
    ASSERT_EQ(vl_settings_get_server(settings, 0, &server), VL_OK);
    EXPECT_STREQ(server.parent, "");
    EXPECT_STREQ(server.positions, "parent master");
}

TEST_F(VlUtil, ConnectTimeoutComesWithItsOrigin)
{
    const char* origin = nullptr;
    EXPECT_EQ(vl_settings_connect_timeout(open(family), &origin), 9u);
    EXPECT_STREQ(origin, "line 1");
    EXPECT_EQ(vl_settings_connect_timeout(open("<velmo/>"), nullptr), 2000u);
}

TEST_F(VlUtil, IndexesOutOfRangeAndNullPointersGiveACode)
{
    const vl_settings* settings = open(family);
    vl_settings_server server;
    for (const int index : {-1, 2, 1000000})
        EXPECT_EQ(vl_settings_get_server(settings, index, &server), PARAMETER_ERROR)
            << index;
    EXPECT_EQ(vl_settings_get_server(settings, 0, nullptr), PARAMETER_ERROR);
    EXPECT_EQ(vl_settings_get_server(nullptr, 0, &server), PARAMETER_ERROR);
}

TEST_F(VlUtil, NoSettingsAreAsEmptyOnes)
{
    const char* origin = nullptr;
    EXPECT_STREQ(vl_settings_path(nullptr), "");
    EXPECT_STREQ(vl_settings_path_origin(nullptr), "");
    EXPECT_EQ(vl_settings_error(nullptr), nullptr);
    EXPECT_EQ(vl_settings_connect_timeout(nullptr, &origin), 0u);
    EXPECT_STREQ(origin, "");
    EXPECT_EQ(vl_settings_server_count(nullptr), 0);
    vl_settings_close(nullptr);
}

TEST_F(VlUtil, FaultyFileOpensWithItsErrorAndIsNotLogged)
{
    const vl_settings* settings = open("<velmo>\n<server/></velmo>");
    ASSERT_NE(settings, nullptr);
    ASSERT_NE(vl_settings_error(settings), nullptr);
    EXPECT_EQ(vl_settings_error(settings), path() + ":2: a server without a name");
    EXPECT_EQ(vl_settings_server_count(settings), 0);
    EXPECT_EQ(vl_settings_connect_timeout(settings, nullptr), 2000u);
    EXPECT_TRUE(logged_lines().empty());
}

TEST_F(VlUtil, NullPathTakesTheFileThatTheLibraryWouldUse)
{
    set("VELMO_SETTINGS", write(family).c_str());
    const std::unique_ptr<vl_settings, void (*)(vl_settings*)> settings(
        vl_settings_open(nullptr), vl_settings_close);
    EXPECT_EQ(vl_settings_path(settings.get()), path());
    EXPECT_STREQ(vl_settings_path_origin(settings.get()),
                 "environment variable VELMO_SETTINGS");
    EXPECT_EQ(vl_settings_server_count(settings.get()), 2);
}

TEST_F(VlUtil, OpenSettingsDoNotFollowTheFile)
{
    const vl_settings* settings = open(family);
    vl_settings_server server;
    ASSERT_EQ(vl_settings_get_server(settings, 0, &server), VL_OK);
    write("<velmo/>");
    EXPECT_EQ(vl_settings_server_count(settings), 2);
    EXPECT_STREQ(server.name, "parent");
}

TEST_F(VlUtil, ServesAProgramInC)
{
    char text[256];
    EXPECT_EQ(print_servers_from_c(write(family).c_str(), text, sizeof text), 2);
    EXPECT_STREQ(text,
                 "parent=corbaloc::1.2@h:2809/NameService own=corbaloc::o/NameService ");
    EXPECT_EQ(print_servers_from_c(path("missing").c_str(), text, sizeof text), -1);
}

} // namespace
} // namespace velmo::tests
