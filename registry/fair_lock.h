// Holding a reader/writer lock without shutting writers out.
#ifndef VELMO_REGISTRY_FAIR_LOCK_H
#define VELMO_REGISTRY_FAIR_LOCK_H

#include <ace/RW_Mutex.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

// ACE_RW_Mutex lets readers in while writers wait: readers that hold it for as long as a
// look-up takes, one after the other, would keep a writer out for ever. Once a writer has
// waited for long, newcomers wait behind it. Not before: as long as one server does not
// answer a look-up, the calls to all others would wait for that as well.
class Turnstile {
public:
    static constexpr std::chrono::seconds patience{2};

    // For readers, before they take the lock.
    void pass()
    {
        if (waiting_since != 0)
            wait();
    }

    // For writers: takes the lock. 0 is success.
    int acquire_write(ACE_RW_Mutex& lock)
    {
        {
            const std::lock_guard<std::mutex> guard(mutex);
            if (waiting_writers++ == 0)
                waiting_since = now();
        }
        const int result = lock.acquire_write();
        {
            const std::lock_guard<std::mutex> guard(mutex);
            waiting_since = --waiting_writers == 0 ? 0 : now();
        }
        opened.notify_all();
        return result;
    }

private:
    using Clock = std::chrono::steady_clock;

    static Clock::rep now() { return Clock::now().time_since_epoch().count(); }

    // Apart from what every call does.
    [[gnu::noinline, gnu::cold]] void wait()
    {
        std::unique_lock<std::mutex> guard(mutex);
        opened.wait(guard, [this] { return !is_closed(); });
    }

    bool is_closed() const
    {
        const Clock::rep since = waiting_since;
        return since != 0 && now() - since >= Clock::duration(patience).count();
    }

    std::mutex mutex; // never held while waiting for the lock
    std::condition_variable opened;
    int waiting_writers = 0;
    std::atomic<Clock::rep> waiting_since{0}; // 0: nobody waits
};

// Level tells the locks of one kind from those of another: a thread that holds one of them
// for reading and asks for another one is no newcomer, or it could wait for a writer that
// waits for it.
template <class Level>
class FairReadGuard {
public:
    FairReadGuard() = default; // holds nothing
    FairReadGuard(ACE_RW_Mutex& its_lock, Turnstile& turnstile)
    {
        acquire(its_lock, turnstile);
    }
    [[gnu::always_inline]] ~FairReadGuard() { let_go(); }
    FairReadGuard(const FairReadGuard&) = delete;
    FairReadGuard& operator=(const FairReadGuard&) = delete;

    // By one that holds nothing.
    [[gnu::always_inline]] void acquire(ACE_RW_Mutex& its_lock, Turnstile& turnstile)
    {
        if (held == 0)
            turnstile.pass();
        if (its_lock.acquire_read() != 0)
            return;
        lock = &its_lock;
        ++held;
    }

    // Before the end of its life.
    [[gnu::always_inline]] void let_go()
    {
        if (!lock)
            return;
        --held;
        lock->release();
        lock = nullptr;
    }

    bool locked() const { return lock != nullptr; }

private:
    // By this thread. Every call looks at it: where the loader has put it once for all.
    [[gnu::tls_model("initial-exec")]] static inline thread_local int held = 0;

    ACE_RW_Mutex* lock = nullptr; // null: not held
};

class FairWriteGuard {
public:
    FairWriteGuard(ACE_RW_Mutex& its_lock, Turnstile& turnstile)
        : lock(its_lock), is_locked(turnstile.acquire_write(its_lock) == 0)
    {
    }
    ~FairWriteGuard()
    {
        if (is_locked)
            lock.release();
    }
    FairWriteGuard(const FairWriteGuard&) = delete;
    FairWriteGuard& operator=(const FairWriteGuard&) = delete;

    bool locked() const { return is_locked; }

private:
    ACE_RW_Mutex& lock;
    const bool is_locked;
};

#endif
