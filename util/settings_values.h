// The values that settings consist of, and what holds where nothing is set.
#ifndef VELMO_UTIL_SETTINGS_VALUES_H
#define VELMO_UTIL_SETTINGS_VALUES_H

#include <array>
#include <chrono>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velmo::settings {

using Milliseconds = std::chrono::milliseconds;

namespace defaults {
constexpr Milliseconds call_timeout{30000};
constexpr Milliseconds naming_timeout{2000};
constexpr Milliseconds connect_timeout{2000};
constexpr unsigned int port = 2809;
// The server that there is without a settings file.
constexpr const char* server = "0000";
constexpr const char* host = "127.0.0.1";
} // namespace defaults

constexpr std::size_t max_name_bytes = 32;
constexpr std::size_t max_file_bytes = 4u << 20;
constexpr Milliseconds max_timeout{2147483647}; // what fits 32 bits, signed

// All positions, in the order in which a server lists its own.
constexpr std::array<std::string_view, 7> position_words{
    "parent", "own", "sibling", "child", "others", "master", "slave"};

// A value and, for people, where it came from: "line 7", "default",
// "environment variable VELMO_CALL_TIMEOUT_MS".
template <class T>
struct Sourced {
    T value{};
    std::string origin;
};

struct Server {
    std::string name;
    std::string parent; // the enclosing server's name, "" at the top
    std::string role;   // "master", "slave" or ""
    std::string host;   // "" where the file gives a naming URL
    int line = 0;       // 0 for the built-in server
    Sourced<std::string> naming_url;
    Sourced<Milliseconds> call_timeout; // 0: none, as for every time-out
    Sourced<Milliseconds> naming_timeout;
    std::vector<std::string> positions; // some of position_words, in their order
};

// The time-outs that one place sets: the environment, or an element of the file.
struct Timeouts {
    std::optional<Sourced<Milliseconds>> call, naming, connect;
};

// A time-out as the first place gives it that does.
Sourced<Milliseconds>
first_set(std::initializer_list<std::optional<Sourced<Milliseconds>>> places,
          Milliseconds otherwise);

// A whole number of milliseconds, 0 to max_timeout; nothing for any other text.
std::optional<Milliseconds> to_timeout(std::string_view text);

// The URL of the naming service that answers on a host (name or address) and port.
std::string naming_url(const std::string& host, unsigned int port);

// What is wrong with the settings, and on which line.
struct Fault : std::runtime_error {
    Fault(int at_line, const std::string& reason)
        : std::runtime_error(reason), line(at_line)
    {
    }
    int line;
};

// Nothing is wrong with them, but they could not be read for now.
struct Shortage : Fault {
    using Fault::Fault;
};

// Text from outside, quoted for a reason: without control characters, and cut.
std::string quoted(std::string_view text);

} // namespace velmo::settings

#endif
