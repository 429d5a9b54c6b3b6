#include "util/settings_positions.h"

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <netinet/in.h>
#include <optional>
#include <set>
#include <strings.h>
#include <unistd.h>

namespace velmo::settings {
namespace {

// An address of either family; IPv4 in the form in which IPv6 contains it.
using Address = std::array<unsigned char, sizeof(in6_addr)>;

Address from_ipv4(const in_addr& ipv4)
{
    Address result{};
    result[10] = result[11] = 0xff;
    std::memcpy(&result[12], &ipv4, sizeof ipv4);
    return result;
}

Address from_ipv6(const in6_addr& ipv6)
{
    Address result;
    std::memcpy(result.data(), &ipv6, result.size());
    return result;
}

std::optional<Address> to_address(const std::string& text)
{
    in_addr ipv4;
    in6_addr ipv6;
    if (inet_pton(AF_INET, text.c_str(), &ipv4) == 1)
        return from_ipv4(ipv4);
    if (inet_pton(AF_INET6, text.c_str(), &ipv6) == 1)
        return from_ipv6(ipv6);
    return std::nullopt;
}

bool is_loopback(const Address& address)
{
    static const Address any_ipv4 = from_ipv4({});
    const bool ipv4 = std::memcmp(address.data(), any_ipv4.data(), 12) == 0;
    return ipv4 ? address[12] == 127 : address == from_ipv6(in6addr_loopback);
}

std::optional<Address> address_of(const sockaddr* socket_address)
{
    if (!socket_address)
        return std::nullopt;
    if (socket_address->sa_family == AF_INET) {
        sockaddr_in ipv4;
        std::memcpy(&ipv4, socket_address, sizeof ipv4);
        return from_ipv4(ipv4.sin_addr);
    }
    if (socket_address->sa_family == AF_INET6) {
        sockaddr_in6 ipv6;
        std::memcpy(&ipv6, socket_address, sizeof ipv6);
        return from_ipv6(ipv6.sin6_addr);
    }
    return std::nullopt;
}

bool equal_ignoring_case(const std::string& a, const std::string& b)
{
    return strcasecmp(a.c_str(), b.c_str()) == 0;
}

// Host names compare equal with their domains, or where one of them has none
// without.
bool same_host(const std::string& a, const std::string& b)
{
    const std::string short_a = a.substr(0, a.find('.'));
    const std::string short_b = b.substr(0, b.find('.'));
    const bool both_full = short_a.size() < a.size() && short_b.size() < b.size();
    return both_full ? equal_ignoring_case(a, b) : equal_ignoring_case(short_a, short_b);
}

class ThisMachine {
public:
    ThisMachine()
    {
        char buffer[256] = "";
        if (gethostname(buffer, sizeof buffer - 1) == 0)
            name = buffer;

        ifaddrs* first = nullptr;
        if (getifaddrs(&first) != 0)
            return;
        const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> interfaces(first, freeifaddrs);
        for (const ifaddrs* i = first; i; i = i->ifa_next) {
            if (const auto address = address_of(i->ifa_addr))
                addresses.insert(*address);
        }
    }

    bool is(const std::string& host) const
    {
        if (host.empty())
            return false;
        if (const auto address = to_address(host))
            return is_loopback(*address) || addresses.count(*address) != 0;
        return equal_ignoring_case(host, "localhost") || same_host(host, name);
    }

private:
    std::string name;
    std::set<Address> addresses;
};

std::set<std::string> own_names(const std::vector<Server>& servers,
                                const std::string& local)
{
    if (!local.empty())
        return {local};
    const ThisMachine machine;
    std::set<std::string> names;
    for (const Server& server : servers) {
        if (machine.is(server.host))
            names.insert(server.name);
    }
    return names;
}

} // namespace

void assign_positions(std::vector<Server>& servers, const std::string& local)
{
    const std::set<std::string> own = own_names(servers, local);
    std::set<std::string> parents_of_own; // "" where an own one stands at the top
    for (const Server& server : servers) {
        if (own.count(server.name) != 0)
            parents_of_own.insert(server.parent);
    }
    const auto position = [&](const Server& server) {
        if (own.count(server.name) != 0)
            return "own";
        if (parents_of_own.count(server.name) != 0)
            return "parent";
        if (own.count(server.parent) != 0)
            return "child";
        return parents_of_own.count(server.parent) != 0 ? "sibling" : "others";
    };
    for (Server& server : servers) {
        server.positions = {position(server)};
        if (!server.role.empty())
            server.positions.push_back(server.role);
    }
}

} // namespace velmo::settings
