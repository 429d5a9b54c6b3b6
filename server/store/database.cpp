#include "server/store/database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "quilp/utf8.h"

namespace velmo::store {

namespace {

constexpr int patience_with_readers_ms = 5000; // of the same file, such as a shell

// What every connection wants. EXTRA: a commit is not lost when the power is, either.
constexpr const char* connection_settings = R"(
    PRAGMA synchronous = EXTRA;
    PRAGMA foreign_keys = ON;
    PRAGMA trusted_schema = OFF;
    PRAGMA cell_size_check = ON;
)";

// SQLite would make it readable to others. One that is there is left alone: closing it
// would end the locks that this process holds on it.
void create_private(const std::filesystem::path& file, const std::string& kind)
{
    const int created = open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (created >= 0)
        close(created);
    else if (errno != EEXIST)
        throw StoreError(file, std::generic_category().message(errno), kind);
}

// A shell shows text up to its first NUL.
bool is_plain_text(std::string_view bytes)
{
    while (!bytes.empty()) {
        const quilp::Utf8Character character = quilp::first_character(bytes);
        if (!character.well_formed || character.code == 0)
            return false;
        bytes.remove_prefix(character.length);
    }
    return true;
}

} // namespace

StoreError::StoreError(const std::filesystem::path& file, const std::string& reason,
                       const std::string& what)
    : std::runtime_error(what + " " + file.string() + ": " + reason)
{
}

// -------------------------------------------------------------- database

void Database::Closer::operator()(sqlite3* open) const
{
    sqlite3_close_v2(open);
}

Database::Database(std::filesystem::path file, std::string what)
    : path(std::move(file)), kind(std::move(what))
{
    create_private(path, kind);
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(
        path.c_str(), &opened,
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    connection.reset(opened);
    if (!connection)
        throw std::bad_alloc();
    if (code != SQLITE_OK)
        fail();
    if (sqlite3_db_readonly(handle(), "main") != 0)
        fail("it may be read, but not written");
    sqlite3_busy_timeout(handle(), patience_with_readers_ms);
    execute(connection_settings);
}

void Database::execute(const char* sql)
{
    if (sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail();
}

std::int64_t Database::number(const char* sql)
{
    Statement statement(*this, sql);
    if (!statement.step())
        fail("no answer to " + std::string(sql));
    return statement.number<std::int64_t>(0);
}

void Database::fail() const
{
    std::string reason = sqlite3_errmsg(handle());
    const int primary = sqlite3_errcode(handle()) & 0xFF;
    const int system = sqlite3_system_errno(handle());
    if (system != 0 && (primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN))
        reason += " (" + std::generic_category().message(system) + ")";
    fail(reason);
}

void Database::fail(const std::string& reason) const
{
    throw StoreError(path, reason, kind);
}

// ------------------------------------------------------------- statement

void Statement::Finalizer::operator()(sqlite3_stmt* prepared) const
{
    sqlite3_finalize(prepared);
}

Statement::Statement(const Database& its_database, const char* sql) : database(its_database)
{
    sqlite3_stmt* prepared = nullptr;
    check(sqlite3_prepare_v2(database.handle(), sql, -1, &prepared, nullptr));
    statement.reset(prepared);
}

void Statement::check(int code) const
{
    if (code != SQLITE_OK)
        database.fail();
}

bool Statement::step()
{
    const int code = sqlite3_step(statement.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        database.fail();
    return code == SQLITE_ROW;
}

void Statement::run()
{
    step();
    sqlite3_reset(statement.get());
    sqlite3_clear_bindings(statement.get());
}

void Statement::put_integer(int index, std::int64_t number)
{
    check(sqlite3_bind_int64(statement.get(), index, number));
}

void Statement::put(int index, std::string_view text)
{
    if (is_plain_text(text))
        check(sqlite3_bind_text64(statement.get(), index, text.data(), text.size(),
                                  SQLITE_STATIC, SQLITE_UTF8));
    else
        check(sqlite3_bind_blob64(statement.get(), index, text.data(), text.size(),
                                  SQLITE_STATIC));
}

void Statement::put(int index, const model::Data& data)
{
    if (!data)
        check(sqlite3_bind_null(statement.get(), index));
    else if (data->empty()) // a null pointer would be NULL
        check(sqlite3_bind_zeroblob(statement.get(), index, 0));
    else
        check(sqlite3_bind_blob64(statement.get(), index, data->data(), data->size(),
                                  SQLITE_STATIC));
}

void Statement::misfit(int column) const
{
    const char* name = sqlite3_column_name(statement.get(), column);
    database.fail("a value of column \"" + std::string(name ? name : "?") +
                  "\" is not what belongs there");
}

std::int64_t Statement::integer(int column, std::int64_t min, std::int64_t max) const
{
    const std::int64_t number = sqlite3_column_int64(statement.get(), column);
    if (sqlite3_column_type(statement.get(), column) != SQLITE_INTEGER || number < min ||
        number > max)
        misfit(column);
    return number;
}

std::string_view Statement::bytes(int column) const
{
    const int type = sqlite3_column_type(statement.get(), column);
    if (type != SQLITE_TEXT && type != SQLITE_BLOB)
        misfit(column);
    const void* first = sqlite3_column_blob(statement.get(), column);
    const int size = sqlite3_column_bytes(statement.get(), column);
    if (!first && size > 0)
        throw std::bad_alloc();
    return {static_cast<const char*>(first), static_cast<std::size_t>(size)};
}

bool Statement::is_null(int column) const
{
    return sqlite3_column_type(statement.get(), column) == SQLITE_NULL;
}

std::string Statement::text(int column) const
{
    return std::string(bytes(column));
}

model::Data Statement::data(int column) const
{
    if (is_null(column))
        return nullptr;
    const std::string_view stored = bytes(column);
    return std::make_shared<const model::Bytes>(stored.begin(), stored.end());
}

// ----------------------------------------------------------- transaction

Transaction::Transaction(Database& its_database, Kind kind) : database(its_database)
{
    database.execute(kind == Kind::write ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction()
{
    if (!sqlite3_get_autocommit(database.handle()))
        sqlite3_exec(database.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit()
{
    database.execute("COMMIT");
}

} // namespace velmo::store
