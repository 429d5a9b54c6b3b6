// A sound snapshot file with arbitrary rows: refused, or loaded. Each row is a byte that
// chooses its table, and for each column a byte that chooses the kind of its value, with
// the value behind it. Another byte before all of them says which parts have a snapshot.

#include <cstdint>
#include <memory>

#include "tests/fuzz/loading.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;

namespace {

struct Table {
    std::string name;
    int columns; // beside its id and its snapshot's
};

// The parts that can be saved, as the snapshots' rows name them.
constexpr const char* parts[] = {"templates", "points", "ports"};

class Rows {
public:
    Rows(const std::uint8_t* first, std::size_t size) : next(first), end(first + size) {}

    bool used_up() const { return next == end; }
    std::uint8_t byte() { return used_up() ? std::uint8_t{0} : *next++; }

    // A literal of SQL.
    std::string value()
    {
        static const char* const usual[] = {
            "1",     "30001",      "30002",      "30004",
            "65536", "4294967295", "4294967296", "9223372036854775807",
            "-1",    "'int32'",    "'bytes'",    "'string'",
            "'p'",   "'q'",        "1.5",        "'$SYS/p'"};
        switch (byte() % 6) {
        case 0:
            return "NULL";
        case 1:
            return std::to_string(byte());
        case 2:
            return usual[byte() % std::size(usual)];
        case 3:
            return "CAST(" + blob() + " AS TEXT)";
        case 4:
            return blob();
        default:
            return "''";
        }
    }

private:
    std::string blob()
    {
        const char* const digits = "0123456789abcdef";
        std::string text = "x'";
        for (int left = byte() % 64; left > 0 && !used_up(); --left) {
            const std::uint8_t value = byte();
            text += {digits[value >> 4], digits[value & 15]};
        }
        return text + "'";
    }

    const std::uint8_t* next;
    const std::uint8_t* const end;
};

// One file for all inputs: making its tables takes longer than filling them.
struct World {
    World() : store(folder.path(), "S"), database(store.file())
    {
        store::Statement found(database,
                               "SELECT m.name, count(*) - 2 FROM sqlite_schema AS m "
                               "JOIN pragma_table_info(m.name) "
                               "WHERE m.type = 'table' AND m.name <> 'snapshots' "
                               "GROUP BY m.name ORDER BY m.name");
        while (found.step())
            tables.push_back({found.text(0), found.number<int>(1)});
    }

    void fill(Rows& rows)
    {
        store::Transaction transaction(database, store::Transaction::Kind::write);
        database.execute("DELETE FROM snapshots"); // and what belongs to them
        const unsigned int present = rows.byte();
        for (std::size_t i = 0; i < std::size(parts); ++i)
            if ((present >> i & 1u) == 0)
                database.execute(("INSERT INTO snapshots (id, realm, service) VALUES (" +
                                  std::to_string(i) + ", '', '" + parts[i] + "')")
                                     .c_str());
        while (!rows.used_up())
            insert(rows);
        transaction.commit();
    }

    tests::TemporaryFolder folder;
    store::SnapshotStore store;
    store::Database database;
    std::vector<Table> tables;

private:
    void insert(Rows& rows)
    {
        const Table& table = tables[rows.byte() % tables.size()];
        const std::size_t part = table.name == parts[0]   ? 0
                                 : table.name == parts[1] ? 1
                                                          : 2; // has several tables
        std::string sql = "INSERT OR IGNORE INTO " + table.name + " VALUES (NULL, " +
                          std::to_string(part);
        for (int i = 0; i < table.columns; ++i)
            sql += ", " + rows.value();
        try {
            database.execute((sql + ")").c_str());
        } catch (const store::StoreError&) {
            // The part is not there.
        }
    }
};

World& world()
{
    static World only;
    return only;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    Rows rows(bytes, size);
    world().fill(rows);
    tests::check_loading(world().store);
    tests::check_saving(world().store);
    return 0;
}
