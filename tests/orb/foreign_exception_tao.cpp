#include "tests/orb/foreign_exception.h"

#include <memory>
#include <mutex>
#include <stdexcept>

#include <tao/LocalObject.h>
#include <tao/ORBInitializer_Registry.h>
#include <tao/PI/PI.h>

namespace velmo::tests {

namespace {

std::mutex mutex;
std::string victim; // the operation that fails, "" for none

void set_victim(const std::string& operation)
{
    std::lock_guard<std::mutex> guard(mutex);
    victim = operation;
}

class Interceptor : public virtual PortableInterceptor::ClientRequestInterceptor,
                    public virtual CORBA::LocalObject {
public:
    char* name() override { return CORBA::string_dup("foreign exception"); }
    void destroy() override {}

    void send_request(PortableInterceptor::ClientRequestInfo_ptr request) override
    {
        CORBA::String_var operation = request->operation();
        std::lock_guard<std::mutex> guard(mutex);
        if (!victim.empty() && victim == operation.in())
            throw std::runtime_error("not the broker's");
    }

    void send_poll(PortableInterceptor::ClientRequestInfo_ptr) override {}
    void receive_reply(PortableInterceptor::ClientRequestInfo_ptr) override {}
    void receive_exception(PortableInterceptor::ClientRequestInfo_ptr) override {}
    void receive_other(PortableInterceptor::ClientRequestInfo_ptr) override {}
};

class Initializer : public virtual PortableInterceptor::ORBInitializer,
                    public virtual CORBA::LocalObject {
public:
    void pre_init(PortableInterceptor::ORBInitInfo_ptr) override {}

    void post_init(PortableInterceptor::ORBInitInfo_ptr info) override
    {
        PortableInterceptor::ClientRequestInterceptor_var interceptor =
            std::make_unique<Interceptor>().release(); // counted by reference
        info->add_client_request_interceptor(interceptor.in());
    }
};

// Has to precede the making of the ORB.
const bool registered = [] {
    PortableInterceptor::ORBInitializer_var initializer =
        std::make_unique<Initializer>().release();
    PortableInterceptor::register_orb_initializer(initializer.in());
    return true;
}();

} // namespace

ForeignException::ForeignException(const std::string& operation)
{
    static_cast<void>(registered);
    set_victim(operation);
}

ForeignException::~ForeignException()
{
    set_victim("");
}

bool undeclared_exceptions_pass()
{
    return false;
}

} // namespace velmo::tests
