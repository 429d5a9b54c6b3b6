// What becomes of the references that operations borrow.

#include <stdexcept>

#include "tests/api/operation_test.h"
#include "tests/orb/live_references.h"
#include "tests/support/registry_locks.h"

namespace velmo::tests {

namespace {

// Every look-up gives another reference to a service of "home".
class CallReferencesTest : public EachOperationTest {
protected:
    CallReferencesTest()
    {
        const CORBA::Object_var object = home.reference(operation.service);
        const CORBA::String_var text = test_orb()->object_to_string(object.in());
        ior = text.in();
        resolve_normally();
    }

    void SetUp() override
    {
        if (!references_can_be_counted())
            GTEST_SKIP() << "this broker does not let references be counted";
        before = live_references();
    }

    void resolve_normally()
    {
        naming.resolve_with([this](const std::string&, const std::string&) {
            return CORBA::Object_var(test_orb()->string_to_object(ior.c_str()));
        });
    }

    void resolve_to_nothing()
    {
        naming.resolve_with([](const std::string&, const std::string&) {
            return CORBA::Object_var(CORBA::Object::_nil());
        });
    }

    // The references that exist beside the cached ones, which go.
    int left_behind()
    {
        registry().releaseAllReference("home");
        return live_references() - before;
    }

    std::string ior;
    int before = 0;
};

INSTANTIATE_TEST_SUITE_P(Operations, CallReferencesTest, ::testing::ValuesIn(operations()),
                         operation_name);

TEST_P(CallReferencesTest, none_is_left_behind_on_any_path)
{
    answer();
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(live_references() - before, operation.cache == Cache::none ? 0 : 1);
    EXPECT_EQ(left_behind(), 0);
    answer(2007);
    EXPECT_EQ(call(), operation.hands_on ? 2007 : 0);
    EXPECT_EQ(left_behind(), 0);
    raise(CORBA::COMM_FAILURE());
    expect_failure(operation.failures.broker);
    EXPECT_EQ(left_behind(), 0);
    raise(std::runtime_error("the servant's own"));
    expect_failure(operation.failures.broker);
    EXPECT_EQ(left_behind(), 0);
    resolve_to_nothing();
    EXPECT_EQ(call(), operation.failures.no_reference);
    EXPECT_EQ(left_behind(), 0);
}

// The operations whose cached reference outlives a failure.
class KeptReferenceTest : public CallReferencesTest {
protected:
    // The call ends in an exception, the reference being dropped by somebody meanwhile.
    void drop_and_raise()
    {
        home->answer(operation.remote, [this]() -> Reply {
            registry().ReleasePortReference("home", nullptr);
            during_the_call();
            throw CORBA::COMM_FAILURE();
        });
    }

    std::function<void()> during_the_call = [] {};
};

INSTANTIATE_TEST_SUITE_P(Operations, KeptReferenceTest,
                         ::testing::ValuesIn(operations_where([](const auto& operation) {
                             return operation.cache == Operation::Cache::kept;
                         })),
                         operation_name);

TEST_P(KeptReferenceTest, serves_the_next_calls_of_all_operations)
{
    raise(CORBA::COMM_FAILURE());
    expect_failure(operation.failures.broker);
    EXPECT_FALSE(next_call_looks_up());
    EXPECT_FALSE(looks_up_again());
    EXPECT_EQ(naming.lookups().size(), 1u);
}

TEST_P(KeptReferenceTest, is_asked_for_once_more_after_a_failure)
{
    drop_and_raise();
    EXPECT_EQ(call(), operation.failures.broker);
    EXPECT_EQ(naming.lookups(), (Lookups{lookup("home"), lookup("home")}));
    EXPECT_FALSE(looks_up_again());
    give_back_lost_reference("home", nullptr);
    EXPECT_EQ(left_behind(), 0);
}

TEST_P(KeptReferenceTest, loses_one_duplicate_with_every_failure)
{
    constexpr int failures = 3;
    raise(CORBA::COMM_FAILURE());
    for (int i = 0; i < failures; ++i)
        EXPECT_EQ(call(), operation.failures.broker);
    auto* const reference = registry().GetPortReferenceWithServerName("home", nullptr);
    CORBA::release(reference);
    for (int i = 0; i < failures; ++i) {
        EXPECT_EQ(left_behind(), 1) << i;
        CORBA::release(reference);
    }
    EXPECT_EQ(left_behind(), 0);
}

TEST_P(KeptReferenceTest, not_found_again_gives_the_code_all_the_same)
{
    drop_and_raise();
    during_the_call = [this] { resolve_to_nothing(); };
    EXPECT_EQ(call(), operation.failures.broker);
    EXPECT_EQ(naming.lookups().size(), 2u);
    EXPECT_EQ(left_behind(), 0);
}

TEST_P(KeptReferenceTest, whose_second_look_up_raises_something_passes_that_out)
{
    drop_and_raise();
    during_the_call = [this] {
        naming.resolve_with(
            [](const std::string&, const std::string&) -> CORBA::Object_var {
                throw std::runtime_error("naming failed");
            });
    };
    EXPECT_THROW(call(), std::runtime_error);
    expect_locks_free(registry());
    EXPECT_EQ(left_behind(), 0);
    resolve_normally();
    EXPECT_TRUE(looks_up_again());
}

} // namespace

} // namespace velmo::tests
