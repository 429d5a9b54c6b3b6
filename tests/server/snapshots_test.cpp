// The snapshots of a realm: from its services to the disk, and back into another realm.
#include <sys/resource.h>

#include <csignal>
#include <algorithm>

#include <gtest/gtest.h>

#include "server/model/realm.h"
#include "server/services/snapshots.h"
#include "server/store/snapshot_store.h"
#include "tests/server/points_of.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using namespace velmo::tests;
using model::Realm;
using services::Snapshots;
using store::SnapshotStore;
using store::StoreError;

namespace {

// A limit on the size of every file: what a full disk is to a server.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::uintmax_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = bytes;
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            throw std::runtime_error("the size of files cannot be limited");
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }

private:
    rlimit before{};
};

class SnapshotsTest : public ::testing::Test {
protected:
    // As the shell would.
    void run_sql(const std::string& sql)
    {
        store::Database(store.file()).execute(sql.c_str());
    }

    TemporaryFolder folder;
    SnapshotStore store{folder.path(), "S"};
    Realm realm{"plant"};
    Realm copy{"plant"}; // as after a restart
    Snapshots of_realm{&store, realm};
    Snapshots of_copy{&store, copy};
};

TEST_F(SnapshotsTest, AHundredThousandPointsComeBackByteForByte)
{
    realm.templates.add(
        {"eight", "bytes", 8, std::nullopt, "0001020304050607", "of eight"});
    for (std::size_t i = 0; i < 100000; ++i) {
        const std::string name = "point/" + std::to_string(i);
        const char* types[] = {"int32", "text", "bytes", "eight"};
        ASSERT_EQ(realm.points.create(name, types[i % 4]), VL_OK);
        if (i % 4 == 1 || i % 4 == 2) {
            ASSERT_EQ(realm.points.set(name, binary(i % 97, i)), VL_OK);
        }
        if (i % 10 == 0) {
            ASSERT_EQ(realm.points.set_description(name, "no. " + std::to_string(i)),
                      VL_OK);
        }
    }
    ASSERT_EQ(of_realm.make_templates(), VL_OK);
    ASSERT_EQ(of_realm.make_points(), VL_OK);
    of_copy.load_all();
    EXPECT_TRUE(points_of(copy.points) == points_of(realm.points));
    EXPECT_EQ(copy.templates.image(), realm.templates.image());
    EXPECT_EQ(copy.points.size(), 100000u);
}

TEST_F(SnapshotsTest, TenThousandQueuedPacketsComeBackByteForByte)
{
    ASSERT_EQ(realm.ports.create_port("from", 1, 0), VL_OK);
    ASSERT_EQ(realm.ports.create_port("to", 2, 20000), VL_OK);
    ASSERT_EQ(realm.ports.create_port("copies", 3, 20000), VL_OK);
    ASSERT_EQ(realm.ports.connect_port("from", "to", 30001), VL_OK);
    ASSERT_EQ(realm.ports.connect_port("from", "copies", 30004), VL_OK);
    ASSERT_EQ(realm.ports.register_port_host("from", "host"), VL_OK);
    for (std::size_t i = 0; i < 10000; ++i)
        ASSERT_EQ(realm.ports.send_packet(1, binary(i % 301, i), 0), VL_OK);
    model::Data packet;
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(realm.ports.receive_packet(2, 0, packet, 0), VL_OK);
    ASSERT_EQ(realm.ports.reply_packet(2, bytes_of("answer"), 0), VL_OK);
    ASSERT_EQ(realm.events.declare_event(7, bytes_of("default"), 1), VL_OK);
    ASSERT_EQ(realm.events.add_event("alarm", 7), VL_OK);
    ASSERT_EQ(realm.events.send_event("alarm", binary(50)), VL_OK);

    ASSERT_EQ(of_realm.make_ports(), VL_OK);
    ASSERT_EQ(of_copy.load_ports(), VL_OK);
    EXPECT_TRUE(copy.ports.image() == realm.ports.image());
    EXPECT_TRUE(copy.events.image() == realm.events.image());

    EXPECT_EQ(copy.ports.status("from")->host, "host");
    for (std::size_t i = 3; i < 10000; ++i) {
        ASSERT_EQ(copy.ports.receive_packet(2, 1, packet, 0), VL_OK);
        ASSERT_EQ(*packet, *binary(i % 301, i));
    }
    EXPECT_EQ(copy.ports.receive_packet(2, 0, packet, 0), EMPTY_QUEUE);
    ASSERT_EQ(copy.ports.receive_reply(1, packet, 0), VL_OK);
    EXPECT_EQ(*packet, *bytes_of("answer"));
    EXPECT_EQ(copy.ports.reply_packet(2, bytes_of("another"), 0), VL_OK);
}

TEST_F(SnapshotsTest, LoadingReplacesWhatIsThere)
{
    ASSERT_EQ(realm.points.create("saved", "int32"), VL_OK);
    ASSERT_EQ(of_realm.make_points(), VL_OK);
    ASSERT_EQ(realm.points.set("saved", binary(4)), VL_OK);
    ASSERT_EQ(realm.points.create("new", "int32"), VL_OK);
    ASSERT_EQ(of_realm.load_points(), VL_OK);
    EXPECT_EQ(realm.points.names(), std::vector<std::string>{"saved"});
    model::Data value;
    EXPECT_EQ(realm.points.get("saved", value), NON_EXIST_DATA);
}

// ------------------------------------------------------------------ codes

TEST_F(SnapshotsTest, WithoutAStoreEverythingHasItsCode)
{
    const Snapshots nowhere(nullptr, realm);
    for (const vl_result result :
         {nowhere.make_templates(), nowhere.make_points(), nowhere.make_ports(),
          nowhere.load_points(), nowhere.load_ports()})
        EXPECT_EQ(result, OBJECT_PATCH_FAI);
}

TEST_F(SnapshotsTest, WhatWasNeverSavedHasItsCodeAndIsNoFaultAtStart)
{
    EXPECT_EQ(of_realm.load_points(), NON_EXIST_DATA);
    EXPECT_EQ(of_realm.load_ports(), NON_EXIST_DATA);
    EXPECT_NO_THROW(of_realm.load_all());
    Realm other("other");
    ASSERT_EQ(Snapshots(&store, other).make_points(), VL_OK);
    EXPECT_EQ(of_realm.load_points(), NON_EXIST_DATA);
}

TEST_F(SnapshotsTest, AFullDiskHasItsCodeAndTheLastSnapshotStays)
{
    ASSERT_EQ(realm.points.create("p", "bytes"), VL_OK);
    ASSERT_EQ(realm.points.set("p", bytes_of("saved")), VL_OK);
    ASSERT_EQ(of_realm.make_points(), VL_OK);
    ASSERT_EQ(realm.points.set("p", binary(8u << 20)), VL_OK);
    {
        const FileSizeLimit full(std::filesystem::file_size(store.file()) + 100000);
        EXPECT_EQ(of_realm.make_points(), OBJECT_PATCH_FAI);
        EXPECT_EQ(of_realm.make_points(), OBJECT_PATCH_FAI);
    }
    ASSERT_EQ(of_copy.load_points(), VL_OK);
    model::Data value;
    ASSERT_EQ(copy.points.get("p", value), VL_OK);
    EXPECT_EQ(*value, *bytes_of("saved"));
    ASSERT_EQ(realm.points.get("p", value), VL_OK);
    EXPECT_EQ(value->size(), 8u << 20);

    ASSERT_EQ(of_realm.make_points(), VL_OK) << "there is room again";
    ASSERT_EQ(of_copy.load_points(), VL_OK);
    ASSERT_EQ(copy.points.get("p", value), VL_OK);
    EXPECT_EQ(*value, *binary(8u << 20));
}

TEST_F(SnapshotsTest, AFileThatIsDamagedWhileTheServerRunsHasItsCode)
{
    ASSERT_EQ(realm.points.create("p", "bytes"), VL_OK);
    ASSERT_EQ(of_realm.make_points(), VL_OK);
    run_sql("DROP TABLE points");
    EXPECT_EQ(of_realm.load_points(), OBJECT_PATCH_FAI);
    EXPECT_EQ(of_realm.make_points(), OBJECT_PATCH_FAI);
    EXPECT_THROW(of_realm.load_all(), StoreError);
    EXPECT_EQ(realm.points.names(), std::vector<std::string>{"p"});
}

// --------------------------------------------------------- all or nothing

TEST_F(SnapshotsTest, PointsThatCannotAllBeLoadedAreNotLoaded)
{
    realm.templates.add({"special", "int8", std::nullopt, std::nullopt, std::nullopt, ""});
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(realm.points.create(std::to_string(i), i == 99 ? "special" : "int8"),
                  VL_OK);
    ASSERT_EQ(of_realm.make_points(), VL_OK);
    ASSERT_EQ(copy.points.create("before", "int32"), VL_OK);
    EXPECT_EQ(of_copy.load_points(), OBJECT_PATCH_FAI);
    EXPECT_EQ(copy.points.names(), std::vector<std::string>{"before"});
    try {
        of_copy.load_all();
        ADD_FAILURE() << "loaded";
    } catch (const StoreError& error) {
        const std::string text = error.what();
        EXPECT_NE(text.find(store.file().string()), std::string::npos) << text;
        EXPECT_NE(text.find("points of realm plant"), std::string::npos) << text;
        EXPECT_NE(text.find("special"), std::string::npos) << text;
    }
}

TEST_F(SnapshotsTest, PortsThatCannotAllBeLoadedAreNotLoaded)
{
    ASSERT_EQ(realm.ports.create_port("a", 1, 0), VL_OK);
    ASSERT_EQ(realm.ports.create_port("b", 2, 0), VL_OK);
    ASSERT_EQ(realm.ports.connect_port("a", "b", 30001), VL_OK);
    ASSERT_EQ(realm.ports.send_packet(1, bytes_of("x"), 0), VL_OK);
    ASSERT_EQ(realm.events.declare_event(1, bytes_of(""), 1), VL_OK);
    ASSERT_EQ(realm.events.add_event("e", 1), VL_OK);
    ASSERT_EQ(copy.ports.create_port("before", 9, 0), VL_OK);
    ASSERT_EQ(copy.events.declare_event(9, bytes_of(""), 1), VL_OK);
    const model::PortsImage ports = copy.ports.image();
    const model::EventsImage events = copy.events.image();
    for (const char* change :
         {"UPDATE ports SET name = 'same'", "UPDATE connections SET to_handle = 5",
          "UPDATE connections SET mode = 1", "UPDATE packets SET sender = 5",
          "UPDATE events SET event_id = 2", "UPDATE events SET name = ''"}) {
        ASSERT_EQ(of_realm.make_ports(), VL_OK);
        run_sql(change);
        EXPECT_EQ(of_copy.load_ports(), OBJECT_PATCH_FAI) << change;
        EXPECT_THROW(of_copy.load_all(), StoreError) << change;
        EXPECT_TRUE(copy.ports.image() == ports) << change;
        EXPECT_TRUE(copy.events.image() == events) << change;
    }
}

} // namespace
