// Registration with a naming service elsewhere.
#ifndef VELMO_SERVER_NAMING_REGISTRAR_H
#define VELMO_SERVER_NAMING_REGISTRAR_H

#include <stdexcept>
#include <string>
#include <vector>

#include "orb/corba.h"
#include "server/naming/layout.h"

namespace velmo::naming {

class RegistrationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// No call to the naming service takes longer than a few seconds, and the first one
// that does is the last one.
class Registrar {
public:
    // Binds below the context that the URL denotes (a corbaname's too), creates
    // contexts that are missing and replaces what a former run has left. Throws
    // RegistrationError.
    Registrar(CORBA::ORB_ptr orb, const std::string& url, std::vector<Binding> bindings);

    // Removes the bindings, but not those that another server has replaced
    // meanwhile; contexts stay. Problems are logged.
    void unbind();

private:
    void connect(const std::string& url);
    void bind(const Binding& binding);
    void create_contexts(const CosNaming::Name& name);
    CosNaming::Name full_name(const Binding& binding) const;

    CORBA::ORB_var orb;
    CosNaming::NamingContext_var root;
    CosNaming::Name prefix; // where the URL points to below the root
    const std::vector<Binding> bindings;
};

} // namespace velmo::naming

#endif
