#include "util/naming_session.h"

namespace velmo::util {

NamingSession::NamingSession(Deadline::Milliseconds connect_timeout)
    : process_orb(orb::join_or_make(connect_timeout))
{
}

bool NamingSession::orb_is_gone() const
{
    try {
        CORBA::Object_var unused = orb()->string_to_object("corbaloc::127.0.0.1/x");
        return false;
    } catch (const CORBA::Exception&) {
        return true;
    }
}

std::shared_ptr<NamingService> NamingSession::service_of(const settings::Server& server)
{
    std::lock_guard<std::mutex> guard(mutex);
    std::shared_ptr<NamingService>& service = services[server.name];
    const std::string& url = server.naming_url.value;
    const Deadline::Milliseconds timeout = server.naming_timeout.value;
    if (!service || service->url() != url || service->timeout() != timeout)
        service = std::make_shared<NamingService>(orb(), url, timeout);
    return service;
}

} // namespace velmo::util
