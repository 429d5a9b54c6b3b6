// The data of the call that a thread serves, taken and lent without copying.
#ifndef VELMO_ORB_SERVED_CALL_H
#define VELMO_ORB_SERVED_CALL_H

#include <memory>
#include <utility>

#include "orb/corba.h"

namespace velmo::orb {

// There is one while a thread serves a call from another process: the sequences of its
// arguments have been made for the servant alone, and those of its results are read but
// once, for the answer. In a call from within this process they are the caller's.
class ServedCall {
public:
    ServedCall() : outer(std::exchange(innermost, this)) {}
    ~ServedCall() { innermost = outer; }
    ServedCall(const ServedCall&) = delete;
    ServedCall& operator=(const ServedCall&) = delete;

    // That of the calling thread; null: none, or the broker does not tell. TAO does not.
    static ServedCall* current() { return innermost; }

    // Has what the results lend, one object, live until the answer is sent.
    void keep(std::shared_ptr<const void> what_is_lent) { lent = std::move(what_is_lent); }

private:
    static inline thread_local ServedCall* innermost = nullptr;

    ServedCall* const outer;
    std::shared_ptr<const void> lent;
};

// The skeleton for a servant whose operations ask for ServedCall::current().
#if defined(VELMO_ORB_TAO)
template <class Skeleton>
using Served = Skeleton;
#else
template <class Skeleton>
class Served : public virtual Skeleton {
public:
    // Reads the arguments, calls the operation and sends the answer.
    CORBA::Boolean _dispatch(omniCallHandle& handle) override
    {
        const ServedCall call;
        return Skeleton::_dispatch(handle);
    }
};
#endif

} // namespace velmo::orb

#endif
