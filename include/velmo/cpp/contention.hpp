// Contention: which of several programs is master.
#ifndef VELMO_CPP_CONTENTION_HPP
#define VELMO_CPP_CONTENTION_HPP

#include "server.hpp"

namespace velmo {

/** The groups of contenders of a server and realm. What is promised, and why a master's
 * epoch travels with its work, tells vl_regist_contender(). */
class Contention : public detail::ServerUser {
public:
    explicit Contention(Server server = {}) noexcept : ServerUser(std::move(server)) {}

    /** Registers a contender, or renews its standing with a new priority and no data.
     * vl_regist_contender(). */
    Result<> enter(Name group, Name contender, int priority) const
    {
        return ::vl_regist_contender(group.c_str(), contender.c_str(), nullptr, 0, nullptr,
                                     priority, name(), realm());
    }

    /** The same, with data that others may want to know of it. vl_regist_contender().
     *
     * @param role  says what the data are
     */
    Result<> enter(Name group, Name contender, int priority, Name role, Bytes data) const
    {
        return ::vl_regist_contender(
            group.c_str(), contender.c_str(), data.data() ? data.data() : Bytes("").data(),
            data.length(), role.c_str(), priority, name(), realm());
    }

    /** Renews its standing; every third of the lease is a good time. CONTENDER_IS_NUL when
     * it does not stand any more: it is not master, and has to enter again.
     * vl_update_contender(). */
    Result<> renew(Name group, Name contender) const
    {
        return ::vl_update_contender(group.c_str(), contender.c_str(), nullptr, name(),
                                     realm());
    }

    /** Withdraws a contender; the next one is master at once. vl_out_contend(). */
    Result<> leave(Name group, Name contender) const
    {
        return ::vl_out_contend(group.c_str(), contender.c_str(), nullptr, name(), realm());
    }
};

} // namespace velmo

#endif
