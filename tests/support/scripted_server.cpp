#include "tests/support/scripted_server.h"

#include <stdexcept>

#include "idl/service_keys.h"

namespace velmo::tests {

namespace {

std::string hexadecimal(const std::string& bytes)
{
    const char* const digits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += {digits[byte >> 4], digits[byte & 15]};
    }
    return text;
}

std::string bytes_of(std::uint16_t number)
{
    return std::string(reinterpret_cast<const char*>(&number), sizeof number);
}

} // namespace

std::string service_name(const std::string& realm, const std::string& key)
{
    return realm.empty() || key == keys::service_manager ? key : "/" + realm + "/" + key;
}

// In the string of a reference the port follows the host's name, in this host's byte
// order: it is a reference of this host's.
CORBA::Object_var with_port(const CORBA::Object_var& object, std::uint16_t port)
{
    const orb::Endpoint endpoint = orb::published_endpoint(test_orb(), object.in());
    const std::string host = hexadecimal(endpoint.host + '\0');
    const CORBA::String_var original = test_orb()->object_to_string(object.in());
    std::string ior = original.in();
    const std::size_t found = ior.find(host + hexadecimal(bytes_of(endpoint.port)));
    if (found == std::string::npos)
        throw std::runtime_error("no address in " + ior);
    ior.replace(found + host.size(), 4, hexadecimal(bytes_of(port)));
    return CORBA::Object_var(test_orb()->string_to_object(ior.c_str()));
}

ScriptedServer::ScriptedServer(Reach reach)
    : script(std::make_shared<Script>()), ports(script), points(script), templates(script),
      contention(script), manager(script)
{
    if (reach == Reach::over_the_wire)
        reconnect();
}

void ScriptedServer::reconnect()
{
    const CORBA::Object_var local = ports.reference();
    relay.reset();
    relay = std::make_unique<Relay>(orb::published_endpoint(test_orb(), local.in()).port);
}

CORBA::Object_var ScriptedServer::object(const std::string& key) const
{
    if (key == keys::port_service)
        return ports.reference();
    if (key == keys::data_template_point_service)
        return points.reference();
    if (key == keys::data_template_service)
        return templates.reference();
    if (key == keys::contention_service)
        return contention.reference();
    return manager.reference();
}

CORBA::Object_var ScriptedServer::reference(const std::string& key) const
{
    return relay ? with_port(object(key), relay->port()) : object(key);
}

void ScriptedServer::withdraw()
{
    ports.withdraw();
    points.withdraw();
    templates.withdraw();
    contention.withdraw();
    manager.withdraw();
}

void ScriptedServer::bind(const std::string& server, const std::string& realm) const
{
    for (const char* key : keys::all)
        NamingStandIn::instance().bind(server, service_name(realm, key),
                                       reference(key).in());
}

void ScriptedServer::unbind(const std::string& server, const std::string& realm)
{
    for (const char* key : keys::all)
        NamingStandIn::instance().unbind(server, service_name(realm, key));
}

} // namespace velmo::tests
