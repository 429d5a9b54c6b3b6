// Which server and realm is meant, and what can be asked about servers.
#ifndef VELMO_CPP_SERVER_HPP
#define VELMO_CPP_SERVER_HPP

#include <string>
#include <utility>

#include "../vl_api.h"
#include "memory.hpp"
#include "result.hpp"
#include "views.hpp"

namespace velmo {

/** A server and a realm of it, by their names. Holds no connection.
 *
 *     velmo::Points here;                   // the default server, its unnamed realm
 *     velmo::Points there({"line 2"});      // a server of the settings
 *     velmo::Points test({"line 2", "test"});
 */
class Server {
public:
    /** An empty name means the default server, an empty realm the unnamed one. */
    Server(std::string name = {}, std::string realm = {}) noexcept
        : name_(std::move(name)), realm_(std::move(realm))
    {
    }

    /** As the C functions take them: NULL for an empty one. */
    const char* name() const noexcept { return name_.empty() ? nullptr : name_.c_str(); }
    const char* realm() const noexcept { return realm_.empty() ? nullptr : realm_.c_str(); }

    /** Whether its naming service can be reached; vl_mid_connect(). No other call needs it.
     */
    Result<> connect() const { return ::vl_mid_connect(name()); }

    /** The same; vl_mid_is_connect(). */
    Result<> is_connected() const { return ::vl_mid_is_connect(name()); }

    /** The names of its realms; vl_releam_seq(). */
    Result<Names> realms() const
    {
        return detail::names_from(
            [&](NameList* list) { return ::vl_releam_seq(list, name()); });
    }

private:
    std::string name_;
    std::string realm_;
};

/** Marks the end of the use of the middleware; closes nothing. vl_mid_disconnect(). */
inline Result<> disconnect()
{
    return ::vl_mid_disconnect();
}

/** The names of servers, at most 20. They belong to the library, and stay valid until the
 * settings are read again or the process ends. */
class ServerNames {
public:
    explicit ServerNames(const ServerRecord& record) noexcept : record_(record) {}

    std::size_t size() const noexcept { return static_cast<std::size_t>(record_.count); }
    bool empty() const noexcept { return size() == 0; }
    const char* const* begin() const noexcept { return record_.names; }
    const char* const* end() const noexcept { return begin() + size(); }
    const char* operator[](std::size_t index) const noexcept { return begin()[index]; }

private:
    ServerRecord record_;
};

/** The servers at a position of the settings: "own", "parent", "sibling", "child",
 * "others", "master", "slave"; none for another word. Contacts nobody. vl_get_servername().
 */
inline ServerNames servers_at(Name position)
{
    return ServerNames(::vl_get_servername(position.c_str()));
}

namespace detail {

// What the classes below have in common.
class ServerUser {
public:
    const Server& server() const noexcept { return server_; }

protected:
    explicit ServerUser(Server server) noexcept : server_(std::move(server)) {}

    const char* name() const noexcept { return server_.name(); }
    const char* realm() const noexcept { return server_.realm(); }

private:
    Server server_;
};

} // namespace detail

} // namespace velmo

#endif
