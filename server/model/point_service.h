// The points of one realm: named values, each of a template.
//
// Any function from any thread. Points are spread over shards by the hash of their
// names, each with a lock of its own, so that clients seldom meet. Under a lock a value
// is a pointer that is copied: bytes are copied before and after. One point, and new
// points, are in point_service.cpp, all of them in all_points.cpp.
#ifndef VELMO_SERVER_MODEL_POINT_SERVICE_H
#define VELMO_SERVER_MODEL_POINT_SERVICE_H

#include <array>
#include <atomic>
#include <functional>

#include "server/model/journal.h"
#include "server/model/name_table.h"
#include "server/model/point_shard.h"
#include "server/model/system_points.h"
#include "server/model/template_catalogue.h"

namespace velmo::model {

struct PointLimits {
    std::size_t max_points = 4u << 20;
    std::size_t max_value_bytes = 64u << 20; // of one point
    std::size_t max_description_bytes = 4096;
};

struct PointInfo {
    std::string type;
    std::string description;
    Data value; // null: no data
};

// Results are the codes of vl_result.h, VL_OK being success. An operation that fails
// has changed nothing, not even what it gives back. VARIABLE_IS_NOT_EXIST: there is no
// point of that name.
//
// Names that begin with system_prefix are those of the server's own points, which it
// works out when they are read. They are not among the names of points unless their
// type's name, system_type, is asked for. Whatever would create, write or remove such
// a point gives PARAMETER_ERROR.
class PointService {
public:
    // The catalogue must outlive the service.
    explicit PointService(const TemplateCatalogue& templates,
                          const PointLimits& limits = {});

    // Adds a source of system points, which must outlive the service. Before any other
    // thread uses the service.
    void add_system_points(const SystemPoints& source);

    // Has every change appended to a journal, which must outlive the service. Before any
    // other thread uses the service.
    void keep_in(Journal& its_journal) { journal = &its_journal; }

    // Creates a point with the template's initial value, or no data.
    //   INVAILD_NULL_PARAMETER   a name is empty
    //   PARAMETER_ERROR          the name is longer than max_name_bytes, or has a NUL
    //   ABSTRACT_DATA_TYPE_NULL  there is no such template
    //   OBJECT_ALREADY_EXSIT     the name is in use
    //   CREATE_DATAPOINT_FAI     there are as many points as may be
    vl_result create(const std::string& name, std::string_view template_name);

    // Creates a point SET/MEMBER for each line of `members`, all of one template; the
    // last line may lack its end. All of them or none.
    //   codes of create(), for any of the points
    //   INVAILD_NULL_PARAMETER  also where a line is empty, or there is none
    //   OBJECT_ALREADY_EXSIT    also where two lines are alike
    vl_result create_set(const std::string& set_name, std::string_view template_name,
                         std::string_view members);

    //   VARIABLE_IS_NOT_EXIST
    vl_result remove(const std::string& name);

    // Writes a value, which may be empty where the template lets it be; that is not the
    // same as no data.
    //   VARIABLE_IS_NOT_EXIST
    //   SIZE_IS_NOT_MATCH  it has not the template's size, or is larger than its
    //                      maximum, or the server's
    vl_result set(const std::string& name, Data value);

    //   VARIABLE_IS_NOT_EXIST
    //   NON_EXIST_DATA  it has no data
    vl_result get(const std::string& name, Data& value) const;

    // Everything about a point; to have no data is no failure here.
    //   VARIABLE_IS_NOT_EXIST
    vl_result info(const std::string& name, PointInfo& info) const;

    // Describes a point. One that has not been described, or with the empty text, has
    // the description of its template.
    //   VARIABLE_IS_NOT_EXIST
    //   PARAMETER_ERROR  the text is longer than the limit
    vl_result set_description(const std::string& name, std::string_view description);

    // Names in byte order. A point that is there all the while is named once; one that
    // comes or goes meanwhile may be.
    NameTable names() const;
    NameTable names_without_data() const;

    // Those of the points of one template.
    //   ABSTRACT_DATA_TYPE_NULL  there is no such template, nor a point of it
    vl_result names_of_type(std::string_view type, NameTable& names) const;

    // Changes how many points there may be. Those that are there stay.
    void set_max_points(std::size_t points) { max_points = points; }

    // How many points there are.
    std::size_t size() const { return count; }

    // Calls visit for every point as it is at one moment, in no order. Others go on
    // meanwhile: what they change is kept for visit until it has got there. No lock
    // that they need is held during visit, which must not call this function or
    // restore(); what it throws passes on. Two such calls take turns.
    void visit_moment(const std::function<void(const PointImage&)>& visit);

    // Makes the images the points, in place of those there are. All of it or, on
    // a failure, nothing.
    //   codes of create(), for any of the points
    //   SIZE_IS_NOT_MATCH  as set()
    //   PARAMETER_ERROR    also for too long a description
    // problem: what is wrong then, a phrase.
    vl_result restore(std::vector<PointImage> images, std::string& problem);

private:
    // Fewer locks than the thread sanitizer can follow (64) when all are held.
    static constexpr std::size_t shard_count = 32;

    static std::size_t shard_index(const std::string& name);
    static vl_result check_new_name(const std::string& name);
    vl_result create_all(const std::vector<std::string>& names,
                         std::string_view template_name);
    vl_result insert(Points fresh);
    vl_result restore_one(PointImage& image, Points& to) const;
    bool fits(const Template& type, const Data& value) const;
    std::vector<PointShard::WriteLock> lock_all();

    template <class Use>
    vl_result look_at(const std::string& name, Use use) const;
    template <class Change>
    vl_result change(const std::string& name, Change change);
    template <class Wanted>
    NameTable collect(Wanted wanted) const;

    // Tells the journal of a change, before it is made: that may fail for lack of memory.
    void record(const Points::value_type& entry, const Data& value,
                const std::string& description) const;

    const TemplateCatalogue& templates;
    const PointLimits limits;
    std::atomic<std::size_t> max_points; // which may change, instead of that in limits
    Journal* journal = nullptr;          // none
    std::vector<const SystemPoints*> system_points;
    std::array<PointShard, shard_count> shards;
    std::atomic<std::size_t> count{0};
    std::mutex visiting; // held by the visit to a moment, and by who replaces all points
    std::uint64_t moment = 0; // the last one
};

} // namespace velmo::model

#endif
