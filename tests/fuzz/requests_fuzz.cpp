// velmod, sent arbitrary bytes over a connection: it ends that one, and serves others.

#include <sys/socket.h>

#include <cstdint>
#include <string>

#include "server/server.h"
#include "tests/fuzz/require.h"
#include "tests/support/giop.h"
#include "tests/support/log_stand_in.h"
#include "tests/support/loopback.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using namespace velmo::tests;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* bytes, std::size_t size,
                                        std::size_t max_size);

namespace {

constexpr const char* naming_key = "NameService";

server::Options options(const TemporaryFolder& folder)
{
    server::Options options;
    options.endpoints = {{"127.0.0.1", 0}};
    options.use_unix_socket = false;
    options.data_dir = folder.path();
    options.realms = {"alpha"};
    options.limits.max_points = 1000;
    options.limits.max_queue_bytes = 1 << 16;
    options.limits.max_message = 1 << 16;
    options.limits.max_wait = std::chrono::milliseconds(1); // what is sent must not wait
    return options;
}

// corbaloc::1.2@HOST:PORT/NameService
std::uint16_t port_in(const std::string& url)
{
    return static_cast<std::uint16_t>(std::stoul(url.substr(url.rfind(':') + 1)));
}

// A server in this process for all inputs, and a client that it has to keep.
struct World {
    World() : server(options(folder)), port(port_in(server.naming_url()))
    {
        client = connect();
    }

    Descriptor connect() const
    {
        Descriptor connection = connected_socket(port);
        require(connection.get() >= 0, "the server takes connections");
        giop::limit_waiting(connection);
        return connection;
    }

    TemporaryFolder folder;
    server::Server server;
    const std::uint16_t port;
    Descriptor client;
};

// How many service contexts a request says that it has.
std::uint32_t service_contexts(const std::string& message)
{
    if (message[giop::minor_version_at] < 2)
        return giop::number_at(message, giop::header_bytes);
    // Behind the key and the operation, the lengths of which are in front of them.
    const auto behind = [&](std::size_t at) {
        return (at + 4 + giop::number_at(message, at) + 3) / 4 * 4;
    };
    return giop::number_at(message, behind(behind(giop::header_bytes + 12)));
}

// omniORB 4.2.5 makes room for all the service contexts that a request says to have before
// it looks whether they are there, be it gigabytes. Nothing of velmod has a part in it.
bool takes_gigabytes(const std::string& messages)
{
    constexpr std::uint32_t many = 1 << 16;
    for (std::size_t at = messages.find(giop::magic); at < messages.size();
         at = messages.find(giop::magic, at + 1)) {
        const std::string message = messages.substr(at);
        if (message.size() >= giop::header_bytes &&
            message[giop::type_at] == giop::request_type &&
            service_contexts(message) > many)
            return true;
    }
    return false;
}

// The first message, whole, and no cancellation. With what comes in pieces, or before its
// predecessor is answered, omniORB 4.2.5 may never end, or crash: the inputs that are kept
// have what it copes with.
std::string first_alone(const std::string& messages)
{
    std::string first = messages.substr(0, messages.find(giop::magic, 1));
    if (first.size() < giop::header_bytes)
        return first;
    first[giop::flags_at] =
        static_cast<char>(first[giop::flags_at] & ~giop::more_fragments);
    if (first[giop::type_at] == giop::cancellation_type)
        first[giop::type_at] = giop::request_type;
    return first;
}

World& world()
{
    static World only; // the broker's threads have to end before the broker's library
    return only;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    world();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string messages(reinterpret_cast<const char*>(bytes), size);
    if (takes_gigabytes(messages))
        return 0;
    clear_logged_lines();
    const Descriptor connection = world().connect();
    giop::send(connection, messages);
    shutdown(connection.get(), SHUT_WR);
    require(giop::drain(connection), "the server ends a connection that its client ends");
    require(giop::ping(world().client, naming_key), "the server serves its other client");
    return 0;
}

// Most messages have the size that they say, so that the broker reads what is in them.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t max_size, unsigned int chance)
{
    size = LLVMFuzzerMutate(bytes, size, max_size);
    std::string message = first_alone({reinterpret_cast<const char*>(bytes), size});
    if (chance % 8 != 0)
        giop::correct_body_sizes(message);
    std::copy(message.begin(), message.end(), bytes);
    return message.size();
}
