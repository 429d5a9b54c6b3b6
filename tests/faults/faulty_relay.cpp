#include "tests/faults/faulty_relay.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace velmo::tests {

namespace {

// What there is to read; empty at the end of it.
std::string read_some(const Descriptor& from)
{
    std::string bytes(1 << 16, '\0');
    const ssize_t count = recv(from.get(), bytes.data(), bytes.size(), 0);
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

bool send_all(const Descriptor& to, const std::string& bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count =
            send(to.get(), bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (count < 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

pollfd readable(const Descriptor& descriptor)
{
    return {descriptor.get(), POLLIN, 0};
}

std::string host_and_port(std::uint16_t port)
{
    std::string bytes("127.0.0.1", 10); // with its NUL; the port is aligned behind it
    bytes.append(reinterpret_cast<const char*>(&port), sizeof port);
    return bytes;
}

} // namespace

FaultyRelay::FaultyRelay(std::uint16_t server_port)
    : target(server_port), listener(listening_socket(number))
{
    int ends[2];
    check_system_call(pipe2(ends, O_CLOEXEC) == 0, "pipe2");
    stop_reader = Descriptor(ends[0]);
    stop_writer = Descriptor(ends[1]);
    thread = std::thread([this] { run(); });
}

FaultyRelay::~FaultyRelay()
{
    stop_writer.reset();
    thread.join();
}

void FaultyRelay::tell(Mode new_mode, std::size_t new_limit, Answer answer)
{
    const std::lock_guard<std::mutex> guard(mutex);
    mode = new_mode;
    limit = new_limit;
    own_answer = std::move(answer);
    all_to_client = all_to_server = 0;
    for (Connection& connection : connections)
        connection.to_client = connection.to_server = 0;
}

void FaultyRelay::pass()
{
    tell(Mode::pass, 0);
}

void FaultyRelay::cut_answers_after(std::size_t bytes)
{
    tell(Mode::cut_answers, bytes);
}

void FaultyRelay::cut_requests_after(std::size_t bytes)
{
    tell(Mode::cut_requests, bytes);
}

void FaultyRelay::stall_answers_after(std::size_t bytes)
{
    tell(Mode::stall_answers, bytes);
}

void FaultyRelay::swallow()
{
    tell(Mode::swallow, 0);
}

void FaultyRelay::answer_with(Answer answer)
{
    tell(Mode::answer, 0, std::move(answer));
}

std::size_t FaultyRelay::answered() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return all_to_client;
}

std::size_t FaultyRelay::requested() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return all_to_server;
}

void FaultyRelay::run()
{
    for (;;) {
        std::vector<pollfd> waiting{readable(stop_reader), readable(listener)};
        for (const Connection& connection : connections) { // only this thread changes it
            waiting.push_back(readable(connection.client));
            waiting.push_back(readable(connection.server));
        }
        poll(waiting.data(), waiting.size(), -1);
        if (waiting[0].revents)
            return;
        const std::lock_guard<std::mutex> guard(mutex);
        auto ready = waiting.begin() + 2;
        for (auto connection = connections.begin(); connection != connections.end();) {
            const bool client = (ready++)->revents, server = (ready++)->revents;
            const bool goes_on = (!client || from_client(*connection)) &&
                                 (!server || from_server(*connection));
            connection = goes_on ? std::next(connection) : connections.erase(connection);
        }
        if (waiting[1].revents)
            accept();
    }
}

void FaultyRelay::accept()
{
    Descriptor client(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
    Descriptor server = connected_socket(target);
    if (client.get() >= 0 && server.get() >= 0)
        connections.push_back({std::move(client), std::move(server)});
}

// The next two pass on what has come; false when the connection is to be closed. Nobody
// is waited for: what passes here fits into a socket's buffer.

bool FaultyRelay::from_client(Connection& connection)
{
    std::string bytes = read_some(connection.client);
    if (bytes.empty())
        return false;
    if (mode == Mode::swallow)
        return true;
    if (mode == Mode::answer) {
        const std::string answer = own_answer(bytes);
        return !answer.empty() && send_all(connection.client, answer);
    }
    if (mode == Mode::cut_requests)
        bytes.resize(std::min(bytes.size(), limit - connection.to_server));
    connection.to_server += bytes.size();
    all_to_server += bytes.size();
    return send_all(connection.server, bytes) &&
           (mode != Mode::cut_requests || connection.to_server < limit);
}

bool FaultyRelay::from_server(Connection& connection)
{
    std::string bytes = read_some(connection.server);
    if (bytes.empty())
        connection.server.reset(); // the client is told unless it is kept in the dark
    if (mode == Mode::swallow)
        return true;
    if (bytes.empty())
        return false;
    lead_here(bytes);
    const bool limited = mode == Mode::cut_answers || mode == Mode::stall_answers;
    if (limited)
        bytes.resize(std::min(bytes.size(), limit - connection.to_client));
    connection.to_client += bytes.size();
    all_to_client += bytes.size();
    return send_all(connection.client, bytes) &&
           (mode != Mode::cut_answers || connection.to_client < limit);
}

void FaultyRelay::lead_here(std::string& answer) const
{
    const std::string there = host_and_port(target), here = host_and_port(number);
    for (std::size_t at = answer.find(there); at != std::string::npos;
         at = answer.find(there, at))
        answer.replace(at, here.size(), here);
}

} // namespace velmo::tests
