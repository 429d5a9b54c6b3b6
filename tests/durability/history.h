// What clients know of a server's state, and whether that is what they find after it was
// killed: nothing acknowledged is missing, nothing is there twice, order is kept. A call
// that had no answer may have happened or not.
#ifndef VELMO_TESTS_DURABILITY_HISTORY_H
#define VELMO_TESTS_DURABILITY_HISTORY_H

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace velmo::tests {

using Violations = std::vector<std::string>;

// Things that one client alone changes, one call at a time. What they are, or that they
// are not there, is a text.
class Registers {
public:
    using Values = std::map<std::string, std::string>;

    // A call is made that is to leave these values, all or none; and it has had success.
    void begin(Values values) { in_flight = std::move(values); }
    void done();

    // What a thing is as far as the client knows; `absent` when it never was.
    std::string known(const std::string& name) const;
    const Values& all() const { return acknowledged; }

    // Compares with what there is, of all things there were; that is then what is known.
    void check(const Values& found, Violations& violations);

    static constexpr const char* absent = "(absent)";

private:
    Values acknowledged;
    Values in_flight;
};

// A packet: who has sent it, and as its how-manieth.
struct Sent {
    int sender;
    int number;

    bool operator<(const Sent& other) const
    {
        return sender != other.sender ? sender < other.sender : number < other.number;
    }
};
std::string text_of(const Sent& packet);

// A queue that many clients send to and receive from; what each of them knows.
struct QueueLog {
    std::set<Sent> sent;              // acknowledged
    std::set<Sent> perhaps_sent;      // without an answer
    std::vector<Sent> received;       // in this client's order
    std::size_t perhaps_received = 0; // calls without an answer
};

// found: what is in the queue when nobody uses it any more, oldest first. Packets of
// a sender have rising numbers, are sent in that order and received from the front.
void check_queue(const std::vector<const QueueLog*>& clients,
                 const std::vector<Sent>& found, Violations& violations);

// Something that many clients count up.
struct CountLog {
    std::uint64_t counted = 0; // acknowledged
    std::uint64_t perhaps = 0; // without an answer
};
void check_count(const std::vector<const CountLog*>& clients, std::uint64_t found,
                 Violations& violations);

} // namespace velmo::tests

#endif
