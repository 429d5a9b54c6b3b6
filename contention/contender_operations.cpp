// Contenders for the master and slave roles of a server.

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/data.h"
#include "api/services.h"

using velmo::api::call;
using velmo::api::ContentionService;
using velmo::api::fails_with;
using velmo::api::OutgoingData;
using velmo::orb::text;

int Velmo_API_Manager::regist_contender(const char* group, const char* contender,
                                        int priority, const void* data, int size,
                                        const char* role, const char* server_name,
                                        const char* releam)
{
    static constexpr auto rule = fails_with(155);
    // Data without a role do not travel. They are copied before the reference is
    // asked for.
    const bool travel = data && role;
    return call<ContentionService>(
        rule, server_name, releam,
        [&] { return OutgoingData(travel ? data : nullptr, travel ? size : 0); },
        [&](auto& contention, const OutgoingData& state) -> int {
            return contention.regist_contender(text(group), text(contender),
                                               state.sequence(), text(role), priority);
        });
}

// The third argument is for the signature alone: the server knows the contender.
int Velmo_API_Manager::update_contender(const char* group, const char* contender,
                                        const char* /*unused*/, const char* server_name,
                                        const char* releam)
{
    static constexpr auto rule = fails_with(156);
    return call<ContentionService>(rule, server_name, releam, [&](auto& contention) {
        return contention.update_contender(text(group), text(contender));
    });
}

// The third argument is for the signature alone, as that of update_contender().
int Velmo_API_Manager::out_contend(const char* group, const char* contender,
                                   const char* /*unused*/, const char* server_name,
                                   const char* releam)
{
    static constexpr auto rule = fails_with(157);
    return call<ContentionService>(rule, server_name, releam, [&](auto& contention) {
        return contention.out_contend(text(group), text(contender));
    });
}
