// The state of a server's realms, as it is on the disk.
#ifndef VELMO_SERVER_JOURNAL_STATE_FILE_H
#define VELMO_SERVER_JOURNAL_STATE_FILE_H

#include <optional>

#include "server/journal/file_lock.h"
#include "server/journal/storage.h"
#include "server/store/database.h"

namespace velmo::journal {

struct RealmState {
    bool begun = false; // what it began with has been written
    std::vector<model::TemplateDefinition> templates;
    std::vector<model::PointImage> points;
    model::PortsImage ports;
    model::EventsImage events;
    model::ContentionImage contention;
};

// Where a server of this name keeps its state.
std::filesystem::path state_file(const std::filesystem::path& folder,
                                 const std::string& server);

// Functions throw store::StoreError. One thread at a time.
class StateFile final : public Storage {
public:
    // Opens the file, or creates it, and the folder. What a transaction was interrupted in
    // is undone. Throws when another process has it, and when it is damaged, another
    // program's or a newer velmod's; it is left as it is.
    StateFile(const std::filesystem::path& folder, const std::string& server);
    ~StateFile() override;

    // The realm of that name; a new one is empty.
    RealmKey realm(const std::string& name);

    RealmState load(RealmKey realm);

    // Changes of templates tell as well that the realm has begun.
    void write(const Entries& entries) override;

    const std::filesystem::path& file() const { return database.file(); }

private:
    class Writer;

    const FileLock lock;
    store::Database database;
    std::unique_ptr<Writer> writer; // null after a failure
};

} // namespace velmo::journal

#endif
