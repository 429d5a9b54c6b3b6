// Realms that outlive their server's process.
#ifndef VELMO_SERVER_JOURNAL_DURABILITY_H
#define VELMO_SERVER_JOURNAL_DURABILITY_H

#include <functional>
#include <list>

#include "server/journal/group_commit.h"
#include "server/journal/journal_points.h"
#include "server/journal/state_file.h"
#include "server/model/realm.h"

namespace velmo::journal {

using Realms = std::vector<std::unique_ptr<model::Realm>>;

class Durability {
public:
    // Makes what the file has of them the contents of the realms, which must outlive this,
    // and has every change kept in it from then on. begin: called for a realm that the
    // file has nothing of, to fill it with what it is to begin with.
    //
    // Throws store::StoreError when the file cannot be used, a realm does not take what it
    // holds (nothing is changed in it then), or what they begin with cannot be written;
    // what begin throws passes on.
    Durability(const std::filesystem::path& folder, const std::string& server,
               const Realms& realms, const std::function<void(model::Realm&)>& begin);

    // Keeps the templates that the realms have now. False when that has failed.
    bool keep_templates();

    // Of all realms. Any function from any thread.
    GroupCommit& commit() { return group_commit; }

private:
    struct Kept {
        model::Realm& realm;
        const bool begun;
        RealmJournal journal;
    };

    void recover(model::Realm& realm);
    void keep(Kept& kept, const std::function<void(model::Realm&)>& begin);
    [[noreturn]] void refuse(const model::Realm& realm, const char* part,
                             const std::string& problem) const;

    StateFile state;
    GroupCommit group_commit{state};
    const JournalPoints points{group_commit};
    std::list<Kept> all;
};

} // namespace velmo::journal

#endif
