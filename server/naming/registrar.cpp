#include "server/naming/registrar.h"

#include "CQuilp.h"
#include "orb/client.h"
#include "util/naming_name.h"

namespace velmo::naming {

namespace {

constexpr orb::Milliseconds bind_timeout{3000};
constexpr orb::Milliseconds unbind_timeout{500}; // while somebody waits for the end

} // namespace

Registrar::Registrar(CORBA::ORB_ptr its_orb, const std::string& url,
                     std::vector<Binding> its_bindings)
    : orb(CORBA::ORB::_duplicate(its_orb)), bindings(std::move(its_bindings))
{
    try {
        connect(url);
        for (const Binding& binding : bindings)
            bind(binding);
    } catch (const CORBA::Exception& error) {
        throw RegistrationError(orb::describe(error));
    }
}

void Registrar::connect(const std::string& url)
{
    const util::NamingUrl place(url);
    prefix = place.name;
    CORBA::Object_var object = orb->string_to_object(place.object_url.c_str());
    if (CORBA::is_nil(object.in()))
        throw RegistrationError("the URL denotes nothing");
    root = orb::narrow<CosNaming::NamingContext>(orb.in(), object.in(), bind_timeout,
                                                 bind_timeout);
    if (CORBA::is_nil(root.in()))
        throw RegistrationError("what answers there is no naming service");
}

CosNaming::Name Registrar::full_name(const Binding& binding) const
{
    const CosNaming::Name path = util::name_of_path(binding.path);
    CosNaming::Name name = prefix;
    name.length(prefix.length() + path.length());
    for (CORBA::ULong i = 0; i < path.length(); ++i)
        name[prefix.length() + i] = path[i];
    return name;
}

void Registrar::bind(const Binding& binding)
{
    const CosNaming::Name name = full_name(binding);
    create_contexts(name);
    root->rebind(name, binding.object.in());
}

void Registrar::create_contexts(const CosNaming::Name& name)
{
    for (CORBA::ULong length = 1; length < name.length(); ++length) {
        CosNaming::Name context = name;
        context.length(length);
        try {
            CosNaming::NamingContext_var unused = root->bind_new_context(context);
        } catch (const CosNaming::NamingContext::AlreadyBound&) {
            // It is there, or an object is: then the binding below it fails.
        }
    }
}

void Registrar::unbind()
{
    try {
        CORBA::Object_var hasty =
            orb::with_call_timeout(orb.in(), root.in(), unbind_timeout);
        CosNaming::NamingContext_var context =
            CosNaming::NamingContext::_unchecked_narrow(hasty.in());
        orb::reapply_call_timeout(context.in(), unbind_timeout);
        for (const Binding& binding : bindings) {
            const CosNaming::Name name = full_name(binding);
            try {
                CORBA::Object_var bound = context->resolve(name);
                if (!CORBA::is_nil(bound.in()) &&
                    bound->_is_equivalent(binding.object.in()))
                    context->unbind(name);
            } catch (const CosNaming::NamingContext::NotFound&) {
                // Somebody has removed it.
            }
        }
    } catch (const CORBA::Exception& error) {
        CQuilp::instance()->vl_log("velmod: cannot withdraw from the naming service: %s",
                                   orb::describe(error).c_str());
    }
}

} // namespace velmo::naming
