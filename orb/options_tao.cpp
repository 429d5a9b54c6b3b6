#include "orb/options_tao.h"

#include <memory>
#include <mutex>

#include <ace/Service_Config.h>
#include <tao/Exclusive_TMS.h>
#include <tao/Transport.h>
#include <tao/default_client.h>

namespace velmo::orb {

namespace {

// A connection that one call at a time has. TAO would keep it when a call is given up: but
// its answer may come late, or never where the host is cut off, and a server with a thread
// for each connection does not look at the next call before. Nor does TAO see to it that
// the answer does not come at the very moment, on another thread.
class OwnConnection : public TAO_Exclusive_TMS {
public:
    explicit OwnConnection(TAO_Transport* transport) : TAO_Exclusive_TMS(transport) {}

    // Of a call that was given up; with no effect after its answer.
    int unbind_dispatcher(CORBA::ULong request) override
    {
        {
            std::lock_guard<std::mutex> guard(mutex);
            if (TAO_Exclusive_TMS::unbind_dispatcher(request) != 0)
                return -1;
        }
        transport_->close_connection();
        return 0;
    }

    int dispatch_reply(TAO_Pluggable_Reply_Params& reply) override
    {
        std::lock_guard<std::mutex> guard(mutex);
        return TAO_Exclusive_TMS::dispatch_reply(reply);
    }

    void connection_closed() override
    {
        std::lock_guard<std::mutex> guard(mutex);
        TAO_Exclusive_TMS::connection_closed();
    }

private:
    std::mutex mutex;
};

class ClientStrategies : public TAO_Default_Client_Strategy_Factory {
public:
    TAO_Transport_Mux_Strategy*
    create_transport_mux_strategy(TAO_Transport* transport) override
    {
        std::unique_ptr<TAO_Transport_Mux_Strategy> chosen(
            TAO_Default_Client_Strategy_Factory::create_transport_mux_strategy(transport));
        if (dynamic_cast<TAO_Exclusive_TMS*>(chosen.get()))
            chosen = std::make_unique<OwnConnection>(transport);
        return chosen.release(); // the transport's
    }
};

ACE_Service_Object* make_strategies(ACE_Service_Object_Exterminator* end)
{
    if (end)
        *end = [](void* object) {
            const std::unique_ptr<ACE_Service_Object> strategies(
                static_cast<ACE_Service_Object*>(object));
        };
    return std::make_unique<ClientStrategies>().release(); // the service's
}

// Takes the place of TAO's own, which is left out where there is one of its name.
const ACE_Static_Svc_Descriptor strategies{
    "Client_Strategy_Factory", ACE_SVC_OBJ_T, make_strategies,
    ACE_Service_Type::DELETE_THIS | ACE_Service_Type::DELETE_OBJ, 0};

} // namespace

std::vector<std::string> connection_options()
{
    ACE_Service_Config::process_directive(strategies);
    return {"-ORBSvcConfDirective",
            "static Client_Strategy_Factory '-ORBTransportMuxStrategy EXCLUSIVE'"};
}

} // namespace velmo::orb
