#include "tests/durability/history.h"

#include <algorithm>

namespace velmo::tests {

namespace {

std::string value_in(const Registers::Values& values, const std::string& name)
{
    const auto found = values.find(name);
    return found == values.end() ? Registers::absent : found->second;
}

} // namespace

// ------------------------------------------------------------- registers

void Registers::done()
{
    for (auto& [name, value] : in_flight)
        acknowledged[name] = value;
    in_flight.clear();
}

std::string Registers::known(const std::string& name) const
{
    return value_in(acknowledged, name);
}

void Registers::check(const Values& found, Violations& violations)
{
    std::size_t old_ones = 0;
    std::size_t new_ones = 0;
    for (const auto& [name, value] : in_flight) {
        acknowledged.try_emplace(name, absent);
        if (known(name) == value)
            continue; // tells nothing
        (value_in(found, name) == value ? new_ones : old_ones) += 1;
    }
    if (old_ones > 0 && new_ones > 0)
        violations.push_back("a call has happened in part: " + in_flight.begin()->first);
    for (auto& [name, value] : acknowledged) {
        const std::string there = value_in(found, name);
        const auto perhaps = in_flight.find(name);
        if (there != value && (perhaps == in_flight.end() || there != perhaps->second))
            violations.push_back(
                name + " is " + there + ", not " + value +
                (perhaps == in_flight.end() ? "" : ", or perhaps " + perhaps->second));
        value = there;
    }
    for (const auto& [name, value] : found)
        if (acknowledged.count(name) == 0)
            violations.push_back(name + " is " + value + ", of which nobody knows");
    in_flight.clear();
}

// ---------------------------------------------------------------- queues

std::string text_of(const Sent& packet)
{
    return std::to_string(packet.sender) + ":" + std::to_string(packet.number);
}

void check_queue(const std::vector<const QueueLog*>& clients,
                 const std::vector<Sent>& found, Violations& violations)
{
    std::set<Sent> sent;
    std::set<Sent> known;
    std::map<int, int> last_received; // of each sender
    std::set<Sent> there;
    std::size_t may_be_missing = 0;
    for (const QueueLog* client : clients) {
        sent.insert(client->sent.begin(), client->sent.end());
        known.insert(client->perhaps_sent.begin(), client->perhaps_sent.end());
        may_be_missing += client->perhaps_received;
    }
    known.insert(sent.begin(), sent.end());

    const auto see = [&](const Sent& packet, const char* what) {
        if (known.count(packet) == 0)
            violations.push_back("packet " + text_of(packet) + " was never sent, but " +
                                 what);
        if (!there.insert(packet).second)
            violations.push_back("packet " + text_of(packet) + " is there twice: " + what);
    };
    // Of each sender: the last number so far.
    const auto follow = [&](std::map<int, int>& last, const Sent& packet,
                            const char* what) {
        int& before = last.try_emplace(packet.sender, -1).first->second;
        if (packet.number <= before)
            violations.push_back("packet " + text_of(packet) + what +
                                 std::to_string(before));
        before = packet.number;
    };
    for (const QueueLog* client : clients) {
        std::map<int, int> last; // that this client has received
        for (const Sent& packet : client->received) {
            see(packet, "received");
            follow(last, packet, " was received after ");
            int& highest = last_received.try_emplace(packet.sender, -1).first->second;
            highest = std::max(highest, packet.number);
        }
    }
    for (const Sent& packet : found) {
        see(packet, "queued");
        follow(last_received, packet, " is queued behind ");
    }

    std::vector<Sent> missing;
    std::set_difference(sent.begin(), sent.end(), there.begin(), there.end(),
                        std::back_inserter(missing));
    if (missing.size() > may_be_missing)
        violations.push_back(std::to_string(missing.size()) +
                             " acknowledged packets are missing, such as " +
                             text_of(missing.back()) + "; at most " +
                             std::to_string(may_be_missing) + " can have been received");
}

// ---------------------------------------------------------------- counts

void check_count(const std::vector<const CountLog*>& clients, std::uint64_t found,
                 Violations& violations)
{
    std::uint64_t least = 0;
    std::uint64_t most = 0;
    for (const CountLog* client : clients) {
        least += client->counted;
        most += client->counted + client->perhaps;
    }
    if (found < least || found > most)
        violations.push_back("the count is " + std::to_string(found) + ", not " +
                             std::to_string(least) + " to " + std::to_string(most));
}

} // namespace velmo::tests
