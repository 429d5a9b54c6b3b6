// Registration with a naming service elsewhere.
#ifndef VELMO_SERVER_NAMING_REGISTRAR_H
#define VELMO_SERVER_NAMING_REGISTRAR_H

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "orb/client.h"
#include "server/naming/layout.h"

namespace velmo::naming {

class RegistrationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Keeps the bindings there: every few seconds some of them are looked up, and when one is
// missing, since the naming service has lost it or has begun anew, those that are missing
// are bound again. No call to the naming service takes longer than a few seconds.
class Registrar {
public:
    // Binds below the context that the URL denotes (a corbaname's too), creates
    // contexts that are missing and replaces what a former run has left. Throws
    // RegistrationError.
    Registrar(CORBA::ORB_ptr orb, const std::string& url, std::vector<Binding> bindings);

    // Ends the watch. One thread uses it, also for unbind().
    ~Registrar();
    Registrar(const Registrar&) = delete;
    Registrar& operator=(const Registrar&) = delete;

    // Removes the bindings, but not those that another server has replaced
    // meanwhile; contexts stay. They are not kept from now on. Problems are logged.
    // Blocks for little more than a second at most.
    void unbind();

private:
    void connect(orb::Milliseconds timeout);
    CosNaming::Name full_name(const Binding& binding) const;
    void create_contexts(const CosNaming::Name& name);
    void watch();
    void stop_watching();
    void look();
    bool all_there(); // as far as it looks at a time
    void restore();
    void withdraw();

    CORBA::ORB_var orb;
    const std::string url;
    const std::vector<Binding> bindings;
    CosNaming::NamingContext_var root; // the watch's own while that runs, as the next three
    CosNaming::Name prefix;            // where the URL points to below the root
    bool in_touch = false;
    std::size_t next = 0; // to be looked up

    std::mutex mutex;
    std::condition_variable wake;
    bool stopping = false;
    std::thread watcher;
};

} // namespace velmo::naming

#endif
