#include "server/journal/group_commit.h"

#include <algorithm>
#include <iterator>

#include "server/log.h"

namespace velmo::journal {

namespace {

using Clock = std::chrono::steady_clock;

// Clients that have just been answered mostly come again at once: a write waits for them
// for this part of the time that it takes itself, and so serves them all.
constexpr int part_to_gather = 4;
constexpr std::chrono::microseconds longest_gathering{1000};

std::chrono::microseconds time_since(Clock::time_point begin)
{
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
}

} // namespace

thread_local GroupCommit::SharedGroup GroupCommit::awaited;

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
    wake.notify_one();
    thread.join();
    open->result = OBJECT_PATCH_FAI;
}

// --------------------------------------------------------------- clients

void GroupCommit::append(RealmKey realm, model::Changes changes)
{
    const Lock lock(mutex);
    Entries& entries = open->entries;
    const std::size_t size = entries.size() + changes.size();
    if (size > entries.capacity()) // first, so that nothing fails in the middle
        entries.reserve(std::max(size, 2 * entries.capacity()));
    for (model::Change& change : changes)
        entries.push_back({realm, std::move(change)});
    ++open->appended;
    last = awaited = open;
    wake.notify_one();
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
    wake.notify_one();
}

vl_result GroupCommit::confirm()
{
    const SharedGroup group = std::exchange(awaited, nullptr);
    if (!group)
        return VL_OK;
    Lock lock(mutex);
    group->settled.wait(lock, [&] { return group->result || failing; });
    return group->result.value_or(OBJECT_PATCH_FAI);
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
        wake.wait(lock, [this] { return stopping || failing || !open->entries.empty(); });
        if (!failing)
            gather(lock);
        wake.wait(lock, [this] { return together == 0; });
        if (stopping && unwritten.empty() && open->entries.empty())
            return;
        const SharedGroup group = std::exchange(open, std::make_shared<Group>());
        if (write(lock, *group))
            continue;
        if (stopping)
            return;
        wake.wait_for(lock, retry, [this] { return stopping; });
    }
}

void GroupCommit::gather(Lock& lock)
{
    const auto limit = std::min(usual_time / part_to_gather, longest_gathering);
    wake.wait_for(lock, limit, [this] { return stopping || open->appended >= expected; });
}

bool GroupCommit::write(Lock& lock, Group& group)
{
    lock.unlock();
    take(group);
    const Clock::time_point begin = Clock::now();
    std::string problem;
    try {
        storage.write(unwritten);
    } catch (const std::exception& error) {
        problem = error.what();
    }
    const std::chrono::microseconds time = time_since(begin);
    const std::size_t changes = unwritten.size();
    if (problem.empty())
        unwritten.clear(); // others append meanwhile
    lock.lock();
    if (problem.empty())
        succeeded(group, changes, time);
    else
        failed(group, problem);
    return problem.empty();
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
    group.result = VL_OK;
    group.settled.notify_all();
}

void GroupCommit::failed(Group& group, const std::string& reason)
{
    if (!failing)
        server::log_event("journal-failing", {{"reason", reason}});
    ++state.failures;
    state.failing = reason;
    failing = true;
    // Who has come meanwhile is not kept waiting for what may take long to mend.
    const SharedGroup come = std::exchange(open, std::make_shared<Group>());
    take(*come);
    for (Group* each : {&group, come.get()}) {
        each->result = OBJECT_PATCH_FAI;
        each->settled.notify_all();
    }
}

} // namespace velmo::journal
