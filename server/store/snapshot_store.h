// The snapshots of one server: a file, in which each service of each realm has its own.
#ifndef VELMO_SERVER_STORE_SNAPSHOT_STORE_H
#define VELMO_SERVER_STORE_SNAPSHOT_STORE_H

#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "server/model/images.h"
#include "server/model/template.h"
#include "server/store/database.h"

namespace velmo::store {

struct PortsSnapshot {
    model::PortsImage ports;
    model::EventsImage events;
};

// Where a server of this name keeps its snapshots. Servers of different names never
// share a file, whatever bytes the names have.
std::filesystem::path snapshot_file(const std::filesystem::path& folder,
                                    const std::string& server);

// Functions throw StoreError; any function from any thread, one at a time. A save has
// replaced the last snapshot, safe on the disk, when it returns, and nothing has
// changed when it throws. A load gives nothing for what has never been saved.
class SnapshotStore {
public:
    // Opens the file, or creates it, and the folder. Throws when the file is damaged,
    // another program's or a newer velmod's; it is left as it is.
    SnapshotStore(const std::filesystem::path& folder, const std::string& server);

    using Templates = std::vector<model::TemplateDefinition>;
    using Points = std::vector<model::PointImage>;
    using VisitPoint = std::function<void(const model::PointImage&)>;

    // What is to be saved is asked for when it is this save's turn: of two saves the
    // last one has the later state. What the source throws passes on.
    void save_templates(const std::string& realm, const std::function<Templates()>& source);
    void save_ports(const std::string& realm, const std::function<PortsSnapshot()>& source);

    // The source calls visit for every point.
    void save_points(const std::string& realm,
                     const std::function<void(const VisitPoint& visit)>& source);

    std::optional<Templates> load_templates(const std::string& realm);
    std::optional<Points> load_points(const std::string& realm);
    std::optional<PortsSnapshot> load_ports(const std::string& realm);

    const std::filesystem::path& file() const { return database.file(); }

private:
    using Key = std::int64_t; // of a snapshot, in its rows

    template <class Write>
    void save(const std::string& realm, const char* service, Write write);
    template <class Read>
    auto load(const std::string& realm, const char* service, Read read);

    std::mutex mutex;
    Database database;
};

} // namespace velmo::store

#endif
