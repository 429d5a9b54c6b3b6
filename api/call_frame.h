// What every operation on a remote service has in common, written once: choosing
// the server, borrowing a reference from the registry, and turning whatever the
// remote call throws into a result.
#ifndef VELMO_API_CALL_FRAME_H
#define VELMO_API_CALL_FRAME_H

#include "api/bad_argument.h"
#include "api/choose_server.h"
#include "orb/client.h"
#include "registry/process_singleton.h"
#include "registry/registry_use.h"
#include "util/fork.h"
#include "vlReferenceContainer.h"
#include "vl_result.h"

namespace velmo::api {

// How an operation fails. The codes differ from one operation to the next, so that
// a caller can tell from the code which call it was.
template <class Result>
struct FailureRule {
    Result broker_failure;          // a CORBA exception came back
    Result other_failure;           // any other exception
    const char* log_text = nullptr; // logs a CORBA exception, "%s" its description
    Result no_server = NULL_SERVER_NAME;
    Result no_reference = VL_NO_REFERENCE;
    bool keeps_reference = false; // what is thrown leaves the cached reference alone
    bool needs_server = true;     // else a missing name goes to the registry as it is

    // The same rule but for one departure.
    constexpr FailureRule without_reference(Result result) const
    {
        FailureRule rule = *this;
        rule.no_reference = result;
        return rule;
    }
    constexpr FailureRule keeping_reference() const
    {
        FailureRule rule = *this;
        rule.keeps_reference = true;
        return rule;
    }
    constexpr FailureRule needing_no_server() const
    {
        FailureRule rule = *this;
        rule.needs_server = false;
        return rule;
    }
};

// The rule of most operations: one code, whatever was thrown.
constexpr FailureRule<int> fails_with(int code, const char* log_text = nullptr)
{
    return {code, code, log_text};
}

// The rule of operations that give a string: null, whatever failed.
constexpr FailureRule<char*> fails_with_null(const char* log_text = nullptr)
{
    return {nullptr, nullptr, log_text, nullptr, nullptr};
}

// Writes the log line for an exception; does nothing without a text.
void log_failure(const char* log_text, const CORBA::Exception& exception) noexcept;

// Deals with the cached reference of a service that has thrown something.
template <class Service, class Result>
void settle_reference(const FailureRule<Result>& rule, vlReferenceContainer& registry,
                      const char* server, const char* releam)
{
    const RegistryUse use;
    if (!use.allowed())
        return;
    if (!rule.keeps_reference)
        Service::release(registry, server, releam);
    else // It is asked for once more; the duplicate stays with nobody, on purpose.
        static_cast<void>(Service::get(RegistryReader(&registry), server, releam));
}

// A reference of its own for a call, null if there is none. When the process ends meanwhile
// it is left alone, since the broker may be gone: a holder of the broker's would look at
// it.
template <class Interface>
class Borrowed {
public:
    explicit Borrowed(typename Interface::_ptr_type its_reference)
        : reference(its_reference)
    {
    }
    ~Borrowed()
    {
        if (!reference)
            return;
        const RegistryUse use;
        if (use.allowed())
            CORBA::release(reference);
    }
    Borrowed(const Borrowed&) = delete;
    Borrowed& operator=(const Borrowed&) = delete;

    bool is_there() const { return reference != nullptr; }
    auto& operator*() const { return *reference; }

private:
    typename Interface::_ptr_type const reference;
};

// Runs an operation on a service of a server (see services.h):
//   prepare()                 makes what goes to the server; runs once the server is
//                             chosen and before its reference is asked for
//   work(service, prepared)   makes the remote call and hands its results over
// A result of work is returned as it is; when work throws, the cached reference is
// dropped, so that the next call looks it up afresh (unless the rule keeps it, or it is
// a BadArgument), and the rule gives the result. What the registry throws in looking the
// reference up passes through. In a child of fork() there are no references.
template <class Service, class Result, class Prepare, class Work>
Result call(const FailureRule<Result>& rule, const char* server_name, const char* releam,
            Prepare prepare, Work work)
{
    if (util::Fork::is_cut_off())
        return rule.no_reference;
    // vlReferenceContainer::instance(), inline
    vlReferenceContainer* const registry =
        ProcessSingleton<vlReferenceContainer>::instance();
    RegistryReader reader(registry);
    const char* const server = choose_server(reader, server_name);
    if (!server && rule.needs_server)
        return rule.no_server;
    const auto prepared = prepare();
    const Borrowed<typename Service::Interface> service(
        Service::get(reader, server, releam));
    reader.let_go(); // the call may take its time
    if (!service.is_there())
        return rule.no_reference;
    try {
        return work(*service, prepared);
    } catch (const BadArgument&) {
        return rule.other_failure;
    } catch (const CORBA::Exception& exception) {
        log_failure(rule.log_text, exception);
        settle_reference<Service>(rule, *registry, server, releam);
        return rule.broker_failure;
    } catch (...) {
        settle_reference<Service>(rule, *registry, server, releam);
        return rule.other_failure;
    }
}

// An operation with nothing to prepare: work(service).
template <class Service, class Result, class Work>
Result call(const FailureRule<Result>& rule, const char* server_name, const char* releam,
            Work work)
{
    return call<Service>(
        rule, server_name, releam, [] { return nullptr; },
        [&work](auto& service, std::nullptr_t) { return work(service); });
}

// The result of work, or the other when it throws anything.
template <class Result, class Work>
Result unless_it_throws(Result otherwise, Work work)
{
    try {
        return work();
    } catch (...) {
        return otherwise;
    }
}

} // namespace velmo::api

#endif
