#include "server/journal/group_commit.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "server/log.h"

namespace velmo::journal {

namespace {

using Clock = std::chrono::steady_clock;

// Clients that have just been answered mostly come again at once: a write waits for them
// for this part of the time that it takes itself, and so serves them all. A quick write
// does not: while it serves those that have come during the last one, the others come.
constexpr int part_to_gather = 4;
constexpr std::chrono::microseconds shortest_gathering{100};
constexpr std::chrono::microseconds longest_gathering{1000};

std::chrono::microseconds time_since(Clock::time_point begin)
{
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
}

} // namespace

thread_local GroupCommit::Result GroupCommit::awaited;

GroupCommit::GroupCommit(Storage& its_storage, std::chrono::milliseconds its_retry)
    : storage(its_storage), retry(its_retry), thread([this] { run(); })
{
}

GroupCommit::~GroupCommit()
{
    {
        const Lock lock(mutex);
        stopping = true;
    }
    work.notify_one();
    complete.notify_one();
    thread.join();
    open->answer.set_value(OBJECT_PATCH_FAI);
}

// --------------------------------------------------------------- clients

void GroupCommit::append(RealmKey realm, model::Changes changes)
{
    if (changes.empty())
        return;
    Lock lock(mutex);
    Entries& entries = open->entries;
    const bool first = entries.empty();
    const std::size_t size = entries.size() + changes.size();
    if (size > entries.capacity()) // first, so that nothing fails in the middle
        entries.reserve(std::max(size, 2 * entries.capacity()));
    for (model::Change& change : changes)
        entries.push_back({realm, std::move(change)});
    last = awaited = open->result;
    const bool last_expected = ++open->appended == expected;
    const bool idle = !writing;
    lock.unlock();
    // To wake a thread takes longer than all else here.
    if (first && idle)
        work.notify_one();
    if (last_expected)
        complete.notify_one();
}

void GroupCommit::rely()
{
    const Lock lock(mutex);
    awaited = last;
}

void GroupCommit::begin_together()
{
    const Lock lock(mutex);
    ++together;
}

void GroupCommit::end_together()
{
    const Lock lock(mutex);
    --together;
    complete.notify_one();
}

void GroupCommit::forget()
{
    awaited = {};
}

vl_result GroupCommit::confirm()
{
    const Result result = std::exchange(awaited, {});
    if (!result.valid())
        return VL_OK;
    const auto answered = [&result] {
        return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    Lock lock(mutex);
    if (!answered() && !writing && !failing) // then it is the open group's
        write_group(lock);
    lock.unlock();
    return failing && !answered() ? OBJECT_PATCH_FAI : result.get();
}

Status GroupCommit::status() const
{
    const Lock lock(mutex);
    return state;
}

// ------------------------------------------------------------ the thread

void GroupCommit::run()
{
    Lock lock(mutex);
    for (;;) {
        work.wait(lock, [this] { return !writing && is_work_left(); });
        if (failing) // nobody else writes then
            work.wait_for(lock, retry, [this] { return stopping; });
        if (stopping && unwritten.empty() && open->entries.empty())
            return;
        write_group(lock);
        if (stopping && failing)
            return;
    }
}

bool GroupCommit::is_work_left() const
{
    return stopping || failing || !open->entries.empty();
}

// --------------------------------------------------------------- writing

// What went on from here would leave the others waiting for ever: without memory the
// process ends.
void GroupCommit::write_group(Lock& lock) noexcept
{
    writing = true;
    if (!failing)
        gather(lock);
    complete.wait(lock, [this] { return together == 0; });
    const std::unique_ptr<Group> group = std::exchange(open, std::make_unique<Group>());
    write(lock, *group);
    writing = false;
    if (is_work_left())
        work.notify_one();
}

void GroupCommit::gather(Lock& lock)
{
    const auto limit = std::min(usual_time / part_to_gather, longest_gathering);
    if (limit >= shortest_gathering)
        complete.wait_for(lock, limit,
                          [this] { return stopping || open->appended >= expected; });
}

void GroupCommit::write(Lock& lock, Group& group)
{
    lock.unlock();
    take(group);
    const Clock::time_point begin = Clock::now();
    std::optional<std::string> problem;
    try {
        storage.write(unwritten);
    } catch (const std::exception& error) {
        problem = *error.what() ? error.what() : "unknown";
    }
    const std::chrono::microseconds time = time_since(begin);
    const std::size_t changes = unwritten.size();
    if (!problem)
        unwritten.clear(); // others append meanwhile
    lock.lock();
    if (problem)
        failed(group, *problem);
    else
        succeeded(group, changes, time);
}

// Of a group that nothing is appended to any more.
void GroupCommit::take(Group& group)
{
    if (unwritten.empty())
        unwritten.swap(group.entries);
    else
        std::move(group.entries.begin(), group.entries.end(),
                  std::back_inserter(unwritten));
    group.entries = {};
}

void GroupCommit::succeeded(Group& group, std::size_t changes,
                            std::chrono::microseconds time)
{
    if (failing)
        server::log_event("journal-writing-again");
    state.changes += changes;
    ++state.groups;
    state.writing += time;
    state.failing.clear();
    failing = false;
    usual_time = (usual_time * 7 + time) / 8;
    expected = group.appended + open->appended;
    group.answer.set_value(VL_OK);
}

void GroupCommit::failed(Group& group, const std::string& reason)
{
    if (!failing)
        server::log_event("journal-failing", {{"reason", reason}});
    ++state.failures;
    state.failing = reason;
    failing = true;
    // Who has come meanwhile is not kept waiting for what may take long to mend.
    const std::unique_ptr<Group> come = std::exchange(open, std::make_unique<Group>());
    take(*come);
    group.answer.set_value(OBJECT_PATCH_FAI);
    come->answer.set_value(OBJECT_PATCH_FAI);
}

} // namespace velmo::journal
