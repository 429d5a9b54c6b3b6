// The naming client's hold on the ORB, and the naming services known through it.
#ifndef VELMO_UTIL_NAMING_SESSION_H
#define VELMO_UTIL_NAMING_SESSION_H

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "orb/client.h"
#include "util/naming_service.h"
#include "util/settings.h"

namespace velmo::util {

// Safe from any thread.
class NamingSession {
public:
    // Joins the process's ORB or makes one. Throws CORBA::Exception.
    explicit NamingSession(Deadline::Milliseconds connect_timeout);

    CORBA::ORB_ptr orb() const { return process_orb.in(); }

    // Whether somebody has destroyed the ORB meanwhile.
    bool orb_is_gone() const;

    std::shared_ptr<NamingService> service_of(const settings::Server& server);

private:
    const CORBA::ORB_var process_orb;
    std::mutex mutex;                                               // guards services
    std::map<std::string, std::shared_ptr<NamingService>> services; // by server name
};

} // namespace velmo::util

#endif
