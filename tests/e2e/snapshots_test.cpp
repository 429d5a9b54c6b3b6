// Snapshots: what an application finds again after its server was killed.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "tests/e2e/calls.h"
#include "tests/support/eventually.h"
#include "tests/support/settings_file.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

constexpr const char* server = "S"; // the default one

class Snapshots : public ::testing::Test {
protected:
    void start(std::vector<std::string> more = {})
    {
        std::vector<std::string> arguments{"--server", server, "--realm", "R"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        velmod.emplace(arguments);
        settings.emplace("local=\"S\"",
                         std::vector<SettingsFile::Server>{{server, velmod->naming_url()}});
    }

    void start_with_data() { start({"--data-dir", data(), "--load"}); }

    void kill_and_restart()
    {
        velmod->kill();
        velmod->restart();
        reconnect();
    }

    // The first call of each service finds that the connection is broken.
    static void reconnect()
    {
        ASSERT_TRUE(eventually([] { return vl_mid_is_connect(server) == VL_OK; }));
        for (const char* realm : {"", "R"})
            get_point("", realm);
        receive(0);
    }

    std::string data() const { return (folder.path() / "data").string(); }
    std::string file() const { return data() + "/S.db"; }

    TemporaryFolder folder;
    std::optional<Velmod> velmod;
    std::optional<SettingsFile> settings;
};

TEST_F(Snapshots, PointsAreThereAgainAsTheyWereWhenSaved)
{
    start_with_data();
    ASSERT_EQ(create_point("a/b", "text"), VL_OK);
    ASSERT_EQ(create_point("a/b", "text", "R"), VL_OK);
    ASSERT_EQ(create_point("no data", "int32"), VL_OK);
    ASSERT_EQ(set_point("a/b", "saved"), VL_OK);
    const std::string binary("\0\xFF\n", 3);
    ASSERT_EQ(set_point("a/b", binary, "R"), VL_OK);
    ASSERT_EQ(vl_make_dtp_snapshot(server, nullptr), VL_OK);
    ASSERT_EQ(vl_make_dtp_snapshot(server, "R"), VL_OK);
    ASSERT_EQ(set_point("a/b", "not saved"), VL_OK);
    ASSERT_EQ(create_point("not saved", "int32"), VL_OK);

    kill_and_restart();
    EXPECT_EQ(get_point("a/b"), "saved");
    EXPECT_EQ(get_point("a/b", "R"), binary);
    EXPECT_EQ(get_point("not saved"), "[4002]");
    EXPECT_EQ(get_point("no data"), "[2001]");
}

TEST_F(Snapshots, QueuesConnectionsAndEventsAreThereAgain)
{
    start_with_data();
    ASSERT_EQ(vl_create_port("from", 1, 0, server, nullptr), VL_OK);
    ASSERT_EQ(vl_create_port("to", 2, 0, server, nullptr), VL_OK);
    ASSERT_EQ(vl_connect_port("from", "to", 30001, 0, "", server, nullptr), VL_OK);
    for (const char* text : {"one", "", "three"})
        ASSERT_EQ(vl_send_packet(1, text, static_cast<int>(std::string(text).size()), 0,
                                 server, nullptr),
                  VL_OK);
    ASSERT_EQ(vl_declare_event(7, "", 0, server, nullptr), VL_OK);
    ASSERT_EQ(vl_add_event("e", 7, server, nullptr), VL_OK);
    ASSERT_EQ(vl_send_event("e", "x", 1, server, nullptr), VL_OK);
    ASSERT_EQ(vl_make_port_snapshot(server, nullptr), VL_OK);
    EXPECT_EQ(receive(2), "one");

    kill_and_restart();
    EXPECT_EQ(receive(2), "one");
    EXPECT_EQ(receive(2), "");
    EXPECT_EQ(receive(2), "three");
    EXPECT_EQ(receive(2), "[2002]");
    EXPECT_EQ(vl_create_port("to", 9, 0, server, nullptr), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(vl_send_packet(1, "four", 4, 0, server, nullptr), VL_OK);
    EXPECT_EQ(receive(2), "four");
    int count = 0;
    EXPECT_EQ(vl_event_count("e", &count, server, nullptr), VL_OK);
    EXPECT_EQ(count, 1);
}

TEST_F(Snapshots, TemplatesOfAConfigurationThatHasGoneAreThereAgain)
{
    const std::string configuration = (folder.path() / "velmod.xml").string();
    std::ofstream(configuration)
        << R"(<velmo><velmod><templates><template name="pair" type="bytes" size="2" )"
           R"(initial="4142"/></templates></velmod></velmo>)";
    start({"--data-dir", data(), "--config", configuration});
    ASSERT_EQ(create_point("p", "pair"), VL_OK);
    ASSERT_EQ(vl_make_dt_snapshot(server, nullptr), VL_OK);
    ASSERT_EQ(vl_make_dtp_snapshot(server, nullptr), VL_OK);
    const std::string place = "127.0.0.1:" + std::to_string(velmod->port());
    velmod->kill();

    start({"--data-dir", data(), "--load", "--listen", place});
    reconnect();
    EXPECT_EQ(get_point("p"), "AB");
    EXPECT_EQ(set_point("p", "abc"), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(create_point("q", "pair"), VL_OK);
}

TEST_F(Snapshots, PointsCanBeLoadedWhileTheServerRuns)
{
    start({"--data-dir", data()});
    EXPECT_EQ(vl_load_dtp_snapshot(server, nullptr), NON_EXIST_DATA);
    ASSERT_EQ(create_point("p", "text"), VL_OK);
    ASSERT_EQ(set_point("p", "saved"), VL_OK);
    ASSERT_EQ(vl_make_dtp_snapshot(server, nullptr), VL_OK);
    ASSERT_EQ(set_point("p", "later"), VL_OK);
    EXPECT_EQ(vl_load_dtp_snapshot(server, "R"), NON_EXIST_DATA);
    EXPECT_EQ(get_point("p"), "later");
    EXPECT_EQ(vl_load_dtp_snapshot(server, nullptr), VL_OK);
    EXPECT_EQ(get_point("p"), "saved");
}

TEST_F(Snapshots, WithoutLoadingTheServerBeginsEmptyAndKeepsTheSnapshot)
{
    start({"--data-dir", data()});
    ASSERT_EQ(create_point("p", "text"), VL_OK);
    ASSERT_EQ(set_point("p", "saved"), VL_OK);
    ASSERT_EQ(vl_make_dtp_snapshot(server, nullptr), VL_OK);
    kill_and_restart();
    EXPECT_EQ(get_point("p"), "[4002]");
    EXPECT_EQ(vl_load_dtp_snapshot(server, nullptr), VL_OK);
    EXPECT_EQ(get_point("p"), "saved");
}

TEST_F(Snapshots, AServerWithoutADataFolderKeepsNone)
{
    start();
    for (const char* realm : {"", "R"}) {
        EXPECT_EQ(vl_make_dt_snapshot(server, realm), OBJECT_PATCH_FAI);
        EXPECT_EQ(vl_make_dtp_snapshot(server, realm), OBJECT_PATCH_FAI);
        EXPECT_EQ(vl_make_port_snapshot(server, realm), OBJECT_PATCH_FAI);
        EXPECT_EQ(vl_load_dtp_snapshot(server, realm), OBJECT_PATCH_FAI);
    }
}

TEST_F(Snapshots, AFileThatIsNoneStopsTheStartAndStaysAsItIs)
{
    std::filesystem::create_directory(data());
    std::ofstream(file()) << "notes, not a snapshot\n";
    Process process({velmod_path(), "--listen", "127.0.0.1:0", "--no-unix", "--server",
                     server, "--data-dir", data()});
    EXPECT_EQ(process.wait(), 1);
    EXPECT_NE(process.err().find(file()), std::string::npos) << process.err();
    EXPECT_NE(process.err().find("not a database"), std::string::npos) << process.err();
    std::ifstream stream(file());
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}),
              "notes, not a snapshot\n");
}

} // namespace
