#include "util/naming_service.h"

#include <utility>

#include "util/naming_name.h"

namespace velmo::util {

namespace {

constexpr Deadline::Milliseconds first_pause{500};
constexpr Deadline::Milliseconds longest_pause{8000};

// A connection that broke while it lay idle shows only at its next use; several may
// have. Each failure closes one.
constexpr int attempts = 3;

} // namespace

NamingService::NamingService(CORBA::ORB_ptr its_orb, std::string url,
                             Deadline::Milliseconds timeout)
    : orb(CORBA::ORB::_duplicate(its_orb)), service_url(std::move(url)), limit(timeout)
{
}

bool NamingService::answers()
{
    return ask(Deadline(limit), [](CosNaming::NamingContext_ptr context, const Deadline&) {
        if (context->_non_existent())
            throw CORBA::OBJECT_NOT_EXIST();
    });
}

CORBA::Object_ptr NamingService::resolve(const std::string& path, const Accept& accept)
{
    CORBA::Object_var accepted;
    try {
        const CosNaming::Name name = name_of_path(path);
        ask(Deadline(limit),
            [&](CosNaming::NamingContext_ptr context, const Deadline& deadline) {
                CORBA::Object_var found = context->resolve(name);
                if (!CORBA::is_nil(found.in()))
                    accepted = accept(found.in(), deadline.left());
            });
    } catch (const CORBA::UserException&) {
        // It answered: there is no such name.
    }
    return accepted._retn();
}

// Puts a question to the root context; false when there is no answer. Asking twice
// does no harm, so a broken connection costs no more than another attempt.
template <class Question>
bool NamingService::ask(const Deadline& deadline, Question question)
{
    if (resting())
        return false;
    Root current = root(deadline);
    for (int attempt = 1; !CORBA::is_nil(current.context.in()); ++attempt) {
        try {
            CosNaming::NamingContext_var context = hasty(current, deadline);
            question(context.in(), deadline);
            answered();
            return true;
        } catch (const CORBA::SystemException& error) {
            if (orb::is_timeout(error)) {
                rest();
                return false;
            }
            if (attempt == attempts)
                return false;
        }
        current = renewed(current.generation, deadline);
    }
    return false;
}

// The root context for one caller, who may use up what is left of the time.
CosNaming::NamingContext_ptr NamingService::hasty(const Root& from,
                                                  const Deadline& deadline)
{
    CORBA::Object_var limited =
        orb::with_call_timeout(orb.in(), from.context.in(), deadline.left());
    CosNaming::NamingContext_var context =
        CosNaming::NamingContext::_unchecked_narrow(limited.in());
    orb::reapply_call_timeout(context.in(), deadline.left());
    return context._retn();
}

NamingService::Root NamingService::root(const Deadline& deadline)
{
    unsigned long generation;
    {
        std::lock_guard<std::mutex> guard(mutex);
        if (!CORBA::is_nil(known.context.in()))
            return known;
        generation = known.generation;
    }
    return renewed(generation, deadline);
}

// The root of a later generation than one that failed: another caller's if there is
// one or is about to be, else newly connected.
NamingService::Root NamingService::renewed(unsigned long failed_generation,
                                           const Deadline& deadline)
{
    std::unique_lock<std::mutex> lock(mutex);
    const bool in_time = deadline.wait(connected, lock, [&] {
        return !connecting || known.generation != failed_generation;
    });
    if (!in_time)
        return {};
    if (known.generation != failed_generation)
        return known;

    // Whatever happens while the lock is off, the attempt ends and is counted.
    struct Attempt {
        NamingService& service;
        std::unique_lock<std::mutex>& lock;
        CosNaming::NamingContext_var context;

        ~Attempt()
        {
            lock.lock();
            service.known.context = context;
            ++service.known.generation;
            service.connecting = false;
            service.connected.notify_all();
        }
    };
    connecting = true;
    lock.unlock();
    {
        Attempt attempt{*this, lock, {}};
        attempt.context = connect(deadline);
    }
    return known;
}

// Nil when nobody answers.
CosNaming::NamingContext_ptr NamingService::connect(const Deadline& deadline)
{
    try {
        const NamingUrl place(service_url);
        CORBA::Object_var object = orb->string_to_object(place.object_url.c_str());
        CosNaming::NamingContext_var context = orb::narrow<CosNaming::NamingContext>(
            orb.in(), object.in(), deadline.left(), deadline.left());
        if (place.name.length() == 0 || CORBA::is_nil(context.in()))
            return context._retn();
        CORBA::Object_var below = context->resolve(place.name);
        return orb::narrow<CosNaming::NamingContext>(orb.in(), below.in(), deadline.left(),
                                                     deadline.left());
    } catch (const CORBA::SystemException& error) {
        if (orb::is_timeout(error))
            rest();
    } catch (const CORBA::UserException&) {
        // No such context.
    }
    return CosNaming::NamingContext::_nil();
}

bool NamingService::resting()
{
    std::lock_guard<std::mutex> guard(mutex);
    return Deadline::Clock::now() < rests_until;
}

// The root is forgotten, so that the first to ask after the rest connects and the
// others wait for it, instead of all running into the next time-out.
void NamingService::rest()
{
    std::lock_guard<std::mutex> guard(mutex);
    const auto now = Deadline::Clock::now();
    if (now < rests_until)
        return;
    pause = pause.count() == 0 ? first_pause : std::min(pause * 2, longest_pause);
    rests_until = now + pause;
    known.context = CosNaming::NamingContext::_nil();
}

void NamingService::answered()
{
    std::lock_guard<std::mutex> guard(mutex);
    pause = Deadline::Milliseconds(0);
}

} // namespace velmo::util
