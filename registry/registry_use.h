// Threads that deal with the registry, and the end of the process.
#ifndef VELMO_REGISTRY_REGISTRY_USE_H
#define VELMO_REGISTRY_REGISTRY_USE_H

#include <atomic>
#include <chrono>
#include <thread>

// exit() destroys the registry, and later what the broker has, whatever other threads are
// about to do with them. To be held by a thread while it uses either, but for a remote
// call, which may take long. A count and no lock, since every call has to have it.
class RegistryUse {
public:
    [[gnu::always_inline]] RegistryUse()
    {
        ++users; // before it looks: either it sees the end, or the end sees it
        if (ended && ending_thread != std::this_thread::get_id())
            leave();
    }
    [[gnu::always_inline]] ~RegistryUse() { leave(); }
    RegistryUse(const RegistryUse&) = delete;
    RegistryUse& operator=(const RegistryUse&) = delete;

    // Whether the thread may use them: false when another thread ends the process.
    bool allowed() const { return counted; }

    // Before the end of its life.
    [[gnu::always_inline]] void leave()
    {
        if (counted)
            --users;
        counted = false;
    }

    // For the thread that ends the process, which goes on being allowed. Waits for uses
    // under way, which take as long as a look-up at most, though not for ever.
    static void end()
    {
        using Clock = std::chrono::steady_clock;
        ending_thread = std::this_thread::get_id();
        ended = true;
        const auto deadline = Clock::now() + patience;
        while (users > 0 && Clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

private:
    static constexpr std::chrono::seconds patience{3};

    static inline std::thread::id ending_thread; // once it has ended
    static inline std::atomic<bool> ended{false};
    static inline std::atomic<int> users{0};

    bool counted = true;
};

#endif
