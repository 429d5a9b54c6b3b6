// A hold of the registry's lock for reading.
#ifndef VELMO_REGISTRY_REGISTRY_READER_H
#define VELMO_REGISTRY_REGISTRY_READER_H

#include "registry/fair_lock.h"
#include "registry/registry_use.h"
#include "registry/vlServerReference.h"
#include "vlReferenceContainer.h"

// For what asks the registry more than one thing: a hold costs as much as an answer. The
// thread that has one must not take another. Without a registry, where its lock cannot
// be had, or when the process ends, there are no servers.
class RegistryReader {
public:
    // Waits for writers.
    [[gnu::always_inline]] explicit RegistryReader(vlReferenceContainer* its_registry)
        : registry(its_registry)
    {
        if (registry && use.allowed())
            hold.acquire(registry->lock, turnstile);
    }
    [[gnu::always_inline]] ~RegistryReader() { let_go(); }
    RegistryReader(const RegistryReader&) = delete;
    RegistryReader& operator=(const RegistryReader&) = delete;

    // The first server at position "own", null when there is none: what
    // vl_get_servername("own") gives first, without gathering all of them. Valid until the
    // settings are read anew.
    const char* own_server() const
    {
        return hold.locked() && registry->firstOwn ? registry->firstOwn->c_str() : nullptr;
    }

    // A server's entry, made if need be; in place as long as the hold lasts.
    vlServerReference* entry(const char* server) const
    {
        if (!hold.locked())
            return nullptr;
        vlServerReference* const last = registry->lastFound.load(std::memory_order_acquire);
        return last && last->is_of(server) ? last : find_or_create(*registry, server);
    }

    // Before the end of its life: nothing may be asked any more.
    [[gnu::always_inline]] void let_go()
    {
        hold.let_go();
        use.leave();
    }

    // Of registries, which are one as a rule.
    static inline Turnstile turnstile;

private:
    static vlServerReference* find_or_create(vlReferenceContainer& registry,
                                             const char* server);

    vlReferenceContainer* const registry;
    RegistryUse use;
    FairReadGuard<vlReferenceContainer> hold;
};

#endif
