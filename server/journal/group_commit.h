// Changes of many clients on their way to the disk, one write for all that have come
// while the last one lasted.
//
// A change is made in memory first, then appended here, under the lock that orders it;
// the client is answered when the change is on the disk. So the disk has them in the order
// of the locks, and what is based on a change never gets there before it. A client that
// finds nobody writing writes itself, which is soonest; a thread writes what has come
// meanwhile, what nobody waits for, and again what has failed.
//
// When a write fails, nobody is told that a change is safe which is not: whoever waits gets
// OBJECT_PATCH_FAI, and so does at once who would change more. What has been changed in
// memory by then is written again and again until the disk takes it. Then memory and disk
// agree, and changes are taken again.
#ifndef VELMO_SERVER_JOURNAL_GROUP_COMMIT_H
#define VELMO_SERVER_JOURNAL_GROUP_COMMIT_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "server/journal/storage.h"
#include "vl_result.h"

namespace velmo::journal {

struct Status {
    std::uint64_t changes = 0;            // on the disk since the start
    std::uint64_t groups = 0;             // writes for that
    std::chrono::microseconds writing{0}; // the time of these writes, together
    std::uint64_t failures = 0;           // writes that have failed
    std::string failing;                  // why the last one has; empty when all is well
};

// Any function from any thread.
class GroupCommit {
public:
    // retry: the time after which a failed write is tried again. The storage must outlive
    // this.
    explicit GroupCommit(Storage& storage,
                         std::chrono::milliseconds retry = std::chrono::milliseconds(500));

    // Writes what is left; on a failure it stays unwritten.
    ~GroupCommit();
    GroupCommit(const GroupCommit&) = delete;
    GroupCommit& operator=(const GroupCommit&) = delete;

    // As model::Journal.
    void append(RealmKey realm, model::Changes changes);
    void rely();
    void begin_together();
    void end_together();

    // Whether changes are taken at present: VL_OK or OBJECT_PATCH_FAI.
    vl_result admit() const { return failing ? OBJECT_PATCH_FAI : VL_OK; }

    // Writes what this thread has appended, or relies on, or waits until it is on the disk.
    //   OBJECT_PATCH_FAI  it is not; it may get there later on
    vl_result confirm();

    // What this thread has appended, or relies on, is nothing to wait for: another call's.
    static void forget();

    Status status() const;

private:
    using Lock = std::unique_lock<std::mutex>;
    using Result = std::shared_future<vl_result>;

    // What goes to the disk by one write.
    struct Group {
        Entries entries;
        std::size_t appended = 0;       // calls of append()
        std::promise<vl_result> answer; // to confirm(); every group gets one
        Result result{answer.get_future()};
    };

    void run();
    bool is_work_left() const; // for the thread
    void write_group(Lock& lock) noexcept;
    void gather(Lock& lock);
    void write(Lock& lock, Group& group);
    void succeeded(Group& group, std::size_t changes, std::chrono::microseconds time);
    void failed(Group& group, const std::string& reason);
    void take(Group& group);

    // Of the last append, or of the last one that this thread relies on; whatever
    // journal's.
    static thread_local Result awaited;

    Storage& storage;
    const std::chrono::milliseconds retry;

    mutable std::mutex mutex;
    std::condition_variable work;     // for the thread
    std::condition_variable complete; // for whoever writes: the group may be
    std::unique_ptr<Group> open = std::make_unique<Group>();
    Result last;              // of the last append
    std::size_t expected = 0; // appends in a group, as far as one can tell
    int together = 0;
    bool writing = false; // cleared by who has set it
    bool stopping = false;
    std::atomic<bool> failing{false};
    Status state;

    Entries unwritten;                       // of whoever writes
    std::chrono::microseconds usual_time{0}; // of a write, likewise
    std::thread thread;
};

// The journal of one realm.
class RealmJournal final : public model::Journal {
public:
    // The group commit must outlive this.
    RealmJournal(GroupCommit& all_realms, RealmKey its_key)
        : commit(all_realms), key(its_key)
    {
    }

    void append(model::Changes changes) override { commit.append(key, std::move(changes)); }
    void rely() override { commit.rely(); }
    void begin_together() override { commit.begin_together(); }
    void end_together() override { commit.end_together(); }

private:
    GroupCommit& commit;
    const RealmKey key;
};

} // namespace velmo::journal

#endif
