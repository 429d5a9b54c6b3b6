// The contenders of one realm: who of a group is master, and for how long.
//
// What is promised
//   - At any moment a group has at most one master in the eyes of this server: of the
//     contenders that stand, the one of the highest priority, and among equals the one
//     that registered first. A newcomer of a higher priority takes over at once.
//   - Standing is a lease. Registering and updating renew it for the length of the
//     lease, counted by the server's own steady clock from the moment at which it handles
//     the call. A contender that does not renew is out when its lease is over, and the
//     next one is master. No clocks are compared between machines.
//   - Each time a contender becomes master, also the same one again after it was out,
//     the group's epoch rises. Two masters never have the same epoch, and a later one
//     has the higher. That holds over restarts of the server too, as long as its wall
//     clock is not set back: see first_epoch_of_now().
//   - Without a journal, contenders are not kept over a restart: every contender gets
//     CONTENDER_IS_NUL at its next update, registers again, and whoever is master then
//     has a new epoch. With one they stand, each with a whole lease from the restart on,
//     and the master has a new epoch all the same: what anybody may have seen of elections
//     that nobody recorded is outdated by that.
//
// What is not promised
//   - That a master knows at once that it is one no more. A process that was suspended,
//     swapped out or cut off goes on for a while in the belief that it is master, when
//     another already is: no lease can prevent that, since the moment between looking at
//     it and acting on it can be of any length. Therefore the epoch has to travel with
//     the work: a master sends it along with everything that it does (a fencing token),
//     and whoever carries that out remembers the highest epoch that it has seen and
//     refuses a lower one. Then work of an old master is refused as soon as anything
//     of the new one has arrived.
//   - That there always is a master: not before the lease of one that died is over.
//   - Anything while the server is down, or across two servers.
//
// How a contender is safe
//   - It renews at a third of the lease or so, and counts its lease from before it sends
//     the call, not from when the answer comes.
//   - It takes its epoch from its own point contenders/NAME/token, which is there only
//     while it is master, and not from two points read one after the other
//     (contention_points.h).
//   - After CONTENDER_IS_NUL, or when it cannot renew in time, it stops to act as master.
//
// Any function from any thread; none blocks. That a lease is over is found out by
// whoever looks next, reading included: nobody can tell that from a timer.
#ifndef VELMO_SERVER_MODEL_CONTENTION_SERVICE_H
#define VELMO_SERVER_MODEL_CONTENTION_SERVICE_H

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/model/journal.h"
#include "vl_result.h"

namespace velmo::model {

struct ContentionLimits {
    std::chrono::milliseconds lease{10000};
    std::size_t max_groups = 10000;
    std::size_t max_contenders = 1000; // in one group
    std::size_t data_bytes = 1u << 20; // of one contender
};

using Epoch = std::uint64_t;

// Where a server that starts now begins with its epochs: microseconds since 1970. No
// group changes its master a million times a second, so that these are above all that
// an earlier run can have reached.
Epoch first_epoch_of_now();

struct ContenderStatus {
    std::string name;
    std::int32_t priority = 0;
    std::string role;
    Data data;
    std::chrono::milliseconds lease_left{0};
};

struct GroupStatus {
    Epoch epoch = 0;                         // of the master, or the last one there was
    std::vector<ContenderStatus> contenders; // the master first, then who would follow
};

// Results are the codes of vl_result.h, VL_OK being success. An operation that fails has
// changed nothing.
class ContentionService {
public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;

    // first: the epoch of each group's first master.
    explicit ContentionService(const ContentionLimits& limits = {}, Now now = Clock::now,
                               Epoch first = first_epoch_of_now());

    // Has every change but the renewal of leases appended to a journal, which must outlive
    // the service; first of all the epochs that there are. Before any other thread uses
    // the service.
    void keep_in(Journal& journal);

    // Makes what a journal kept the contents of a new service, all leases beginning now.
    //   MIDPLUSDATA_IS_BAD  bad names, a name twice, a contender of no group, no data
    vl_result restore(const ContentionImage& image);

    // All of it at one moment.
    ContentionImage image() const;

    // Registers a contender, or renews the lease of one that stands and gives it a new
    // priority, role and data; it keeps its place among equals. role says what the data
    // are, in the contenders' own words.
    //   INVAILD_NULL_PARAMETER  the group's or the contender's name is empty
    //   PARAMETER_ERROR         a name or the role is longer than max_name_bytes
    //   SIZE_IS_NOT_MATCH       data has more bytes than the limit
    //   MEMORY_ALLOCATION_FAI   there are as many contenders in the group, or groups
    //                           with contenders, as the server allows
    vl_result regist_contender(std::string_view group, std::string_view contender,
                               const Data& data, std::string_view role,
                               std::int32_t priority);

    // Renews the lease.
    //   CONTENDER_IS_NUL  it does not stand: it never registered, has left, or its lease
    //                     is over. It has to register again.
    //   INVAILD_NULL_PARAMETER, PARAMETER_ERROR  as regist_contender()
    vl_result update_contender(std::string_view group, std::string_view contender);

    // Leaves; the next one is master at once.
    //   CONTENDER_IS_NUL, INVAILD_NULL_PARAMETER, PARAMETER_ERROR  as update_contender()
    vl_result out_contend(std::string_view group, std::string_view contender);

    // A group at one moment; none when it never had a contender.
    std::optional<GroupStatus> status(std::string_view group) const;

    // The groups, in byte order, also those that nobody stands in at present.
    std::vector<std::string> groups() const;

    // Changes the length of leases that are taken or renewed from now on.
    void set_lease(std::chrono::milliseconds lease);

    // How many leases run at this moment, in all groups.
    std::size_t leases() const;

private:
    struct Contender {
        std::int32_t priority = 0;
        std::uint64_t arrival = 0;
        std::string role;
        Data data;
        Clock::time_point lease_end;
    };
    using Contenders = std::map<std::string, Contender, std::less<>>;

    struct Group {
        Epoch epoch = 0;
        std::optional<std::string> master;
        Contenders contenders;
    };
    using Groups = std::map<std::string, Group, std::less<>>;

    // Who of two would be master.
    static bool goes_before(const Contender& one, const Contender& other);
    void elect(Groups::value_type& group) const;

    // Takes out whose lease is over at this moment.
    void settle(Groups::value_type& group, Clock::time_point moment) const;
    void take_out(Groups::value_type& group, Contenders::iterator contender) const;

    // The lock, for whoever may change something, be it by looking: what was recorded
    // under it is appended when it ends.
    class Changing;

    struct Standing {
        Groups::value_type* group;
        Contenders::iterator contender;
        Clock::time_point moment; // of looking
    };
    vl_result find(std::string_view group, std::string_view contender, Standing& standing);

    Groups::value_type* open_group(std::string_view name);
    void forget_empty_groups();

    ContentionLimits limits; // of which the lease may change, under the lock
    const Now now;
    mutable std::mutex mutex;
    // Reading settles what time has changed.
    mutable Recorder recorder;
    mutable Groups all_groups;
    Epoch epoch_before_any; // no group that is not in all_groups had a higher one
    std::uint64_t arrivals = 0;
};

} // namespace velmo::model

#endif
