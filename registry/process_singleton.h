// Access to ACE's singletons.
#ifndef VELMO_REGISTRY_PROCESS_SINGLETON_H
#define VELMO_REGISTRY_PROCESS_SINGLETON_H

#include <atomic>
#include <mutex>

#include <ace/Recursive_Thread_Mutex.h>
#include <ace/Singleton.h>

#include "registry/registry_use.h"
#include "util/fork.h"

// ACE_Singleton<T>::instance() looks at its pointer unlocked before it takes its
// lock, which is a data race; this asks it under a lock of its own, and only until
// it has answered. Null (errno ENOMEM) when there was no memory; asked again then. Null,
// too, in a child of fork(), where the locks may be held, unless it was made before. T must
// call forget() in its destructor.
template <class T>
class ProcessSingleton {
public:
    static T* instance()
    {
        if (T* known = pointer.load(std::memory_order_acquire))
            return known;
        return make();
    }

    // The instance if there is one; makes none.
    static T* existing() { return pointer.load(std::memory_order_acquire); }

    // The object is being destroyed; another object of the class changes nothing.
    static void forget(const T* object)
    {
        T* known = const_cast<T*>(object);
        pointer.compare_exchange_strong(known, nullptr);
    }

private:
    // Apart, so that asking for what is there costs next to nothing.
    [[gnu::noinline]] static T* make()
    {
        if (velmo::util::Fork::is_cut_off())
            return nullptr;
        const RegistryUse use;
        if (!use.allowed())
            return nullptr;
        std::lock_guard<std::mutex> guard(mutex);
        T* made = ACE_Singleton<T, ACE_Recursive_Thread_Mutex>::instance();
        pointer.store(made, std::memory_order_release);
        return made;
    }

    static inline std::atomic<T*> pointer{nullptr};
    static inline std::mutex mutex;
};

#endif
