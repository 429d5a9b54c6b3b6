// What the tests over all operations share.
#ifndef VELMO_TESTS_API_OPERATION_TEST_H
#define VELMO_TESTS_API_OPERATION_TEST_H

#include "orb/client.h"
#include "tests/api/operations.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

using Lookups = std::vector<NamingStandIn::Lookup>;
using Lines = std::vector<std::string>;

// One operation after another, or a single one, on the default server "home".
class OperationTest : public ServerTest {
protected:
    using ServerTest::ServerTest;
    using Cache = Operation::Cache;

    int call(const char* server = nullptr, const char* realm = nullptr)
    {
        return operation.call(server, realm);
    }

    // A call that fails with that code.
    void expect_failure(int code, const char* server = nullptr, const char* realm = nullptr)
    {
        EXPECT_EQ(call(server, realm), code);
        if (operation.cache == Cache::kept)
            give_back_lost_reference(server ? server : "home", realm);
    }

    void answer(int result = 0) { home->answer(operation.remote, full_reply(result)); }

    template <class Exception>
    void raise(const Exception& exception)
    {
        home->answer(operation.remote, Script::raising(exception));
    }

    // Whether the next call looks the operation's service up. Makes a good one.
    bool looks_up_again(const char* server = nullptr, const char* realm = nullptr)
    {
        const std::size_t before = naming.lookups().size();
        answer();
        EXPECT_EQ(call(server, realm), 0);
        return naming.lookups().size() > before;
    }

    // The cache is left as a failure leaves it.
    void expect_cache_after_failure()
    {
        EXPECT_EQ(looks_up_again(), operation.cache != Cache::kept);
        EXPECT_EQ(looks_up_again(), operation.cache == Cache::none);
    }

    // What naming is asked for.
    NamingStandIn::Lookup lookup(const std::string& server,
                                 const std::string& realm = "") const
    {
        return {server, service_name(realm, operation.service)};
    }

    // The log after one failed call.
    Lines lines_for(const CORBA::Exception& exception) const
    {
        const char* const text = operation.failures.log_text;
        return text ? Lines{text + orb::describe(exception)} : Lines{};
    }

    Operation operation{};
};

// A test for each operation.
class EachOperationTest : public OperationTest,
                          public ::testing::WithParamInterface<Operation> {
protected:
    EachOperationTest() { operation = GetParam(); }
};

} // namespace velmo::tests

#endif
