#include "tests/support/naming_stand_in.h"

#include <algorithm>
#include <atomic>
#include <memory>

#include "vlNaming_Client.h"

namespace velmo::tests {

namespace {

std::atomic<int> exits{0};
std::atomic<void (*)()> exit_action{nullptr};

std::string shown(const char* text)
{
    return text ? text : "(null)";
}

} // namespace

// Asked even while static objects are being destroyed.
NamingStandIn& NamingStandIn::instance()
{
    static NamingStandIn& only =
        *std::unique_ptr<NamingStandIn>(new NamingStandIn).release();
    return only;
}

void NamingStandIn::reset()
{
    std::lock_guard<std::mutex> guard(mutex);
    bound.clear();
    resolver = nullptr;
    reachable.clear();
    asked.clear();
    checked.clear();
}

void NamingStandIn::bind(const std::string& server, const std::string& name,
                         CORBA::Object_ptr object)
{
    std::lock_guard<std::mutex> guard(mutex);
    bound[Lookup(server, name)] = CORBA::Object::_duplicate(object);
}

void NamingStandIn::unbind(const std::string& server, const std::string& name)
{
    std::lock_guard<std::mutex> guard(mutex);
    bound.erase(Lookup(server, name));
}

void NamingStandIn::resolve_with(Resolver new_resolver)
{
    std::lock_guard<std::mutex> guard(mutex);
    resolver = std::move(new_resolver);
}

void NamingStandIn::set_reachable(std::vector<std::string> servers)
{
    std::lock_guard<std::mutex> guard(mutex);
    reachable = std::move(servers);
}

std::vector<NamingStandIn::Lookup> NamingStandIn::lookups() const
{
    std::lock_guard<std::mutex> guard(mutex);
    return asked;
}

std::size_t NamingStandIn::lookups_of(const std::string& name) const
{
    std::lock_guard<std::mutex> guard(mutex);
    return static_cast<std::size_t>(
        std::count_if(asked.begin(), asked.end(),
                      [&name](const Lookup& lookup) { return lookup.second == name; }));
}

std::vector<std::string> NamingStandIn::connection_checks() const
{
    std::lock_guard<std::mutex> guard(mutex);
    return checked;
}

CORBA::Object_var NamingStandIn::look_up(const char* server, const char* name)
{
    const Lookup lookup(shown(server), shown(name));
    Resolver current;
    {
        std::lock_guard<std::mutex> guard(mutex);
        asked.push_back(lookup);
        if (!resolver) {
            const auto found = bound.find(lookup);
            return found == bound.end() ? CORBA::Object_var(CORBA::Object::_nil())
                                        : found->second;
        }
        current = resolver;
    }
    return current(lookup.first, lookup.second);
}

bool NamingStandIn::check_connection(const char* server)
{
    std::lock_guard<std::mutex> guard(mutex);
    checked.push_back(shown(server));
    return std::count(reachable.begin(), reachable.end(), shown(server)) > 0;
}

int naming_exits()
{
    return exits;
}

void on_naming_exit(void (*action)())
{
    exit_action = action;
}

} // namespace velmo::tests

using velmo::tests::NamingStandIn;

vlNaming_Client* vlNaming_Client::GetInstance()
{
    static vlNaming_Client only;
    return &only;
}

void vlNaming_Client::ExitInstance()
{
    ++velmo::tests::exits;
    if (const auto action = velmo::tests::exit_action.load())
        action();
}

CORBA::Object_var vlNaming_Client::GetReferenceWithServerName(const char* server,
                                                              const char* name)
{
    return NamingStandIn::instance().look_up(server, name);
}

const char* vlNaming_Client::isConnect(const char* server)
{
    return NamingStandIn::instance().check_connection(server) ? "answers" : nullptr;
}
