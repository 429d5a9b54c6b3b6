#include <hiredis/hiredis.h>

#include <stdexcept>

#include "bench/contenders/contender.h"
#include "tests/support/loopback.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace velmo::bench {

namespace {

using Context = std::unique_ptr<redisContext, void (*)(redisContext*)>;
using Reply = std::unique_ptr<redisReply, void (*)(void*)>;

class RedisClient final : public Client {
public:
    RedisClient(Context its_connection, int number)
        : connection(std::move(its_connection)),
          key("plant/value " + std::to_string(number)),
          list("plant/queue " + std::to_string(number))
    {
    }

    void set(const Bytes& value) override
    {
        expect(call("SET", key, &value)->type == REDIS_REPLY_STATUS, "the answer to SET");
    }
    void get(Bytes& value) override { expect_data(call("GET", key), value.size()); }
    void send(const Bytes& packet) override
    {
        expect(call("LPUSH", list, &packet)->type == REDIS_REPLY_INTEGER,
               "the answer to LPUSH");
    }
    void receive(std::size_t length) override { expect_data(call("RPOP", list), length); }

private:
    Reply call(const char* command, const std::string& of, const Bytes* data = nullptr)
    {
        const char* words[] = {command, of.data(), data ? data->data() : nullptr};
        const std::size_t lengths[] = {std::char_traits<char>::length(command), of.size(),
                                       data ? data->size() : 0};
        void* reply = redisCommandArgv(connection.get(), data ? 3 : 2, words, lengths);
        expect(reply != nullptr, connection->errstr);
        return Reply(static_cast<redisReply*>(reply), freeReplyObject);
    }

    static void expect_data(const Reply& reply, std::size_t length)
    {
        expect(reply->type == REDIS_REPLY_STRING && reply->len == length, "Redis's data");
    }

    Context connection;
    const std::string key, list;
};

class Redis final : public Contender {
public:
    Redis(Transport its_transport, bool durable)
        : transport(its_transport), port(tests::free_port()), process(command(durable))
    {
        const auto answers = [this] { return open()->err == 0; };
        if (!tests::eventually(answers))
            throw std::runtime_error("redis-server does not start: " + process.out());
    }

    std::unique_ptr<Client> connect() override
    {
        return std::make_unique<RedisClient>(open(), ++clients);
    }

private:
    // The package that holds the program without starting a daemon has it under
    // another name, by which it tells what to be.
    tests::Process::Command command(bool durable) const
    {
        const std::string program = folder.path() / "redis-server";
        std::filesystem::create_symlink(REDIS_SERVER_PATH, program);
        tests::Process::Command words{program,
                                      "--bind",
                                      "127.0.0.1",
                                      "--port",
                                      std::to_string(port),
                                      "--unixsocket",
                                      socket(),
                                      "--dir",
                                      folder.path(),
                                      "--save",
                                      ""};
        if (durable)
            words.insert(words.end(), {"--appendonly", "yes", "--appendfsync", "always"});
        return words;
    }

    std::string socket() const { return folder.path() / "socket"; }

    Context open() const
    {
        redisContext* context = transport == Transport::unix_socket
                                    ? redisConnectUnix(socket().c_str())
                                    : redisConnect("127.0.0.1", port);
        if (!context)
            throw std::bad_alloc();
        return Context(context, redisFree);
    }

    const Transport transport;
    const std::uint16_t port;
    tests::TemporaryFolder folder;
    tests::Process process;
    int clients = 0;
};

} // namespace

std::unique_ptr<Contender> make_redis(Transport transport, bool durable)
{
    return std::make_unique<Redis>(transport, durable);
}

} // namespace velmo::bench
