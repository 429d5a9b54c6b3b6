// SQLite, as the snapshots need it: a file, statements, transactions.
//
// Functions throw StoreError, and block as long as the disk does. A database and its
// statements belong to one thread at a time.
#ifndef VELMO_SERVER_STORE_DATABASE_H
#define VELMO_SERVER_STORE_DATABASE_H

#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

#include "server/model/data.h"

struct sqlite3;
struct sqlite3_stmt;

namespace velmo::store {

// what() names the file, and what is wrong with it.
class StoreError : public std::runtime_error {
public:
    // what: what kind of file it is.
    StoreError(const std::filesystem::path& file, const std::string& reason,
               const std::string& what = snapshot_file_kind);

    static constexpr const char* snapshot_file_kind = "snapshot file";
};

class Database {
public:
    // Opens the file, or creates an empty one, readable to this user only. What a
    // transaction was interrupted in, by a kill or a loss of power, is undone. what: what
    // kind of file it is, for errors.
    explicit Database(std::filesystem::path file,
                      std::string what = StoreError::snapshot_file_kind);

    // Runs one or more statements.
    void execute(const char* sql);

    // The number that a query gives.
    std::int64_t number(const char* sql);

    const std::filesystem::path& file() const { return path; }
    sqlite3* handle() const { return connection.get(); }

    // Throws what SQLite has told last, or this.
    [[noreturn]] void fail() const;
    [[noreturn]] void fail(const std::string& reason) const;

private:
    struct Closer {
        void operator()(sqlite3* open) const;
    };

    std::filesystem::path path;
    std::string kind;
    std::unique_ptr<sqlite3, Closer> connection;
};

// A prepared statement: bind and run; or bind, step and read.
class Statement {
public:
    // The database must outlive the statement.
    Statement(const Database& its_database, const char* sql);
    Statement(const Database& its_database, const std::string& sql)
        : Statement(its_database, sql.c_str())
    {
    }

    // Binds the parameters in their order. What they refer to must stay until the
    // statement has run.
    template <class... Values>
    Statement& bind(const Values&... values)
    {
        int index = 0;
        (put(++index, values), ...);
        return *this;
    }

    // Goes on to the next row; false when there is none.
    bool step();

    // Runs one that gives no rows. It can be bound and run again.
    void run();

    // Columns of the row, counted from 0. Bytes are as they were bound.
    std::string text(int column) const;
    model::Data data(int column) const; // null where NULL is stored
    bool is_null(int column) const;

    // Throws when the number is not one of this type.
    template <class Number>
    Number number(int column) const
    {
        using Stored = std::numeric_limits<std::int64_t>;
        using Wanted = std::numeric_limits<Number>;
        if constexpr (sizeof(Number) == sizeof(std::int64_t)) // unsigned ones wrap around
            return static_cast<Number>(integer(column, Stored::min(), Stored::max()));
        else
            return static_cast<Number>(integer(column, Wanted::min(), Wanted::max()));
    }

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* prepared) const;
    };

    template <class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
    void put(int index, Integer number)
    {
        put_integer(index, static_cast<std::int64_t>(number));
    }
    template <class Value>
    void put(int index, const std::optional<Value>& value)
    {
        if (value)
            put(index, *value);
    }
    void put(int index, std::string_view text); // text in the file if it is UTF-8
    void put(int index, const model::Data& data);
    void put_integer(int index, std::int64_t number);
    std::string_view bytes(int column) const;
    std::int64_t integer(int column, std::int64_t min, std::int64_t max) const;
    void check(int code) const;
    [[noreturn]] void misfit(int column) const;

    const Database& database;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement;
};

// Everything done to the database while it lives happens, or nothing does.
class Transaction {
public:
    enum class Kind { read, write };

    Transaction(Database& its_database, Kind kind);
    ~Transaction(); // undoes what is not committed
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    // Returns when it is safe on the disk.
    void commit();

private:
    Database& database;
};

} // namespace velmo::store

#endif
