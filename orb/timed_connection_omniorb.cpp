#include "orb/timed_connection_omniorb.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <memory>
#include <new>

#include <omniORB4/CORBA.h>

// Written to be included after the broker's other headers, and in this order.
#include <omniORB4/internal/giopStrand.h>
#include <omniORB4/internal/giopStream.h>
#include <omniORB4/internal/giopRope.h>
#include <omniORB4/internal/GIOP_C.h>
#include <omniORB4/omniInterceptors.h>
#include <omniORB4/tcpConnection.h>
#include <omniORB4/unixConnection.h>

namespace velmo::orb {

namespace {

using Microseconds = std::chrono::microseconds;

Microseconds microseconds(const omni_time_t& time)
{
    const std::chrono::seconds whole(time.s);
    const std::chrono::nanoseconds part(time.ns);
    return whole + std::chrono::duration_cast<Microseconds>(part);
}

// Zero or less when the deadline has passed.
Microseconds left_until(const omni_time_t& deadline)
{
    omni_time_t now;
    omni_thread::get_time(now);
    return microseconds(deadline) - microseconds(now);
}

// What an answer of Send() and Recv() can tell of.
std::size_t transferable(std::size_t size)
{
    return std::min<std::size_t>(size, INT_MAX);
}

// Stands before a connection of the broker's for all it does but waiting. With a
// deadline, the broker's own polls ahead of every transfer, which a small call pays for
// with an eighth of its time; here the socket itself gives up receiving, and sending
// waits only where the socket is full. What Send() and Recv() answer is fixed by the
// broker: the bytes transferred, 0 when the deadline has passed, -1 when it failed.
class TimedConnection final : public omni::giopConnection {
public:
    // A connection at its beginning, whose only holder this becomes.
    template <class SocketConnection>
    explicit TimedConnection(SocketConnection& connection)
        : actual(connection), socket(connection.handle())
    {
        connection.setBlocking();
    }
    // With the broker's lock or, where there is no other thread left, without.
    ~TimedConnection() override { actual.decrRefCount(true); }

    int Send(void* data, std::size_t size, const omni_time_t& deadline) override
    {
        while (!shut_down) {
            const Microseconds left = deadline ? left_until(deadline) : Microseconds::max();
            if (left <= Microseconds::zero())
                return 0;
            const auto sent = send(socket, data, transferable(size),
                                   MSG_NOSIGNAL | (deadline ? MSG_DONTWAIT : 0));
            if (sent > 0)
                return static_cast<int>(sent);
            if (sent == 0 || (errno != EINTR && errno != EAGAIN))
                return -1;
            if (errno == EAGAIN && deadline && !wait_for_room(left))
                return 0;
        }
        return -1;
    }

    int Recv(void* data, std::size_t size, const omni_time_t& deadline) override
    {
        Microseconds left = deadline ? left_until(deadline) : Microseconds::max();
        while (!shut_down) {
            if (left <= Microseconds::zero())
                return 0;
            if (deadline && !limit_receiving(left))
                return -1;
            const auto received = recv(socket, data, transferable(size), 0);
            if (received > 0)
                return static_cast<int>(received);
            const int reason = errno;
            if (received == 0 || (reason != EINTR && reason != EAGAIN))
                return -1;
            if (deadline) // setting the clock back does not prolong the wait
                left = std::min(left_until(deadline),
                                reason == EAGAIN ? left - receive_limit : left);
        }
        return -1;
    }

    void Shutdown() override
    {
        shut_down = true;
        actual.Shutdown();
    }

    const char* myaddress() override { return actual.myaddress(); }
    const char* peeraddress() override { return actual.peeraddress(); }
    const char* peeridentity() override { return actual.peeridentity(); }
    void* peerdetails() override { return actual.peerdetails(); }
    void setSelectable(int now, CORBA::Boolean data_in_buffer) override
    {
        actual.setSelectable(now, data_in_buffer);
    }
    void clearSelectable() override { actual.clearSelectable(); }
    CORBA::Boolean isSelectable() override { return actual.isSelectable(); }
    CORBA::Boolean Peek() override { return actual.Peek(); }

private:
    // False when there is none after that time; an error shows at the next transfer.
    bool wait_for_room(Microseconds left) const
    {
        const auto limit = std::chrono::ceil<std::chrono::milliseconds>(left).count();
        pollfd state{socket, POLLOUT, 0};
        return poll(&state, 1, static_cast<int>(std::min<long>(limit, INT_MAX))) != 0;
    }

    // The system ends a long wait up to an eighth too late, so a part of what is left is
    // waited for, and then of the rest. Calls with like time-outs find the limit set.
    bool limit_receiving(Microseconds left)
    {
        constexpr Microseconds short_wait{20000}; // ended precisely enough
        if (left / 2 < receive_limit && receive_limit <= left - left / 8)
            return true;
        const Microseconds limit = left > short_wait ? left - left / 4 : left;
        const auto seconds = std::chrono::floor<std::chrono::seconds>(limit);
        timeval value{};
        value.tv_sec = seconds.count();
        value.tv_usec = Microseconds(limit - seconds).count();
        if (setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &value, sizeof value) != 0)
            return false;
        receive_limit = limit;
        return true;
    }

    omni::giopConnection& actual;
    const int socket;
    std::atomic<bool> shut_down{false};
    Microseconds receive_limit{0}; // as set on the socket; 0: none yet. One thread receives
};

// Tells whether the connection was of the kind.
template <class SocketConnection>
bool replace(omni::giopConnection*& connection)
{
    auto* const actual = dynamic_cast<SocketConnection*>(connection);
    if (actual) // the broker counts its holders, and deletes it
        connection = std::make_unique<TimedConnection>(*actual).release();
    return actual;
}

CORBA::Boolean replace_opened(omni::omniInterceptors::clientOpenConnection_T::info_T& call)
{
    omni::giopStrand& strand = call.giop_c.strand();
    try {
        // One that carries calls both ways is known to the broker's server as well.
        if (!strand.isBiDir() && !replace<omni::tcpConnection>(strand.connection))
            replace<omni::unixConnection>(strand.connection);
    } catch (const std::bad_alloc&) {
        // It works as it is.
    }
    return true; // whoever else asked is told as well
}

} // namespace

void time_connections()
{
    omniORB::getInterceptors()->clientOpenConnection.add(replace_opened);
}

} // namespace velmo::orb
