#include "tests/support/relay.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <vector>

#include "tests/support/loopback.h"

namespace velmo::tests {

namespace {

// Passes on what there is to read; false at the end of it.
bool pump(const Descriptor& from, const Descriptor& to)
{
    char buffer[1 << 16];
    const ssize_t count = read(from.get(), buffer, sizeof buffer);
    for (ssize_t done = 0; done < count;) {
        const ssize_t written = send(to.get(), buffer + done,
                                     static_cast<std::size_t>(count - done), MSG_NOSIGNAL);
        if (written < 0)
            return false;
        done += written;
    }
    return count > 0;
}

pollfd readable(const Descriptor& descriptor)
{
    return {descriptor.get(), POLLIN, 0};
}

} // namespace

Relay::Relay(std::uint16_t target_port)
    : target(target_port), listener(listening_socket(number))
{
    int ends[2];
    check_system_call(pipe(ends) == 0, "pipe");
    stop_reader = Descriptor(ends[0]);
    stop_writer = Descriptor(ends[1]);
    thread = std::thread([this] { run(); });
}

Relay::~Relay()
{
    stop_writer.reset();
    thread.join();
}

void Relay::run()
{
    for (;;) {
        std::vector<pollfd> waiting{readable(stop_reader), readable(listener)};
        for (const Connection& connection : connections) {
            waiting.push_back(readable(connection.client));
            waiting.push_back(readable(connection.server));
        }
        poll(waiting.data(), waiting.size(), -1);
        if (waiting[0].revents)
            return;
        auto ready = waiting.begin() + 2;
        for (auto connection = connections.begin(); connection != connections.end();) {
            const bool from_client = (ready++)->revents;
            const bool from_server = (ready++)->revents;
            const bool ended =
                (from_client && !pump(connection->client, connection->server)) ||
                (from_server && !pump(connection->server, connection->client));
            connection = ended ? connections.erase(connection) : std::next(connection);
        }
        if (waiting[1].revents)
            accept();
    }
}

void Relay::accept()
{
    Descriptor client(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
    Descriptor server = connected_socket(target);
    if (client.get() >= 0 && server.get() >= 0)
        connections.push_back({std::move(client), std::move(server)});
}

} // namespace velmo::tests
