// A client of velmod, on the bare broker.
#ifndef VELMO_TESTS_SERVER_CLIENT_H
#define VELMO_TESTS_SERVER_CLIENT_H

#include <string>

#include "VelmoC.h"
#include "Velmo_serverC.h"
#include "idl/service_keys.h"
#include "orb/client.h"
#include "tests/support/eventually.h"
#include "util/naming_name.h"

namespace velmo::tests {

using Velmo::DT_PORT_SVC::Port_Factory_var;

inline CORBA::ORB_ptr client_orb()
{
    static const CORBA::ORB_var orb = orb::join_or_make(orb::Milliseconds(0));
    return orb.in();
}

inline CosNaming::NamingContext_var naming_context(const std::string& url)
{
    CORBA::Object_var object = client_orb()->string_to_object(url.c_str());
    return CosNaming::NamingContext_var(CosNaming::NamingContext::_narrow(object.in()));
}

inline CORBA::Object_var resolve(const std::string& url, const std::string& path)
{
    CosNaming::NamingContext_var root = naming_context(url);
    return CORBA::Object_var(root->resolve(util::name_of_path(path)));
}

inline bool is_bound(const std::string& url, const std::string& path)
{
    try {
        resolve(url, path);
        return true;
    } catch (const CosNaming::NamingContext::NotFound&) {
        return false;
    }
}

// The port service of a realm ("" or "REALM/").
inline Port_Factory_var port_service(const std::string& url, const std::string& realm = "")
{
    CORBA::Object_var object = resolve(url, realm + keys::port_service);
    return Port_Factory_var(Velmo::DT_PORT_SVC::Port_Factory::_narrow(object.in()));
}

inline Velmo::DATA_BUFFER buffer(const std::string& text)
{
    Velmo::DATA_BUFFER result;
    result.length(static_cast<CORBA::ULong>(text.size()));
    text.copy(reinterpret_cast<char*>(result.get_buffer()), text.size());
    return result;
}

inline std::string text(const Velmo::DATA_BUFFER& data)
{
    return std::string(reinterpret_cast<const char*>(data.get_buffer()), data.length());
}

// Whether question() is answered with true in the end; connections that broke with the
// server cost a failed call each.
template <class Question>
bool eventually_answered(Question question)
{
    return eventually([&] {
        try {
            return question();
        } catch (const CORBA::SystemException&) {
            return false;
        }
    });
}

} // namespace velmo::tests

#endif
