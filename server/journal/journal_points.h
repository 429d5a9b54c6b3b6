// The journal as system points:
//   $SYS/journal/state     "writing", or "failing": no change is taken
//   $SYS/journal/reason    why it fails; empty when it does not
//   $SYS/journal/changes   that are on the disk since the start
//   $SYS/journal/groups    in so many writes
//   $SYS/journal/failures  writes that have failed
#ifndef VELMO_SERVER_JOURNAL_JOURNAL_POINTS_H
#define VELMO_SERVER_JOURNAL_JOURNAL_POINTS_H

#include "server/journal/group_commit.h"
#include "server/model/system_points.h"

namespace velmo::journal {

class JournalPoints final : public model::SystemPoints {
public:
    // The group commit must outlive this.
    explicit JournalPoints(const GroupCommit& all_realms) : commit(all_realms) {}

    void list(std::vector<std::string>& names) const override;
    std::optional<std::string> read(std::string_view name) const override;

private:
    const GroupCommit& commit;
};

} // namespace velmo::journal

#endif
