// A detour for connections to a server on which things go wrong.
#ifndef VELMO_TESTS_FAULTS_FAULTY_RELAY_H
#define VELMO_TESTS_FAULTS_FAULTY_RELAY_H

#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "tests/support/loopback.h"

namespace velmo::tests {

// Listens on a free port of 127.0.0.1 and passes everything on to a server there, and
// back, as it is told to. References to the server that come by are made to lead here as
// well, so that a client which finds its services through here calls them through here.
//
// Safe from any thread. What it is told holds for open connections and new ones.
class FaultyRelay {
public:
    // Throws std::system_error.
    explicit FaultyRelay(std::uint16_t server_port);
    ~FaultyRelay();
    FaultyRelay(const FaultyRelay&) = delete;
    FaultyRelay& operator=(const FaultyRelay&) = delete;

    std::uint16_t port() const { return number; }

    // Everything passes: as at the beginning.
    void pass();

    // Of each connection so many bytes pass from now on that the server sends, or that the
    // client sends; then it is closed.
    void cut_answers_after(std::size_t bytes);
    void cut_requests_after(std::size_t bytes);

    // Nothing passes any more, and no connection is closed.
    void swallow();

    // Of each connection so many bytes pass from now on that the server sends, nothing
    // after them; it stays open.
    void stall_answers_after(std::size_t bytes);

    // Requests do not pass: answer(request) is sent back, and the connection closed when
    // that is empty.
    using Answer = std::function<std::string(const std::string& request)>;
    void answer_with(Answer answer);

    // The bytes that have passed since it was told something, over all connections.
    std::size_t answered() const;
    std::size_t requested() const;

private:
    enum class Mode { pass, cut_answers, cut_requests, stall_answers, swallow, answer };

    struct Connection {
        Descriptor client;
        Descriptor server;
        std::size_t to_client = 0; // bytes that have passed in this mode
        std::size_t to_server = 0;
    };

    void tell(Mode mode, std::size_t limit, Answer answer = {});
    void run();
    void accept();
    bool from_client(Connection& connection);
    bool from_server(Connection& connection);
    void lead_here(std::string& answer) const;

    const std::uint16_t target;
    std::uint16_t number = 0;
    Descriptor listener;
    Descriptor stop_reader;
    Descriptor stop_writer;

    mutable std::mutex mutex; // guards what follows
    Mode mode = Mode::pass;
    std::size_t limit = 0;
    Answer own_answer;
    std::size_t all_to_client = 0;
    std::size_t all_to_server = 0;
    std::list<Connection> connections;

    std::thread thread;
};

} // namespace velmo::tests

#endif
