// Lines on their way from the threads that log to the one that writes.
#ifndef VELMO_QUILP_LOG_QUEUE_H
#define VELMO_QUILP_LOG_QUEUE_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "quilp/line.h"

namespace velmo::quilp {

// A bounded queue, so that a thread that logs does not wait for a slow disk: when it
// is full, the oldest lines are dropped, and a line tells how many. All members may
// be called from any thread.
class LogQueue {
public:
    using Duration = std::chrono::milliseconds;
    using Write = std::function<void(const Line&)>; // one call at a time; must not throw

    static constexpr std::size_t default_capacity = 8u << 20; // bytes
    static constexpr Duration patience{1000};

    enum class Writer {
        own_thread, // add() returns at once
        caller      // add() writes; also when no thread can be started
    };

    explicit LogQueue(Write write, Writer writer = Writer::own_thread,
                      std::size_t capacity = default_capacity);
    ~LogQueue(); // writes what waits
    LogQueue(const LogQueue&) = delete;
    LogQueue& operator=(const LogQueue&) = delete;

    // Throws std::bad_alloc.
    void add(Line line);

    // Counts a line that could not be made, as if it had been dropped.
    void count_lost() { ++lost; }

    // Waits until every line added so far is written or dropped; false when that
    // takes longer than `limit`.
    bool flush(Duration limit = patience);

    // For the process's end: waits as long as lines get written. From now on add()
    // waits for its line to be written, since the process may end at any moment.
    // Waits for a second at most, and only once, when nothing gets written at all.
    void finish();

    // Keeps the writer from beginning another line until resume(), and waits for the
    // line that is being written; false when that takes longer than `limit`.
    bool pause(Duration limit);
    void resume();

    // Whether a line is being written. Needs no lock: a child made by fork() may ask
    // its copy of the parent's queue, and use nothing else of it.
    bool is_writing() const { return writing; }

private:
    struct Numbered {
        std::uint64_t number;
        Line line;
    };
    using Lock = std::unique_lock<std::mutex>;

    static std::size_t size_of(const Numbered& entry);
    Line take_oldest();
    std::uint64_t oldest_unwritten() const;
    bool may_write() const { return pauses == 0 && !writing; }
    void write_oldest(Lock& lock);
    void tell_lost() noexcept;
    bool wait_for(std::uint64_t number, Duration limit, Lock& lock);
    void run();

    const Write write;
    const std::size_t capacity;

    std::mutex mutex;                 // guards what follows, but for the atomics
    std::condition_variable work;     // for the thread: a line to write, or the end
    std::condition_variable progress; // for those who wait: a line was written
    std::deque<Numbered> waiting;
    std::size_t waiting_size = 0;
    std::uint64_t last_number = 0; // of the lines added
    std::uint64_t being_written = 0;
    int pauses = 0;
    bool finishing = false;
    bool stuck = false; // somebody waited for nothing since finish()
    bool ending = false;
    std::atomic<bool> writing{false};
    std::atomic<std::uint64_t> lost{0}; // and not told yet
    std::thread thread;
};

} // namespace velmo::quilp

#endif
