#include "cli/ports.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>

#include "cli/system_points.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned int longest_piece_ms = 200;

// So short that a wait never looks like a server that does not answer.
unsigned int piece_ms(const Session& session)
{
    return session.timeout_ms == 0
               ? longest_piece_ms
               : std::clamp(session.timeout_ms / 4, 1u, longest_piece_ms);
}

} // namespace

unsigned int port_handle(const Session& session, const std::string& word)
{
    if (!word.empty() && word.front() >= '0' && word.front() <= '9') {
        char* end = nullptr;
        const unsigned long long number = std::strtoull(word.c_str(), &end, 0);
        if (*end == '\0' && number <= UINT32_MAX)
            return static_cast<unsigned int>(number);
    }
    const auto handle =
        static_cast<unsigned int>(system_number(session, port_point(word, "handle")));
    if (handle == 0)
        session.check(INVAILD_PORT_HANDLE, "find port " + in_quotes(word));
    return handle;
}

unsigned int usual_handle(const std::string& name)
{
    std::uint32_t hash = 2166136261u; // FNV-1a
    for (const char c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return std::max<std::uint32_t>(hash, 1);
}

std::string port_point(const std::string& port, const std::string& property)
{
    return port_points + port + "/" + property;
}

void Waiting::declare(CLI::App& app, const std::string& what, unsigned int default_ms)
{
    milliseconds = default_ms;
    app.add_option("--wait", milliseconds, "Milliseconds to wait for " + what)
        ->capture_default_str()
        ->check(CLI::Range(0u, 86400000u).description(""))
        ->type_name("MS");
}

int Waiting::run(const Session& session, const Interruption& interruption, int time_out,
                 const std::function<int(unsigned int option)>& call) const
{
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    const unsigned int piece = piece_ms(session);
    int code = call(std::min(milliseconds, piece));
    while (code == time_out) {
        interruption.wait(std::chrono::milliseconds(0));
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0)
            break;
        code = call(static_cast<unsigned int>(std::min<long long>(left, piece)));
    }
    return code;
}

int Waiting::forever(const Session& session, const Interruption& interruption, int time_out,
                     const std::function<int(unsigned int option)>& call)
{
    for (;;) {
        const int code = call(piece_ms(session));
        if (code != time_out)
            return code;
        interruption.wait(std::chrono::milliseconds(0));
    }
}

} // namespace velmo::cli
