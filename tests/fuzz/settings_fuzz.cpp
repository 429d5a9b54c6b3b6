// The settings file: any text is either refused, for a reason and with its line, or gives
// servers that are complete.

#include <algorithm>
#include <set>

#include "tests/fuzz/require.h"
#include "util/settings_file.h"
#include "util/settings_positions.h"

using namespace velmo::settings;
using velmo::tests::require;

namespace {

void check_timeout(const Sourced<Milliseconds>& timeout)
{
    require(timeout.value.count() >= 0 && timeout.value <= max_timeout &&
                !timeout.origin.empty(),
            "a time-out is in its range, and from somewhere");
}

void check(const File& file, int lines)
{
    check_timeout(file.connect_timeout);
    require(file.local.empty() || lists(file, file.local), "the local server is listed");
    std::set<std::string> names;
    for (const Server& server : file.servers) {
        require(!server.name.empty() && server.name.size() <= max_name_bytes,
                "a name is not empty, nor too long");
        require(server.parent.empty() || names.count(server.parent) == 1,
                "the enclosing server comes before");
        require(names.insert(server.name).second, "a name is there once");
        require(server.line >= 1 && server.line <= lines, "a server is on a line");
        require(!server.naming_url.value.empty(), "a server has a naming service");
        check_timeout(server.call_timeout);
        check_timeout(server.naming_timeout);
    }
}

void check_positions(std::vector<Server> servers, const std::string& local)
{
    assign_positions(servers, local);
    for (const Server& server : servers) {
        const auto has = [&](std::string_view position) {
            const auto& positions = server.positions;
            return std::find(positions.begin(), positions.end(), position) !=
                   positions.end();
        };
        require(server.role.empty() || has(server.role), "a role is a position too");
        require(server.positions.size() == (server.role.empty() ? 1u : 2u),
                "and there is exactly one beside it");
        require(local.empty() || has("own") == (server.name == local),
                "the local server alone is an own one");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    const int lines = 1 + static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    try {
        const File file = parse_file(text, {});
        check(file, lines);
        check_positions(file.servers, file.local);
        if (!file.servers.empty())
            check_positions(file.servers, file.servers.back().name);
    } catch (const Fault& fault) {
        const std::string reason = fault.what();
        require(fault.line >= 1 && fault.line <= lines, "a fault is on a line");
        require(
            !reason.empty() &&
                std::all_of(reason.begin(), reason.end(),
                            [](char c) { return static_cast<unsigned char>(c) >= 0x20; }),
            "a reason is printable");
    }
    return 0;
}
