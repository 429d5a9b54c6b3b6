#include <libpq-fe.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include "bench/contenders/contender.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace velmo::bench {

namespace {

using Connection = std::unique_ptr<PGconn, void (*)(PGconn*)>;
using Result = std::unique_ptr<PGresult, void (*)(PGresult*)>;

class PostgresClient final : public Client {
public:
    PostgresClient(Connection its_connection, int number)
        : connection(std::move(its_connection)),
          name("plant/value " + std::to_string(number))
    {
        expect_status(PGRES_COMMAND_OK,
                      PQprepare(connection.get(), "set",
                                "INSERT INTO points VALUES ($1, $2) ON CONFLICT (name) "
                                "DO UPDATE SET value = excluded.value",
                                2, nullptr));
        expect_status(PGRES_COMMAND_OK,
                      PQprepare(connection.get(), "get",
                                "SELECT value FROM points WHERE name = $1", 1, nullptr));
    }

    void set(const Bytes& value) override
    {
        expect_status(PGRES_COMMAND_OK, run("set", &value));
    }
    void get(Bytes& value) override
    {
        const Result rows = expect_status(PGRES_TUPLES_OK, run("get", nullptr));
        expect(PQntuples(rows.get()) == 1 &&
                   PQgetlength(rows.get(), 0, 0) == static_cast<int>(value.size()),
               "PostgreSQL's value");
    }

private:
    static constexpr int binary = 1;

    PGresult* run(const char* statement, const Bytes* value)
    {
        const std::array<const char*, 2> values{name.data(),
                                                value ? value->data() : nullptr};
        const std::array<int, 2> lengths{static_cast<int>(name.size()),
                                         value ? static_cast<int>(value->size()) : 0};
        const std::array<int, 2> formats{0, binary};
        return PQexecPrepared(connection.get(), statement, value ? 2 : 1, values.data(),
                              lengths.data(), formats.data(), binary);
    }

    Result expect_status(ExecStatusType wanted, PGresult* result)
    {
        Result owned(result, PQclear);
        if (PQresultStatus(result) != wanted)
            throw std::runtime_error(PQerrorMessage(connection.get()));
        return owned;
    }

    Connection connection;
    const std::string name;
};

// It refuses to run as root.
tests::Process::Command unprivileged(tests::Process::Command words)
{
    if (geteuid() == 0)
        words.insert(words.begin(), {"/usr/bin/setpriv", "--reuid=nobody",
                                     "--regid=nogroup", "--clear-groups"});
    return words;
}

class Postgres final : public Contender {
public:
    Postgres() : process(start())
    {
        const auto answers = [this] { return PQstatus(open().get()) == CONNECTION_OK; };
        if (!tests::eventually(answers))
            throw std::runtime_error("postgres does not start: " + process.err());
        const Connection connection = open();
        PQclear(PQexec(connection.get(),
                       "CREATE TABLE points (name text PRIMARY KEY, value bytea)"));
    }
    ~Postgres() override
    {
        process.signal(SIGINT); // ends its processes and their shared memory with it
        process.wait();
    }

    std::unique_ptr<Client> connect() override
    {
        return std::make_unique<PostgresClient>(open(), ++clients);
    }

private:
    std::string data() const { return folder.path() / "data"; }

    tests::Process::Command start() const
    {
        const std::string programs = POSTGRES_PROGRAMS;
        if (geteuid() == 0) // its folder is its user's, and no secret
            std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
        tests::Process setup(
            unprivileged({programs + "/initdb", "--auth=trust", "--username=bench",
                          "--encoding=UTF8", "--no-sync", "--pgdata", data()}));
        if (setup.wait() != 0)
            throw std::runtime_error("initdb: " + setup.err());
        return unprivileged({programs + "/postgres", "-D", data(), "-k", folder.path(),
                             "-c", "listen_addresses="});
    }

    Connection open() const
    {
        const std::string where =
            "host=" + folder.path().string() + " user=bench dbname=postgres";
        return Connection(PQconnectdb(where.c_str()), PQfinish);
    }

    tests::TemporaryFolder folder;
    tests::Process process;
    int clients = 0;
};

} // namespace

std::unique_ptr<Contender> make_postgres()
{
    return std::make_unique<Postgres>();
}

} // namespace velmo::bench
