// One server's naming service.
#ifndef VELMO_UTIL_NAMING_SERVICE_H
#define VELMO_UTIL_NAMING_SERVICE_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "orb/client.h"
#include "util/deadline.h"

namespace velmo::util {

// Keeps the root context and connects anew when it fails; of many callers that
// notice the same failure one connects and the others share the outcome. After a
// time-out the service rests: for a while, longer each time, it is not asked.
//
// Safe from any thread. What a broker raises stays inside.
class NamingService {
public:
    NamingService(CORBA::ORB_ptr orb, std::string url, Deadline::Milliseconds timeout);

    const std::string& url() const { return service_url; }
    Deadline::Milliseconds timeout() const { return limit; }

    // Whether it answers.
    bool answers();

    // What is bound under a path ("KEY", "/REALM/KEY") below the root, as accept()
    // makes of it; nil when there is nothing, or no answer in time. accept() may
    // ask the object's server, within the time that it is told; what it raises
    // counts as no answer.
    using Accept =
        std::function<CORBA::Object_ptr(CORBA::Object_ptr, Deadline::Milliseconds)>;
    CORBA::Object_ptr resolve(const std::string& path, const Accept& accept);

private:
    struct Root {
        CosNaming::NamingContext_var context; // nil when connecting failed
        unsigned long generation = 0;         // counts the attempts to connect
    };

    template <class Question>
    bool ask(const Deadline& deadline, Question question);
    Root root(const Deadline& deadline);
    Root renewed(unsigned long failed_generation, const Deadline& deadline);
    CosNaming::NamingContext_ptr connect(const Deadline& deadline);
    CosNaming::NamingContext_ptr hasty(const Root& from, const Deadline& deadline);

    bool resting();
    void rest();
    void answered();

    const CORBA::ORB_var orb;
    const std::string service_url;
    const Deadline::Milliseconds limit;

    std::mutex mutex; // guards what follows
    std::condition_variable connected;
    bool connecting = false;
    Root known;
    Deadline::Milliseconds pause{0}; // the last rest's length
    Deadline::Clock::time_point rests_until{};
};

} // namespace velmo::util

#endif
