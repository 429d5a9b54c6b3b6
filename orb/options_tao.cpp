#include "orb/options_tao.h"

#include <poll.h>

#include <atomic>
#include <cerrno>
#include <memory>
#include <utility>

#include <ace/Event_Handler.h>
#include <ace/Flag_Manip.h>
#include <ace/Service_Config.h>
#include <tao/ORB_Core.h>
#include <tao/ORB_Time_Policy.h>
#include <tao/Resume_Handle.h>
#include <tao/Synch_Reply_Dispatcher.h>
#include <tao/Transport.h>
#include <tao/Wait_Strategy.h>
#include <tao/default_client.h>

namespace velmo::orb {

namespace {

// Of calls whose connections have ended before the answer.
std::atomic<unsigned> broken_calls{0};

// The calling thread waits on its own connection for the answer. TAO's strategy of that
// kind fails the call when a signal is delivered to the thread meanwhile, and takes an
// answer of a status that there is not for a result, whatever that then is.
class WaitOnConnection : public TAO_Wait_Strategy {
public:
    explicit WaitOnConnection(TAO_Transport* transport) : TAO_Wait_Strategy(transport) {}

    // Begins a call. After a failure the call is sent over another connection.
    int sending_request(TAO_ORB_Core* core, TAO_Message_Semantics semantics) override
    {
        if (!std::exchange(prepared, true)) // for sending to give up in time
            ACE::set_flags(handle(), ACE_NONBLOCK);
        // The server may have restarted: that costs one call, not one for each connection.
        const unsigned broken = broken_calls;
        if (std::exchange(known_broken, broken) != broken && await_input(0) != 0) {
            errno = EPIPE;
            return -1;
        }
        return TAO_Wait_Strategy::sending_request(core, semantics);
    }

    int wait(ACE_Time_Value* left, TAO_Synch_Reply_Dispatcher& answer) override
    {
        TAO::ORB_Countdown_Time countdown(left);
        answer.state_changed(TAO_LF_Event::LFS_ACTIVE,
                             transport_->orb_core()->leader_follower());
        TAO_Resume_Handle resume;
        bool good = true;
        while (good && answer.keep_waiting()) {
            good = readable(left, countdown);
            countdown.update();
            good = good && transport_->handle_input(resume, left) != -1;
        }
        if (good && answer.reply_status() > GIOP::NEEDS_ADDRESSING_MODE) {
            good = false;
            errno = EPROTO;
        }
        if (!good) {
            const int reason = errno;
            broken_calls += reason != ETIME;
            transport_->close_connection();
            errno = reason;
        }
        return good && answer.successful() ? 0 : -1;
    }

    int register_handler() override { return 0; }
    bool non_blocking() const override { return false; }
    bool can_process_upcalls() const override { return true; }

private:
    ACE_HANDLE handle() const { return transport_->event_handler_i()->get_handle(); }

    // As poll() does; milliseconds -1: for ever.
    int await_input(int milliseconds) const
    {
        pollfd input{handle(), POLLIN, 0};
        return poll(&input, 1, milliseconds);
    }

    bool readable(const ACE_Time_Value* left, TAO::ORB_Countdown_Time& countdown) const
    {
        int ready;
        do {
            countdown.update();
            ready = await_input(left ? static_cast<int>(left->msec()) : -1);
        } while (ready < 0 && errno == EINTR);
        if (ready == 0)
            errno = ETIME;
        return ready > 0;
    }

    // There is one call at a time.
    bool prepared = false;
    unsigned known_broken = broken_calls;
};

class ClientStrategies : public TAO_Default_Client_Strategy_Factory {
public:
    TAO_Wait_Strategy* create_wait_strategy(TAO_Transport* transport) override
    {
        std::unique_ptr<TAO_Wait_Strategy> chosen(
            TAO_Default_Client_Strategy_Factory::create_wait_strategy(transport));
        if (!chosen->non_blocking()) // by reading
            chosen = std::make_unique<WaitOnConnection>(transport);
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
            "static Client_Strategy_Factory '-ORBTransportMuxStrategy EXCLUSIVE "
            "-ORBWaitStrategy RW -ORBConnectStrategy Blocked'"};
}

} // namespace velmo::orb
