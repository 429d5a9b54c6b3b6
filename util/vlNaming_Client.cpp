#include "vlNaming_Client.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "Velmo_serverC.h"
#include "idl/nil_references.h"
#include "idl/service_keys.h"
#include "util/fork.h"
#include "util/naming_session.h"
#include "util/settings.h"

namespace {

using velmo::settings::Server;
using velmo::util::Deadline;
using velmo::util::NamingService;
using velmo::util::NamingSession;

// Never destroyed: calls may be under way at any time.
struct State {
    std::mutex mutex; // guards what follows
    std::shared_ptr<NamingSession> session;
    bool process_ending = false;
    std::set<std::string> urls; // handed out as pointers
};

State& state()
{
    static State* const forever = std::make_unique<State>().release();
    return *forever;
}

// Registered once the first ORB is there: ACE's and the broker's own clean-up come
// later, and find no reference left to release.
void end_at_exit()
{
    if (velmo::util::Fork::is_cut_off())
        return;
    {
        std::lock_guard<std::mutex> guard(state().mutex);
        state().process_ending = true;
    }
    vlNaming_Client::ExitInstance();
}

// A broker may let connecting outlast a call's own time-out, so it must not take longer
// than any naming service may take to answer.
Deadline::Milliseconds connect_timeout(const velmo::settings::Settings& settings)
{
    Deadline::Milliseconds limit = settings.connect_timeout().value;
    for (const Server& server : settings.servers()) {
        const Deadline::Milliseconds naming = server.naming_timeout.value;
        if (limit.count() > 0 && naming.count() > 0)
            limit = std::min(limit, naming);
    }
    return limit;
}

// Null at the end of the process. Throws CORBA::Exception.
std::shared_ptr<NamingSession> session_in_use(const velmo::settings::Settings& settings)
{
    std::lock_guard<std::mutex> guard(state().mutex);
    if (!state().session && !state().process_ending) {
        state().session = std::make_shared<NamingSession>(connect_timeout(settings));
        static const int registered = std::atexit(end_at_exit);
        static_cast<void>(registered);
    }
    return state().session;
}

// Ends a session, unless another has taken its place.
void end_session(const std::shared_ptr<NamingSession>& session)
{
    std::lock_guard<std::mutex> guard(state().mutex);
    if (state().session == session)
        state().session.reset();
}

// Puts a question to a server's naming service, in a session with a living ORB;
// false when there is no answer. question(session, server) tells whether it got one.
template <class Question>
bool ask(const char* server_name, Question question)
{
    if (velmo::util::Fork::is_cut_off())
        return false;
    velmo::util::Fork::cut_off_children();
    try {
        const auto settings = velmo::settings::current();
        const Server* server = settings->find(server_name);
        if (!server)
            return false;
        for (int attempt = 1; attempt <= 2; ++attempt) {
            const std::shared_ptr<NamingSession> session = session_in_use(*settings);
            if (!session)
                return false;
            if (question(*session, *server))
                return true;
            // The application may have destroyed the ORB that it shares with us.
            if (!session->orb_is_gone())
                return false;
            end_session(session);
        }
    } catch (const CORBA::Exception&) {
    } catch (const std::exception&) {
    }
    return false;
}

// Nil when the object is not of the interface.
template <class Interface>
CORBA::Object_ptr narrow(CORBA::ORB_ptr orb, CORBA::Object_ptr object,
                         Deadline::Milliseconds query_timeout,
                         Deadline::Milliseconds call_timeout)
{
    return velmo::orb::narrow<Interface>(orb, object, query_timeout, call_timeout);
}

using Narrow = decltype(&narrow<Velmo::VelmoServiceManager>);

CORBA::Object_ptr narrow_nothing(CORBA::ORB_ptr orb, CORBA::Object_ptr object,
                                 Deadline::Milliseconds,
                                 Deadline::Milliseconds call_timeout)
{
    return velmo::orb::with_call_timeout(orb, object, call_timeout);
}

// How to check that what is bound under a name is what its users expect.
Narrow narrowing_for(const char* name)
{
    static const struct {
        const char* key;
        Narrow narrowing;
    } services[] = {
        {velmo::keys::contention_service, narrow<Velmo::HEART_BIT::contender_server>},
        {velmo::keys::data_template_point_service,
         narrow<Velmo::DT_POINT_SVC::DT_Point_Factory>},
        {velmo::keys::data_template_service, narrow<Velmo::SYSTEM_SVC::DT_manager>},
        {velmo::keys::port_service, narrow<Velmo::DT_PORT_SVC::Port_Factory>},
        {velmo::keys::service_manager, narrow<Velmo::VelmoServiceManager>},
    };
    const char* last_slash = std::strrchr(name, '/');
    const char* key = last_slash ? last_slash + 1 : name;
    for (const auto& service : services) {
        if (std::strcmp(service.key, key) == 0)
            return service.narrowing;
    }
    return narrow_nothing;
}

} // namespace

vlNaming_Client* vlNaming_Client::GetInstance()
{
    static vlNaming_Client client;
    velmo::idl::make_nil_references();
    return &client;
}

void vlNaming_Client::ExitInstance()
{
    if (velmo::util::Fork::is_cut_off())
        return;
    std::shared_ptr<NamingSession> ended; // destroyed without the lock
    std::lock_guard<std::mutex> guard(state().mutex);
    ended.swap(state().session);
}

CORBA::Object_var vlNaming_Client::GetReferenceWithServerName(const char* server,
                                                              const char* name)
{
    CORBA::Object_var found;
    if (!name)
        return found;
    ask(server, [&](NamingSession& session, const Server& known) {
        const auto accept = [&](CORBA::Object_ptr object, Deadline::Milliseconds timeout) {
            return narrowing_for(name)(session.orb(), object, timeout,
                                       known.call_timeout.value);
        };
        found = session.service_of(known)->resolve(name, accept);
        return !CORBA::is_nil(found.in());
    });
    return found;
}

const char* vlNaming_Client::isConnect(const char* server)
{
    const char* url = nullptr;
    ask(server, [&](NamingSession& session, const Server& known) {
        const auto service = session.service_of(known);
        if (!service->answers())
            return false;
        std::lock_guard<std::mutex> guard(state().mutex);
        url = state().urls.insert(service->url()).first->c_str();
        return true;
    });
    return url;
}
