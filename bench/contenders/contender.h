// Servers that keep values and queues, and how a client talks to each.
#ifndef VELMO_BENCH_CONTENDERS_CONTENDER_H
#define VELMO_BENCH_CONTENDERS_CONTENDER_H

#include <memory>
#include <string>
#include <vector>

namespace velmo::bench {

using Bytes = std::vector<char>;

// One client of a server: one thread uses it. Every operation waits for the answer, and
// throws std::runtime_error when that is not what it has to be.
class Client {
public:
    virtual ~Client() = default;

    virtual void set(const Bytes& value) = 0;
    virtual void get(Bytes& value) = 0; // of the length of the last one set

    // A packet to the end of a queue, and from its beginning: of this length, and freed.
    virtual void send(const Bytes& packet);
    virtual void receive(std::size_t length);
};

enum class Transport { unix_socket, tcp };

// "unix" or "TCP".
const char* in_words(Transport transport);

// A server of its own process, as long as this lives.
class Contender {
public:
    virtual ~Contender() = default;

    // Each client has a value and a queue of its own.
    virtual std::unique_ptr<Client> connect() = 0;
};

// Throws std::runtime_error for what is not as it has to be.
void expect(bool good, const char* what);

// What the settings call velmod on that transport.
const char* server_name(Transport transport);

// Two servers, one with the defaults and one without its unix socket, and the library,
// whose settings name them both.
class Velmods {
public:
    // durable: with --durable and a data folder. Throws std::runtime_error.
    explicit Velmods(bool durable = false);
    ~Velmods();

    std::unique_ptr<Client> connect(Transport transport);

private:
    struct Running;
    std::unique_ptr<Running> running;
};

// Requests and answers of the same sizes on a bare socket: set() and get() alone.
std::unique_ptr<Contender> make_raw_socket(Transport transport);

// Null where the build is without peers.
std::unique_ptr<Contender> make_redis(Transport transport, bool durable = false);
std::unique_ptr<Contender> make_thrift(Transport transport);
std::unique_ptr<Contender> make_postgres(); // on its unix socket; set() and get() alone

} // namespace velmo::bench

#endif
