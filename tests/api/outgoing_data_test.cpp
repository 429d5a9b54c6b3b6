// The caller's data on their way to the server, with each operation that sends any.

#include <climits>
#include <iterator>

#include "tests/api/data_operations.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

class OutgoingDataTest : public ServerTest,
                         public ::testing::WithParamInterface<DataOperation> {
protected:
    explicit OutgoingDataTest(
        ScriptedServer::Reach reach = ScriptedServer::Reach::in_process)
        : ServerTest(reach)
    {
        home->answer(GetParam().remote, 0);
    }

    static int send(const void* data, int length) { return GetParam().call(data, length); }

    static int send(const std::string& bytes)
    {
        return send(bytes.data(), static_cast<int>(bytes.size()));
    }

    static Calls seen_once(const std::string& data) { return {seen(GetParam(), data)}; }

    static std::string every_byte_value()
    {
        std::string bytes;
        for (int byte = 0; byte < 256; ++byte)
            bytes.push_back(static_cast<char>(byte));
        return bytes;
    }

    void expect_refused(const void* data, int length)
    {
        EXPECT_EQ(send("", 0), 0); // has the reference cached
        const Calls before = home->calls();
        EXPECT_EQ(send(data, length), GetParam().failure);
        EXPECT_EQ(home->calls(), before);
        EXPECT_TRUE(logged_lines().empty());
        EXPECT_FALSE(next_call_looks_up(GetParam().key));
    }
};

const auto name_of_operation = [](const auto& test) {
    return std::string(test.param.name);
};

INSTANTIATE_TEST_SUITE_P(Operations, OutgoingDataTest, ::testing::ValuesIn(data_operations),
                         name_of_operation);

TEST_P(OutgoingDataTest, are_as_many_bytes_as_the_length_says)
{
    EXPECT_EQ(send("hello", 2), 0);
    EXPECT_EQ(home->calls(), seen_once("he"));
}

TEST_P(OutgoingDataTest, may_hold_every_byte_value)
{
    EXPECT_EQ(send(every_byte_value()), 0);
    EXPECT_EQ(home->calls(), seen_once(every_byte_value()));
}

TEST_P(OutgoingDataTest, may_be_large)
{
    const std::string bytes(5 << 20, 'v');
    EXPECT_EQ(send(bytes), 0);
    EXPECT_TRUE(home->calls() == seen_once(bytes));
}

TEST_P(OutgoingDataTest, with_length_0_are_an_empty_sequence)
{
    EXPECT_EQ(send("ignored", 0), 0);
    EXPECT_EQ(home->calls(), seen_once(""));
}

TEST_P(OutgoingDataTest, null_with_length_0_are_an_empty_sequence)
{
    EXPECT_EQ(send(nullptr, 0), 0);
    EXPECT_EQ(home->calls(), seen_once(""));
}

TEST_P(OutgoingDataTest, of_a_negative_length_are_refused_before_any_call)
{
    expect_refused("hello", -1);
    expect_refused("hello", INT_MIN);
}

// Who alters them during the call sees when.
TEST_P(OutgoingDataTest, are_copied_before_or_after_the_look_up_as_the_operation_has_it)
{
    std::string data = "early";
    const CORBA::Object_var service = home.reference(GetParam().key);
    naming.resolve_with([&](const std::string&, const std::string&) {
        data.replace(0, data.size(), "later");
        return service;
    });
    EXPECT_EQ(send(data), 0);
    EXPECT_EQ(home->calls(), seen_once(GetParam().copied_first ? "early" : "later"));
}

// That the server is the trouble shows first.
TEST_P(OutgoingDataTest, that_are_bad_show_only_where_there_is_a_server)
{
    home.unbind("home");
    EXPECT_EQ(send("hello", -1), 99);
    set_own_servers({""});
    EXPECT_EQ(send("hello", -1), 3000);
    EXPECT_TRUE(home->calls().empty());
}

class NullDataTest : public OutgoingDataTest {};

INSTANTIATE_TEST_SUITE_P(Operations, NullDataTest,
                         ::testing::ValuesIn(data_operations,
                                             std::prev(std::end(data_operations))),
                         name_of_operation);

TEST_P(NullDataTest, with_a_positive_length_are_refused_before_any_call)
{
    expect_refused(nullptr, 1);
    expect_refused(nullptr, INT_MAX);
}

TEST_P(NullDataTest, with_a_negative_length_are_refused_before_any_call)
{
    expect_refused(nullptr, -1);
}

class DataOverTheWireTest : public OutgoingDataTest {
protected:
    DataOverTheWireTest() : OutgoingDataTest(ScriptedServer::Reach::over_the_wire) {}
};

INSTANTIATE_TEST_SUITE_P(Operations, DataOverTheWireTest,
                         ::testing::ValuesIn(data_operations), name_of_operation);

TEST_P(DataOverTheWireTest, arrive_as_they_were)
{
    for (const std::string& bytes : {std::string(), every_byte_value()}) {
        home->forget_calls();
        EXPECT_EQ(send(bytes), 0);
        EXPECT_EQ(home->calls(), seen_once(bytes));
    }
}

} // namespace

} // namespace velmo::tests
