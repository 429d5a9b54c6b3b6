// A realm's contenders as system points. Of a group:
//   $SYS/contention/GROUP/master      the master's name, empty for none
//   $SYS/contention/GROUP/epoch       of the master; without one, of the last one
//   $SYS/contention/GROUP/state       epoch, a space and master, of one moment
//   $SYS/contention/GROUP/contenders  their names, escaped (system_path.h), one a line,
//                                     the master first, then who would follow
// Of a contender, with its name escaped:
//   $SYS/contention/GROUP/contenders/NAME/priority
//   $SYS/contention/GROUP/contenders/NAME/role
//   $SYS/contention/GROUP/contenders/NAME/data
//   $SYS/contention/GROUP/contenders/NAME/lease  milliseconds that it still has
//   $SYS/contention/GROUP/contenders/NAME/token  the epoch, only while it is master: what
//                                                has to travel with its work
#ifndef VELMO_SERVER_MODEL_CONTENTION_POINTS_H
#define VELMO_SERVER_MODEL_CONTENTION_POINTS_H

#include "server/model/contention_service.h"
#include "server/model/system_points.h"

namespace velmo::model {

class ContentionPoints final : public SystemPoints {
public:
    // The service must outlive this.
    explicit ContentionPoints(const ContentionService& service) : contention(service) {}

    void list(std::vector<std::string>& names) const override;
    std::optional<std::string> read(std::string_view name) const override;

private:
    const ContentionService& contention;
};

} // namespace velmo::model

#endif
