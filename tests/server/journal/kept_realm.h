// A realm that is kept in a folder, and what is in it.
#ifndef VELMO_TESTS_SERVER_JOURNAL_KEPT_REALM_H
#define VELMO_TESTS_SERVER_JOURNAL_KEPT_REALM_H

#include <algorithm>

#include "server/journal/durability.h"
#include "tests/server/images.h"

namespace velmo::model {

inline bool operator==(const ContenderImage& a, const ContenderImage& b)
{
    return std::tie(a.group, a.name, a.priority, a.arrival, a.role) ==
               std::tie(b.group, b.name, b.priority, b.arrival, b.role) &&
           same(a.data, b.data);
}

} // namespace velmo::model

namespace velmo::tests {

// All of it, to be compared.
struct Content {
    std::vector<model::TemplateDefinition> templates;
    std::vector<model::PointImage> points; // by name
    model::PortsImage ports;
    model::EventsImage events;
    std::vector<model::ContenderImage> contenders;
};

inline bool operator==(const Content& a, const Content& b)
{
    return std::tie(a.templates, a.points, a.ports, a.events, a.contenders) ==
           std::tie(b.templates, b.points, b.ports, b.events, b.contenders);
}

class KeptRealm {
public:
    explicit KeptRealm(
        const std::filesystem::path& folder,
        const std::function<void(model::Realm&)>& begin = [](model::Realm&) {},
        const std::vector<model::TemplateDefinition>& templates = {})
    {
        realms.push_back(std::make_unique<model::Realm>("realm"));
        for (const model::TemplateDefinition& each : templates)
            realms.front()->templates.add(each);
        durability.emplace(folder, "S", realms, begin);
    }

    model::Realm& operator*() const { return *realms.front(); }
    model::Realm* operator->() const { return realms.front().get(); }
    journal::Durability& kept() { return *durability; }

    // Whether everything so far is on the disk.
    bool confirmed() { return durability->commit().confirm() == VL_OK; }

    Content content() const
    {
        model::Realm& realm = *realms.front();
        Content all{realm.templates.image(),
                    {},
                    realm.ports.image(),
                    realm.events.image(),
                    realm.contention.image().contenders};
        realm.points.visit_moment(
            [&](const model::PointImage& point) { all.points.push_back(point); });
        std::sort(all.points.begin(), all.points.end(),
                  [](const auto& a, const auto& b) { return a.name < b.name; });
        return all;
    }

private:
    journal::Realms realms;
    std::optional<journal::Durability> durability;
};

} // namespace velmo::tests

#endif
