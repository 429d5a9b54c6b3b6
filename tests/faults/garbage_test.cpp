// Answers that are none.
#include <random>

#include "tests/faults/faulty_relay.h"
#include "tests/faults/servers.h"
#include "tests/support/intended_leak.h"

using namespace velmo::tests;
using namespace std::string_literals;

namespace {

struct Garbage {
    std::string name;
    FaultyRelay::Answer answer;
};

constexpr char reply = 1, locate_reply = 4, close_connection = 5, message_error = 6;

std::string number(std::uint32_t value)
{
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

// A message of the broker's protocol, version 1.MINOR, little-endian.
std::string message(char type, const std::string& body, std::uint32_t length,
                    char minor = 2)
{
    return "GIOP\1"s + minor + '\1' + type + number(length) + body;
}

std::string message(char type, const std::string& body)
{
    return message(type, body, static_cast<std::uint32_t>(body.size()));
}

// Where requests of version 1.2 have their number.
std::string request_number(const std::string& request)
{
    return request.substr(12, 4);
}

FaultyRelay::Answer always(std::string bytes)
{
    return [bytes](const std::string&) { return bytes; };
}

// A reply to the request with a status (3: asked to go elsewhere) and what follows.
FaultyRelay::Answer replying(std::uint32_t status, const std::string& rest)
{
    return [=](const std::string& request) {
        const std::string start = request_number(request) + number(status);
        return message(request[7] == 3 ? locate_reply : reply, start + number(0) + rest);
    };
}

std::string random_bytes(unsigned int round)
{
    std::mt19937 random(round);
    std::string bytes(64, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

// A reference to an object on that port of 127.0.0.1, as far as the type of it goes.
std::string reference(std::uint16_t port)
{
    const std::string profile = "\1\1\2\0"s + number(10) + "127.0.0.1\0"s +
                                std::string(reinterpret_cast<const char*>(&port), 2) +
                                number(4) + "nobo" + number(0);
    return number(1) + "\0\0\0\0"s + number(1) + number(0) +
           number(static_cast<std::uint32_t>(profile.size())) + profile;
}

const std::string long_string = number(0xFFFFFFF0) + "x";

// relay: the port of the one that gives it.
std::vector<Garbage> all_garbage(std::uint16_t relay)
{
    std::vector<Garbage> all{
        {"nothing, closed", always("")},
        {"text", always("HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n")},
        {"TLS alert", always("\x15\x03\x01\x00\x02\x02\x28"s)},
        {"zeros", always(std::string(64, '\0'))},
        {"half a header", always("GIOP\1\2")},
        {"a wrong version", always("GIOP\x09\x09\1\1"s + number(0))},
        {"an unknown type", always(message(99, ""))},
        {"4 GiB announced", always(message(reply, "", 0xFFFFFFFF))},
        {"100 MiB announced, none sent", always(message(reply, "", 100 << 20))},
        {"an empty reply", always(message(reply, ""))},
        {"a reply to another request", always(message(reply, std::string(12, '\x77')))},
        {"an unknown status", replying(77, "")},
        {"an exception without a name", replying(2, "")},
        {"an exception with a name of 4 GiB", replying(2, long_string)},
        {"an empty result", replying(0, "")},
        {"elsewhere is nowhere", replying(3, "")},
        {"elsewhere is here", replying(3, reference(relay))},
        {"elsewhere is dead", replying(3, reference(free_port()))},
        {"elsewhere, an endless name", replying(3, long_string)},
        {"an error", always(message(message_error, ""))},
        {"the end of the connection", always(message(close_connection, ""))},
        {"a request back", [](const std::string& request) { return request; }},
    };
    const unsigned int rounds = long_form() ? 2000 : 20;
    for (unsigned int round = 0; round < rounds; ++round) {
        const std::string bytes = random_bytes(round), name = std::to_string(round);
        all.push_back({"random bytes " + name, always(bytes)});
        // A message, as far as its header goes.
        all.push_back({"random reply " + name, [bytes](const std::string& request) {
                           return message(reply, request_number(request) + bytes);
                       }});
    }
    return all;
}

class GarbageForAnAnswer : public ::testing::Test {
protected:
    Velmod velmod{over_tcp};
    FaultyRelay relay{velmod.port()};
    FaultSettings settings{naming_url(relay.port())};
};

TEST_F(GarbageForAnAnswer, ToACallIsAFailedCall)
{
    const std::vector<Garbage> all = all_garbage(relay.port());
    Fault fault("garbage for an answer to a call, " + std::to_string(all.size()) + " kinds",
                call_timeout);
    ASSERT_TRUE(port_is_there());
    for (const Garbage& garbage : all) {
        SCOPED_TRACE(garbage.name);
        const IntendedLeak of_brokers; // omniORB's, of references with nothing behind
        relay.answer_with(garbage.answer);
        const int code = fault.call([] { return create_port("p", 7); });
        EXPECT_EQ(code, 112);
        relay.pass();
        fault.recovers(make_port);
    }
}

TEST_F(GarbageForAnAnswer, ToALookUpIsNoAnswer)
{
    const std::vector<Garbage> all = all_garbage(relay.port());
    Fault fault("garbage for an answer of the naming service, " +
                    std::to_string(all.size()) + " kinds",
                naming_timeout);
    for (const Garbage& garbage : all) {
        SCOPED_TRACE(garbage.name);
        const IntendedLeak of_brokers; // omniORB's, of references with nothing behind
        relay.answer_with(garbage.answer);
        EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
        relay.pass();
        fault.recovers(make_port);
        relay.cut_answers_after(0);
        EXPECT_EQ(make_port(), 112) << "what follows has to look it up";
    }
}

} // namespace
