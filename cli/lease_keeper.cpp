#include "cli/lease_keeper.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

#include "cli/points.h"

namespace velmo::cli {

namespace {

int open_event()
{
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    return descriptor;
}

} // namespace

LeaseKeeper::LeaseKeeper(const Session& its_session, const Contender& its_contender,
                         std::chrono::milliseconds its_interval)
    : session(its_session), contender(its_contender), interval(its_interval),
      looked(open_event())
{
    session.check(regist(), "register contender " + in_quotes(contender.name) +
                                " of group " + in_quotes(contender.group));
    renewal = Clock::now(); // at once: that tells the lease
    thread = std::thread([this] { keep(); });
}

LeaseKeeper::~LeaseKeeper()
{
    {
        const std::lock_guard lock(mutex);
        stopped = true;
    }
    stopping.notify_all();
    thread.join();
    if (now.code == VL_OK)
        vl_out_contend(contender.group.c_str(), contender.name.c_str(), nullptr,
                       session.server(), session.realm());
    close(looked);
}

Standing LeaseKeeper::standing() const
{
    const std::lock_guard lock(mutex);
    return published;
}

void LeaseKeeper::seen() const
{
    eventfd_t count;
    eventfd_read(looked, &count);
}

void LeaseKeeper::keep()
{
    std::unique_lock lock(mutex);
    while (!stopped) {
        lock.unlock();
        now.code = Clock::now() < renewal ? VL_OK : renew();
        if (now.code == VL_OK)
            now.code = look();
        publish();
        lock.lock();
        stopping.wait_until(lock, std::min(Clock::now() + interval, renewal),
                            [this] { return stopped; });
    }
}

// The lease that is left is what the server counts from when it handled the call: less than
// what there is from before the call on.
int LeaseKeeper::renew()
{
    const auto before = Clock::now();
    renewal = before + interval; // if this fails
    int code = registered
                   ? vl_update_contender(contender.group.c_str(), contender.name.c_str(),
                                         nullptr, session.server(), session.realm())
                   : CONTENDER_IS_NUL;
    if (code == CONTENDER_IS_NUL) {
        now.epoch.reset();
        code = regist();
        registered = code == VL_OK;
    }
    if (code != VL_OK)
        return code;
    std::optional<std::string> left;
    code = read("lease", left);
    if (code == VL_OK && left) {
        now.lease = std::chrono::milliseconds(std::strtoll(left->c_str(), nullptr, 10));
        now.lease_end = before + now.lease;
        renewal = before + now.lease / 3;
    }
    return code;
}

int LeaseKeeper::look()
{
    std::optional<std::string> token;
    const int code = read("token", token);
    if (code == VL_OK) {
        now.epoch.reset();
        if (token)
            now.epoch = std::strtoull(token->c_str(), nullptr, 10);
    }
    return code;
}

int LeaseKeeper::read(const char* property, std::optional<std::string>& value) const
{
    Point point;
    const int code = read_point(
        session, contender_point(contender.group, contender.name, property), point);
    if (code == VL_OK)
        value = point.value;
    return code == VARIABLE_IS_NOT_EXIST ? VL_OK : code;
}

int LeaseKeeper::regist() const
{
    return vl_regist_contender(contender.group.c_str(), contender.name.c_str(), nullptr, 0,
                               nullptr, contender.priority, session.server(),
                               session.realm());
}

void LeaseKeeper::publish()
{
    {
        const std::lock_guard lock(mutex);
        published = now;
    }
    eventfd_write(looked, 1);
}

} // namespace velmo::cli
