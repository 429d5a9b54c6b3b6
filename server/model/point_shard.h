// A share of the points of a realm, with its lock.
#ifndef VELMO_SERVER_MODEL_POINT_SHARD_H
#define VELMO_SERVER_MODEL_POINT_SHARD_H

#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "server/model/images.h"
#include "server/model/template.h"

namespace velmo::model {

struct Point {
    std::shared_ptr<const Template> type;
    Data value;               // null: no data
    std::string description;  // empty: the template's
    std::uint64_t moment = 0; // the last one that began before it was changed
};

using Points = std::unordered_map<std::string, Point>;

// A moment is the number of a visit to all points. From its beginning until the visit
// gets to this shard, whoever changes a point keeps it first as it was: the visit finds
// the points of that moment, and nobody waits for it.
struct alignas(64) PointShard {
    using ReadLock = std::shared_lock<std::shared_mutex>;
    using WriteLock = std::unique_lock<std::shared_mutex>;

    // Before a point is changed or removed, with the lock held for writing.
    void keep(Points::value_type& entry);

    // Has add() find room for so many points. With the lock held for writing.
    void make_room(std::size_t for_points);

    // Adds a new point, which is none of the moment. With the lock held for writing;
    // throws nothing where there is room.
    void add(Points::node_type&& point);

    // The points of the moment, which is then over here. Locks for reading: nobody else
    // writes what it writes.
    std::vector<PointImage> take_moment();

    // Ends the moment, if take_moment() has not. Locks.
    void drop_moment();

    mutable std::shared_mutex mutex;
    Points points;
    std::uint64_t moment = 0; // that is to be taken; 0: none
    std::vector<PointImage> kept;
};

} // namespace velmo::model

#endif
