// The snapshot file: what goes in comes out, and what it says to files that are not its
// own.
#include <fstream>
#include <iterator>
#include <random>

#include <gtest/gtest.h>

#include "server/store/snapshot_store.h"
#include "tests/server/images.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using namespace velmo::tests;
using store::PortsSnapshot;
using store::SnapshotStore;
using store::StoreError;

namespace fs = std::filesystem;

namespace {

using Points = SnapshotStore::Points;

class StoreTest : public ::testing::Test {
protected:
    SnapshotStore open() const { return SnapshotStore(folder.path(), "S"); }
    fs::path file() const { return store::snapshot_file(folder.path(), "S"); }

    static void save(SnapshotStore& snapshots, const std::string& realm,
                     const Points& points)
    {
        snapshots.save_points(realm, [&](const SnapshotStore::VisitPoint& visit) {
            for (const model::PointImage& point : points)
                visit(point);
        });
    }

    // What it says about the file, which must not change by it.
    std::string refusal() const
    {
        const std::string before = content();
        std::string reason;
        try {
            open();
        } catch (const StoreError& error) {
            reason = error.what();
        }
        EXPECT_TRUE(content() == before) << "the file is another one";
        EXPECT_NE(reason.find(file().string()), std::string::npos) << reason;
        return reason;
    }

    std::string content() const
    {
        std::ifstream stream(file(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    }

    void write(const std::string& bytes) const
    {
        std::ofstream(file(), std::ios::binary) << bytes;
    }

    // As the shell would.
    void run_sql(const std::string& sql) const
    {
        store::Database(file()).execute(sql.c_str());
    }

    TemporaryFolder folder;
};

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

// ------------------------------------------------------------ round trips

TEST_F(StoreTest, WhatWasNeverSavedIsNotThere)
{
    SnapshotStore snapshots = open();
    EXPECT_EQ(snapshots.load_templates(""), std::nullopt);
    EXPECT_EQ(snapshots.load_points(""), std::nullopt);
    EXPECT_FALSE(snapshots.load_ports(""));
}

TEST_F(StoreTest, ASnapshotOfNothingIsOne)
{
    SnapshotStore snapshots = open();
    snapshots.save_templates("", [] { return SnapshotStore::Templates(); });
    save(snapshots, "", {});
    snapshots.save_ports("", [] { return PortsSnapshot(); });
    EXPECT_TRUE(snapshots.load_templates("")->empty());
    EXPECT_TRUE(snapshots.load_points("")->empty());
    EXPECT_TRUE(snapshots.load_ports("")->ports.ports.empty());
}

TEST_F(StoreTest, TemplatesComeBackAsTheyWere)
{
    std::vector<model::TemplateDefinition> templates(3);
    templates[0] = {"sized", "bytes", 8, std::nullopt, "00ff", "eight of them"};
    templates[1] = {"bounded", "text", std::nullopt, 0, "", ""};
    templates[2] = {"\xFFodd\n", "int8", std::nullopt, std::nullopt, std::nullopt, "\xC3"};
    open().save_templates("", [&] { return templates; });
    EXPECT_EQ(open().load_templates(""), templates);
}

TEST_F(StoreTest, PointsComeBackByteForByteInTheirOrder)
{
    const std::string nul("a\0b", 3);
    const Points points{{"plain", "int32", "a number", binary(4)},
                        {"no data", "int32", "", nullptr},
                        {"empty value", "bytes", "", bytes_of("")},
                        {"NUL in the value", "bytes", "", bytes_of(nul)},
                        {"text that looks like a number", "text", "", bytes_of("0012")},
                        {"large", "bytes", "", binary(5u << 20)},
                        {nul, nul, nul, bytes_of("NULs")},
                        {"a/b\nc\t'\"\\;--", "text", "%s", bytes_of("x")},
                        {"umlaut \xC3\xA4", "text", "", bytes_of("UTF-8")},
                        {"broken \xC3", "\xFF\xFE", "\x80", bytes_of("not UTF-8")},
                        {"0012", "1e3", "-0", bytes_of("names that look like numbers")},
                        {"", "", "", bytes_of("no name")},
                        {std::string(1u << 20, 'n'), "text", "", bytes_of("a long name")}};
    SnapshotStore snapshots = open();
    save(snapshots, "", points);
    EXPECT_TRUE(*snapshots.load_points("") == points);
    EXPECT_TRUE(*open().load_points("") == points) << "another process's view";
}

PortsSnapshot busy_ports()
{
    model::PortImage a{"a", 1, 1024, "host", false, 7, {}, {}, {}};
    a.packets = {{bytes_of("first"), 2}, {bytes_of(""), 4294967295}, {binary(70000), 1}};
    a.unanswered = {2, 1, 2};
    model::PortImage b{"b\xFF",           4294967295, 4294967295, "", true,
                       ~std::uint64_t(0), {},         {},         {}};
    b.replies = {{bytes_of("answer"), 1}, {binary(3), 2}};
    PortsSnapshot snapshot;
    snapshot.ports.ports = {b, {"c", 2, 1, "", true, 0, {}, {}, {}}, a};
    snapshot.ports.connections = {{1, 2, 30001}, {2, 1, 30004}, {1, 1, 30001}};
    snapshot.events.declarations = {{0, bytes_of("")}, {4294967295, binary(9)}};
    snapshot.events.events = {{"e", 0, bytes_of(""), 0},
                              {"f", 4294967295, binary(7), ~std::uint64_t(0)}};
    return snapshot;
}

TEST_F(StoreTest, PortsPacketsAndEventsComeBackInTheirOrder)
{
    const PortsSnapshot snapshot = busy_ports();
    open().save_ports("", [&] { return snapshot; });
    const std::optional<PortsSnapshot> loaded = open().load_ports("");
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->ports == snapshot.ports);
    EXPECT_TRUE(loaded->events == snapshot.events);
}

TEST_F(StoreTest, RealmsAndServicesAreApart)
{
    SnapshotStore snapshots = open();
    const Points root{{"p", "int32", "", binary(4, 1)}};
    const Points alpha{{"p", "int32", "", binary(4, 2)}, {"q", "int32", "", nullptr}};
    save(snapshots, "", root);
    save(snapshots, "alpha", alpha);
    snapshots.save_ports("", busy_ports);
    EXPECT_TRUE(*snapshots.load_points("") == root);
    EXPECT_TRUE(*snapshots.load_points("alpha") == alpha);
    EXPECT_FALSE(snapshots.load_points("ALPHA"));
    EXPECT_FALSE(snapshots.load_points("alpha\xFF"));
    EXPECT_FALSE(snapshots.load_ports("alpha"));

    save(snapshots, "alpha", root);
    EXPECT_TRUE(*snapshots.load_points("alpha") == root);
    EXPECT_TRUE(snapshots.load_ports("")->ports == busy_ports().ports);
}

TEST_F(StoreTest, ManySnapshotsDoNotMakeTheFileGrow)
{
    SnapshotStore snapshots = open();
    Points points(1000, {"p", "bytes", "", binary(100)});
    for (int i = 0; i < 3; ++i)
        save(snapshots, "", points);
    const auto size = fs::file_size(file());
    for (int i = 0; i < 20; ++i)
        save(snapshots, "", points);
    EXPECT_LE(fs::file_size(file()), size * 11 / 10);
}

// ------------------------------------------------------------ a failed save

TEST_F(StoreTest, ASaveThatFailsHalfWayLeavesTheLastSnapshot)
{
    SnapshotStore snapshots = open();
    const Points last(5000, {"p", "bytes", "", binary(1000)});
    save(snapshots, "", last);
    EXPECT_THROW(snapshots.save_points("",
                                       [](const SnapshotStore::VisitPoint& visit) {
                                           for (int i = 0; i < 6000; ++i)
                                               visit({"q", "bytes", "", binary(2000)});
                                           throw std::runtime_error("no more");
                                       }),
                 std::runtime_error);
    EXPECT_TRUE(*snapshots.load_points("") == last);
    EXPECT_TRUE(*open().load_points("") == last);
    save(snapshots, "", {});
    EXPECT_TRUE(snapshots.load_points("")->empty());
}

TEST_F(StoreTest, AReaderOfTheFileSeesTheLastSnapshotUntilTheNextIsComplete)
{
    SnapshotStore snapshots = open();
    const Points last{{"old", "int32", "", binary(4)}};
    save(snapshots, "", last);
    snapshots.save_points("", [&](const SnapshotStore::VisitPoint& visit) {
        visit({"new", "int32", "", nullptr});
        EXPECT_TRUE(*open().load_points("") == last);
    });
    EXPECT_EQ(open().load_points("")->front().name, "new");
}

// ------------------------------------------------------- files of others

TEST_F(StoreTest, AFileOfSomethingElseIsRefused)
{
    write("<velmo/>\n");
    EXPECT_TRUE(contains(refusal(), "not a database"));
    write(std::string(100000, '\0'));
    EXPECT_FALSE(refusal().empty());
}

TEST_F(StoreTest, AnotherProgramsDatabaseIsRefused)
{
    run_sql("CREATE TABLE mine (a)");
    EXPECT_TRUE(contains(refusal(), "another program"));
    run_sql("PRAGMA application_id = 1");
    EXPECT_TRUE(contains(refusal(), "another program"));
}

TEST_F(StoreTest, ANewerFormatIsRefused)
{
    save(*std::make_unique<SnapshotStore>(folder.path(), "S"), "", {});
    run_sql("PRAGMA user_version = 2");
    EXPECT_TRUE(contains(refusal(), "newer"));
    run_sql("PRAGMA user_version = -1");
    EXPECT_TRUE(contains(refusal(), "unknown"));
}

class DamagedStore : public StoreTest {
protected:
    DamagedStore()
    {
        SnapshotStore snapshots = open();
        save(snapshots, "", Points(2000, {"p", "bytes", "", binary(500)}));
    }
};

TEST_F(DamagedStore, AShortenedFileIsRefused)
{
    const std::string whole = content();
    for (const std::size_t length :
         {whole.size() - 4096, whole.size() / 2, std::size_t(4096), std::size_t(100),
          std::size_t(10)}) {
        write(whole.substr(0, length));
        EXPECT_FALSE(refusal().empty()) << length;
    }
}

TEST_F(DamagedStore, DamagedPagesAreFound)
{
    const std::string whole = content();
    for (const std::size_t page :
         {std::size_t(0), std::size_t(1), whole.size() / 4096 / 2}) {
        std::string damaged = whole;
        damaged.replace(page * 4096, 2000, 2000, '\x5A');
        write(damaged);
        EXPECT_FALSE(refusal().empty()) << page;
    }
}

TEST_F(DamagedStore, AnyDamageIsRefusedOrHarmless)
{
    open().save_ports("", busy_ports);
    const std::string whole = content();
    std::mt19937 random(3);
    std::uniform_int_distribution<std::size_t> place(0, whole.size() - 1);
    std::uniform_int_distribution<int> byte(0, 255);
    int refused = 0;
    for (int i = 0; i < 200; ++i) {
        std::string damaged = whole;
        for (int bytes = 0; bytes < 1 + i % 50; ++bytes)
            damaged[place(random)] = static_cast<char>(byte(random));
        write(damaged);
        try {
            SnapshotStore snapshots = open();
            snapshots.load_points("");
            snapshots.load_ports("");
        } catch (const StoreError&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 0);
}

TEST_F(StoreTest, ValuesThatDoNotBelongThereAreAnErrorOfTheLoad)
{
    SnapshotStore snapshots = open();
    snapshots.save_ports("", busy_ports);
    for (const char* change :
         {"UPDATE ports SET handle = 4294967296", "UPDATE ports SET handle = -1",
          "UPDATE ports SET handle = 'one'", "UPDATE packets SET handle = 77",
          "UPDATE connections SET mode = 0.5"}) {
        snapshots.save_ports("", busy_ports);
        run_sql(change);
        EXPECT_THROW(snapshots.load_ports(""), StoreError) << change;
    }
}

TEST_F(StoreTest, AFolderInPlaceOfTheFileIsRefused)
{
    fs::create_directory(file());
    EXPECT_THROW(open(), StoreError);
}

// ------------------------------------------------------------- file names

TEST(SnapshotFile, IsInTheFolderWhateverTheNameAndNobodyElses)
{
    const fs::path folder("/data");
    EXPECT_EQ(store::snapshot_file(folder, "0000"), "/data/0000.db");
    EXPECT_EQ(store::snapshot_file(folder, "plant-1_a.b"), "/data/plant-1_a.b.db");
    EXPECT_EQ(store::snapshot_file(folder, "../a"), "/data/%2E.%2Fa.db");
    EXPECT_EQ(store::snapshot_file(folder, "."), "/data/%2E.db");
    EXPECT_EQ(store::snapshot_file(folder, "a b%\xFF\n"), "/data/a%20b%25%FF%0A.db");
}

TEST(SnapshotFile, IsCreatedWithItsFoldersForThisUserOnly)
{
    const TemporaryFolder folder;
    const fs::path place = folder.path() / "a" / "b";
    const SnapshotStore snapshots(place, "S");
    EXPECT_EQ(fs::status(snapshots.file()).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(place).permissions(), fs::perms::owner_all);
    EXPECT_EQ(std::distance(fs::directory_iterator(place), fs::directory_iterator()), 1)
        << "one file";
}

} // namespace
