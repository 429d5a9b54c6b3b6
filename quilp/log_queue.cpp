#include "quilp/log_queue.h"

#include <pthread.h>

#include <csignal>
#include <new>
#include <string>
#include <system_error>
#include <utility>

namespace velmo::quilp {

namespace {

// For as long as it lives, the calling thread, and those it starts, get no signals:
// an application's handlers belong on its own threads.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before;
};

} // namespace

LogQueue::LogQueue(Write write_line, Writer writer, std::size_t bytes)
    : write(std::move(write_line)), capacity(bytes)
{
    if (writer == Writer::caller)
        return;
    const SignalsBlocked blocked;
    try {
        thread = std::thread(&LogQueue::run, this);
        pthread_setname_np(thread.native_handle(), "quilp");
    } catch (const std::system_error&) {
        // Too many threads: callers write themselves.
    }
}

LogQueue::~LogQueue()
{
    {
        const Lock lock(mutex);
        ending = true;
    }
    work.notify_one();
    if (thread.joinable())
        thread.join();
}

void LogQueue::add(Line line)
{
    Lock lock(mutex);
    waiting.push_back({last_number + 1, std::move(line)});
    const std::uint64_t number = ++last_number;
    waiting_size += size_of(waiting.back());
    while (waiting_size > capacity && waiting.size() > 1) {
        take_oldest();
        ++lost;
    }
    work.notify_one();
    if (!thread.joinable() || (finishing && !stuck))
        stuck = !wait_for(number, patience, lock);
}

bool LogQueue::flush(Duration limit)
{
    Lock lock(mutex);
    return wait_for(last_number, limit, lock);
}

void LogQueue::finish()
{
    Lock lock(mutex);
    finishing = true;
    std::uint64_t oldest;
    do {
        oldest = oldest_unwritten();
        stuck = !wait_for(last_number, patience, lock);
    } while (stuck && oldest_unwritten() != oldest);
}

bool LogQueue::pause(Duration limit)
{
    Lock lock(mutex);
    ++pauses;
    return progress.wait_for(lock, limit, [this] { return !writing; });
}

void LogQueue::resume()
{
    const Lock lock(mutex);
    --pauses;
    work.notify_one();
    progress.notify_all();
}

std::size_t LogQueue::size_of(const Numbered& entry)
{
    return sizeof entry + entry.line.text.capacity();
}

Line LogQueue::take_oldest()
{
    waiting_size -= size_of(waiting.front());
    Line line = std::move(waiting.front().line);
    waiting.pop_front();
    return line;
}

// The number of the line that will be the next to have been written; beyond the last
// when there is none.
std::uint64_t LogQueue::oldest_unwritten() const
{
    if (writing)
        return being_written;
    return waiting.empty() ? last_number + 1 : waiting.front().number;
}

void LogQueue::write_oldest(Lock& lock)
{
    being_written = waiting.front().number;
    writing = true;
    const Line line = take_oldest();
    lock.unlock();
    tell_lost();
    write(line);
    lock.lock();
    writing = false;
    progress.notify_all();
}

void LogQueue::tell_lost() noexcept
{
    const std::uint64_t count = lost.exchange(0);
    if (count == 0)
        return;
    try {
        write(Line::now("lost " + std::to_string(count) +
                        " log lines: they came too fast to be written, or memory ran out"));
    } catch (const std::bad_alloc&) {
        lost += count; // with the next line, then
    }
}

// Waits until the line of that number, and those before it, are written or dropped.
// Without a thread of its own the queue has them written by whoever waits.
bool LogQueue::wait_for(std::uint64_t number, Duration limit, Lock& lock)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (oldest_unwritten() <= number) {
        if (!thread.joinable() && may_write())
            write_oldest(lock);
        else if (progress.wait_until(lock, deadline) == std::cv_status::timeout)
            return oldest_unwritten() > number;
    }
    return true;
}

void LogQueue::run()
{
    Lock lock(mutex);
    for (;;) {
        work.wait(lock, [this] { return ending || (!waiting.empty() && may_write()); });
        if (waiting.empty())
            return;
        write_oldest(lock);
    }
}

} // namespace velmo::quilp
