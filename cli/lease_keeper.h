// One contender, kept standing.
#ifndef VELMO_CLI_LEASE_KEEPER_H
#define VELMO_CLI_LEASE_KEEPER_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "cli/contenders.h"

namespace velmo::cli {

struct Contender {
    std::string group;
    std::string name;
    int priority = 0;
};

// How it stands, as far as is known.
struct Standing {
    using Clock = std::chrono::steady_clock;

    std::optional<Epoch> epoch;         // while it is master
    Clock::time_point lease_end;        // counted from before the lease was asked for
    std::chrono::milliseconds lease{0}; // its length
    int code = VL_OK;                   // of the last call

    bool is_master(Clock::time_point moment) const { return epoch && moment < lease_end; }
};

// Registers a contender, renews its standing at a third of the lease, and looks who is
// master, in a thread of its own: a server that does not answer holds up nobody else.
class LeaseKeeper {
public:
    // interval: between two looks. Throws Failure when the first registration fails.
    LeaseKeeper(const Session& session, const Contender& contender,
                std::chrono::milliseconds interval);

    // Withdraws the contender, unless the server did not answer last.
    ~LeaseKeeper();
    LeaseKeeper(const LeaseKeeper&) = delete;
    LeaseKeeper& operator=(const LeaseKeeper&) = delete;

    Standing standing() const;

    // Readable after each look, for poll(); seen() makes it wait for the next one.
    int descriptor() const { return looked; }
    void seen() const;

private:
    using Clock = Standing::Clock;

    void keep();
    int renew();
    int look();
    int regist() const;
    int read(const char* property, std::optional<std::string>& value) const;
    void publish();

    const Session& session;
    const Contender contender;
    const std::chrono::milliseconds interval;

    // The thread's own.
    Standing now;
    bool registered = true;
    Clock::time_point renewal;

    mutable std::mutex mutex;
    std::condition_variable stopping;
    bool stopped = false;
    Standing published;
    const int looked; // an eventfd

    std::thread thread;
};

} // namespace velmo::cli

#endif
