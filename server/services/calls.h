// What every call of a client has in common.
#ifndef VELMO_SERVER_SERVICES_CALLS_H
#define VELMO_SERVER_SERVICES_CALLS_H

#include <cstddef>
#include <new>
#include <type_traits>

#include "orb/skeletons.h"
#include "server/journal/group_commit.h"
#include "server/metrics/call_metrics.h"
#include "server/services/changing_operations.h"
#include "vl_result.h"

namespace velmo::services {

// Servants hand their operations to it, as functions that give a result code or, where
// the operation gives one, a text. It measures them, refuses data that is too large, turns
// a lack of memory into a result code and, where changes are kept on the disk, answers when
// they are there. Any function from any thread.
class Calls {
public:
    // metrics, journal: null for none; must outlive this. max_data: bytes of one call's
    // data.
    Calls(metrics::CallMetrics* call_metrics, std::size_t max_data,
          journal::GroupCommit* its_journal = nullptr)
        : metrics(call_metrics), max_message(max_data), journal(its_journal)
    {
    }

    //   MEMORY_ALLOCATION_FAI
    //   OBJECT_PATCH_FAI  changes are kept, and this one cannot be; if the disk fails just
    //                     now, it may be kept nevertheless
    template <class Body>
    auto operator()(metrics::Operation operation, Body body) const
    {
        metrics::Measurement measurement(metrics, operation);
        const auto result = [&] {
            if constexpr (std::is_pointer_v<decltype(body())>)
                return body();
            else
                return code_of(operation, body);
        }();
        measurement.ended(failed(result) ? metrics::Outcome::code
                                         : metrics::Outcome::success);
        return result;
    }

    // For an operation with data from the client.
    //   SIZE_IS_NOT_MATCH  there is more than may be
    template <class Body>
    CORBA::Long operator()(metrics::Operation operation, const Velmo::DATA_BUFFER& data,
                           Body body) const
    {
        return (*this)(operation, [&]() -> CORBA::Long {
            return data.length() > max_message ? SIZE_IS_NOT_MATCH : body();
        });
    }

private:
    template <class Body>
    CORBA::Long code_of(metrics::Operation operation, Body& body) const
    {
        if (journal)
            journal->forget();
        const bool kept = journal && changes(operation);
        if (const vl_result taken = kept ? journal->admit() : VL_OK; taken != VL_OK)
            return taken;
        try {
            const CORBA::Long result = body();
            return kept && result == VL_OK ? journal->confirm() : result;
        } catch (const std::bad_alloc&) {
            return MEMORY_ALLOCATION_FAI;
        }
    }

    static bool failed(CORBA::Long result) { return result != VL_OK; }
    static bool failed(const char*) { return false; }

    metrics::CallMetrics* const metrics;
    const std::size_t max_message;
    journal::GroupCommit* const journal;
};

} // namespace velmo::services

#endif
