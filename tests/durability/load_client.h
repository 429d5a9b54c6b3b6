// A client that changes things of every kind as fast as it can, and knows what it has done.
#ifndef VELMO_TESTS_DURABILITY_LOAD_CLIENT_H
#define VELMO_TESTS_DURABILITY_LOAD_CLIENT_H

#include <deque>
#include <functional>
#include <random>

#include "tests/durability/history.h"
#include "tests/durability/services.h"

namespace velmo::tests {

// What all of them use.
namespace shared {
constexpr CORBA::ULong port = 1;
constexpr const char* port_name = "shared";
constexpr const char* event = "shared";
constexpr const char* group = "group";
} // namespace shared

// The packet that data of the shared port tell of.
Sent sent_in(const Velmo::DATA_BUFFER& data);

// Creates what all of them use, unless it is there.
void create_shared(const Services& services);

class LoadClient {
public:
    explicit LoadClient(int number);

    // Makes calls until one of them has no answer, as when the server is killed. Gives
    // how many had one.
    std::size_t run(const Services& services);

    // Once the server is there again: compares with what the client alone has changed,
    // and empties its queues.
    void check(const Services& services, Violations& violations);

    const QueueLog& queue() const { return packets; }
    const CountLog& count() const { return raises; }
    CountLog& count() { return raises; }
    std::uint64_t highest_epoch() const { return epoch; }

    // A result code that the load never gives, unless the server is wrong.
    const Violations& odd_results() const { return odd; }

private:
    // Ports, by the first digit of their handles.
    enum Kind : CORBA::ULong { mail_from = 1, mail_to, line_from, line_to, others };

    // The queues at the ends of its own connection.
    struct Mail {
        std::string text() const;

        std::deque<int> packets;
        std::deque<int> replies;
        int unanswered = 0;
    };

    using Call = CORBA::Long;
    void step(const Services& services);
    void change(const Registers::Values& values, const std::function<Call()>& call);

    void set_point(const Services& services);
    void create_or_remove_point(const Services& services);
    void describe_point(const Services& services);
    void create_set(const Services& services);
    void create_port(const Services& services);
    void connect_or_disconnect(const Services& services);
    void use_mail(const Services& services);
    void send_shared(const Services& services);
    void receive_shared(const Services& services);
    void raise_own(const Services& services);
    void raise_shared(const Services& services);
    void contend(const Services& services);

    void change_mail(const Mail& after, const std::function<Call()>& call);
    Registers::Values find(const Services& services) const;
    Mail drain_mail(const Services& services) const;

    int any(int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }
    std::string own(const std::string& what) const;
    CORBA::ULong handle(Kind kind) const;
    static Velmo::DATA_BUFFER data_of(int number) { return buffer(std::to_string(number)); }

    const int number;
    std::mt19937 random;
    int last = 0; // number that it has used for anything
    std::size_t answers = 0;
    Registers registers;
    Mail mail;
    int sets = 0;
    int ports = 0;
    QueueLog packets;
    CountLog raises;
    std::uint64_t epoch = 0;
    Violations odd;
};

} // namespace velmo::tests

#endif
