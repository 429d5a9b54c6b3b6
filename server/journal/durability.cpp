#include "server/journal/durability.h"

#include "server/log.h"

namespace velmo::journal {

Durability::Durability(const std::filesystem::path& folder, const std::string& server,
                       const Realms& realms,
                       const std::function<void(model::Realm&)>& begin)
    : state(folder, server)
{
    // All of them are read before the first one writes: that may be another thread's work.
    for (const auto& realm : realms)
        recover(*realm);
    for (Kept& kept : all)
        keep(kept, begin);
    if (group_commit.confirm() != VL_OK)
        throw store::StoreError(state.file(), group_commit.status().failing, "state file");
}

void Durability::refuse(const model::Realm& realm, const char* part,
                        const std::string& problem) const
{
    throw store::StoreError(state.file(),
                            std::string("the ") + part + " of realm \"" + realm.name +
                                "\" in it cannot be used: " + problem,
                            "state file");
}

void Durability::recover(model::Realm& realm)
{
    const RealmKey key = state.realm(realm.name);
    RealmState found = state.load(key);
    all.push_back({realm, found.begun, RealmJournal(group_commit, key)});
    server::log_event("recovered",
                      {{"realm", realm.name},
                       {"points", std::to_string(found.points.size())},
                       {"ports", std::to_string(found.ports.ports.size())},
                       {"events", std::to_string(found.events.events.size())},
                       {"contenders", std::to_string(found.contention.contenders.size())}});

    std::string problem;
    const auto check = [&](vl_result result, const char* part) {
        if (result != VL_OK)
            refuse(realm, part,
                   problem.empty() ? "result " + std::to_string(result) : problem);
    };
    check(realm.templates.restore(found.templates, problem), "templates");
    check(realm.points.restore(std::move(found.points), problem), "points");
    check(realm.ports.restore(found.ports), "ports");
    check(realm.events.restore(found.events), "events");
    check(realm.contention.restore(found.contention), "contenders");
}

void Durability::keep(Kept& kept, const std::function<void(model::Realm&)>& begin)
{
    const model::Together whole(&kept.journal);
    kept.realm.keep_in(kept.journal);
    kept.realm.points.add_system_points(points);
    if (!kept.begun)
        begin(kept.realm);
    kept.journal.append({model::TemplatesChanged{kept.realm.templates.image()}});
}

bool Durability::keep_templates()
{
    for (Kept& kept : all)
        kept.journal.append({model::TemplatesChanged{kept.realm.templates.image()}});
    return group_commit.confirm() == VL_OK;
}

} // namespace velmo::journal
