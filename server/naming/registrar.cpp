#include "server/naming/registrar.h"

#include <algorithm>

#include "server/log.h"
#include "util/naming_name.h"

namespace velmo::naming {

namespace {

constexpr orb::Milliseconds bind_timeout{3000};
constexpr orb::Milliseconds watch_timeout{500}; // the server's end waits for it
constexpr std::chrono::seconds watch_interval{2};
constexpr std::size_t names_per_look = 16; // the others have their turn later

} // namespace

Registrar::Registrar(CORBA::ORB_ptr its_orb, const std::string& its_url,
                     std::vector<Binding> its_bindings)
    : orb(CORBA::ORB::_duplicate(its_orb)), url(its_url), bindings(std::move(its_bindings))
{
    try {
        connect(bind_timeout);
        for (const Binding& binding : bindings) {
            const CosNaming::Name name = full_name(binding);
            create_contexts(name);
            root->rebind(name, binding.object.in());
        }
    } catch (const CORBA::Exception& error) {
        throw RegistrationError(orb::describe(error));
    }
    server::log_event("registered",
                      {{"naming", url}, {"names", std::to_string(bindings.size())}});
    watcher = std::thread([this] { watch(); });
}

Registrar::~Registrar()
{
    stop_watching();
}

void Registrar::connect(orb::Milliseconds timeout)
{
    const util::NamingUrl place(url);
    prefix = place.name;
    CORBA::Object_var object = orb->string_to_object(place.object_url.c_str());
    if (CORBA::is_nil(object.in()))
        throw RegistrationError("the URL denotes nothing");
    root = orb::narrow<CosNaming::NamingContext>(orb.in(), object.in(), timeout, timeout);
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

// ---------------------------------------------------------------- watch

void Registrar::watch()
{
    std::unique_lock<std::mutex> lock(mutex);
    root = CosNaming::NamingContext::_nil(); // for one with another time-out
    in_touch = true;
    while (!wake.wait_for(lock, watch_interval, [this] { return stopping; })) {
        lock.unlock();
        look();
        lock.lock();
    }
}

void Registrar::stop_watching()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
    }
    wake.notify_all();
    if (watcher.joinable())
        watcher.join();
}

void Registrar::look()
{
    std::string problem;
    try {
        if (CORBA::is_nil(root.in()))
            connect(watch_timeout);
        if (!all_there()) {
            restore();
            server::log_event("registered", {{"naming", url}, {"again", "yes"}});
        }
        if (!in_touch)
            server::log_event("naming-found", {{"naming", url}});
        in_touch = true;
        return;
    } catch (const CORBA::Exception& error) {
        problem = orb::describe(error);
    } catch (const RegistrationError& error) {
        problem = error.what();
    }
    if (in_touch)
        server::log_event("naming-lost", {{"naming", url}, {"reason", problem}});
    in_touch = false;
    // Whatever answers next at the URL may be another one.
    root = CosNaming::NamingContext::_nil();
}

bool Registrar::all_there()
{
    try {
        for (std::size_t i = 0; i < std::min(names_per_look, bindings.size()); ++i) {
            next = (next + 1) % bindings.size();
            CORBA::Object_var found = root->resolve(full_name(bindings[next]));
        }
        return true;
    } catch (const CosNaming::NamingContext::NotFound&) {
        return false;
    }
}

void Registrar::restore()
{
    for (const Binding& binding : bindings) {
        const CosNaming::Name name = full_name(binding);
        create_contexts(name);
        try {
            root->bind(name, binding.object.in());
        } catch (const CosNaming::NamingContext::AlreadyBound&) {
            // It never went, or another server has taken it over.
        }
    }
}

// -------------------------------------------------------------- the end

void Registrar::unbind()
{
    stop_watching();
    try {
        if (CORBA::is_nil(root.in()))
            connect(watch_timeout);
        withdraw();
    } catch (const CORBA::Exception& error) {
        server::log_event("cannot-withdraw",
                          {{"naming", url}, {"reason", orb::describe(error)}});
    } catch (const RegistrationError& error) {
        server::log_event("cannot-withdraw", {{"naming", url}, {"reason", error.what()}});
    }
}

void Registrar::withdraw()
{
    for (const Binding& binding : bindings) {
        const CosNaming::Name name = full_name(binding);
        try {
            CORBA::Object_var bound = root->resolve(name);
            if (!CORBA::is_nil(bound.in()) && bound->_is_equivalent(binding.object.in()))
                root->unbind(name);
        } catch (const CosNaming::NamingContext::NotFound&) {
            // Somebody has removed it.
        }
    }
}

} // namespace velmo::naming
