// Single data template points: their value, description and type. What becomes of
// values on their way to the server is tested in ../api/outgoing_data_test.cpp.

#include <climits>

#include "orb/client.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

const std::string odd_name = "gr\xc3\xb6\xc3\x9f"
                             "e\t\x01";

class PointTest : public ServerTest {};

TEST_F(PointTest, creating_sends_both_names_unchanged)
{
    home->answer("create_DTP", 2022);
    EXPECT_EQ(vl_create_data_template_point(odd_name.c_str(), "template", nullptr, nullptr),
              2022);
    EXPECT_EQ(vl_create_data_template_point(nullptr, nullptr, nullptr, nullptr), 2022);
    EXPECT_EQ(home->calls(), (Calls{"create_DTP(\"" + odd_name + "\", \"template\")",
                                    "create_DTP(\"\", \"\")"}));
}

TEST_F(PointTest, removing_sends_the_name_unchanged)
{
    home->answer("remove_DTP", 4002);
    EXPECT_EQ(vl_remove_template_point(odd_name.c_str(), nullptr, nullptr), 4002);
    EXPECT_EQ(vl_remove_template_point(nullptr, nullptr, nullptr), 4002);
    EXPECT_EQ(home->calls(),
              (Calls{"remove_DTP(\"" + odd_name + "\")", "remove_DTP(\"\")"}));
}

TEST_F(PointTest, writing_sends_name_and_value_unchanged)
{
    home->answer("set_DTP", 4001);
    EXPECT_EQ(vl_set_data_template_point(odd_name.c_str(), "value", 5, nullptr, nullptr),
              4001);
    EXPECT_EQ(vl_set_data_template_point(nullptr, "value", 5, nullptr, nullptr), 4001);
    EXPECT_EQ(home->calls(), (Calls{"set_DTP(\"" + odd_name + "\", \"value\")",
                                    "set_DTP(\"\", \"value\")"}));
}

TEST_F(PointTest, writing_with_size_0_sends_an_empty_sequence)
{
    home->answer("set_DTP", 0);
    EXPECT_EQ(vl_set_data_template_point("point", "ignored", 0, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), Calls{"set_DTP(\"point\", \"\")"});
}

TEST_F(PointTest, describing_sends_name_and_text_unchanged)
{
    home->answer("set_DTP_description", 4002);
    EXPECT_EQ(
        vl_set_data_template_point_description("point", odd_name.c_str(), nullptr, nullptr),
        4002);
    EXPECT_EQ(vl_set_data_template_point_description(nullptr, nullptr, nullptr, nullptr),
              4002);
    EXPECT_EQ(home->calls(), (Calls{"set_DTP_description(\"point\", \"" + odd_name + "\")",
                                    "set_DTP_description(\"\", \"\")"}));
}

class ReadPointTest : public ServerTest {
protected:
    void deliver(const Reply& reply) { home->answer("get_DTP", reply); }

    // Reads into a block of exactly so many bytes, all of which were "?".
    std::string read(std::size_t block, int size, int result = 0)
    {
        std::vector<char> buffer(block, '?');
        EXPECT_EQ(
            vl_get_data_template_point("point", buffer.data(), size, nullptr, nullptr),
            result);
        return std::string(buffer.begin(), buffer.end());
    }
};

TEST_F(ReadPointTest, sends_the_name_unchanged)
{
    deliver({0, "hello"});
    char buffer[5];
    EXPECT_EQ(vl_get_data_template_point(odd_name.c_str(), buffer, 5, nullptr, nullptr), 0);
    EXPECT_EQ(vl_get_data_template_point(nullptr, buffer, 5, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), (Calls{"get_DTP(\"" + odd_name + "\")", "get_DTP(\"\")"}));
}

TEST_F(ReadPointTest, fills_a_buffer_of_the_values_size)
{
    deliver({0, std::string("\0\xff\x80z", 4)});
    EXPECT_EQ(read(4, 4), std::string("\0\xff\x80z", 4));
}

TEST_F(ReadPointTest, with_a_smaller_size_writes_exactly_so_many_bytes)
{
    deliver({0, "hello"});
    EXPECT_EQ(read(4, 4), "hell");
    EXPECT_EQ(read(1, 1), "h");
    EXPECT_EQ(read(8, 3), "hel?????");
}

TEST_F(ReadPointTest, with_a_larger_size_writes_the_values_length_alone)
{
    deliver({0, "hello"});
    EXPECT_EQ(read(8, 8), "hello???");
    EXPECT_EQ(read(6, INT_MAX), "hello?");
}

TEST_F(ReadPointTest, with_size_0_writes_nothing)
{
    deliver({0, "hello"});
    EXPECT_EQ(read(2, 0), "??");
    EXPECT_EQ(home->calls().size(), 1u);
}

TEST_F(ReadPointTest, with_a_negative_size_writes_the_whole_value)
{
    deliver({0, "hello"});
    EXPECT_EQ(read(6, -1), "hello?");
    EXPECT_EQ(read(6, INT_MIN), "hello?");
}

TEST_F(ReadPointTest, of_an_empty_value_writes_nothing)
{
    deliver({0, ""});
    EXPECT_EQ(read(2, 2), "??");
    EXPECT_EQ(read(2, -1), "??");
}

TEST_F(ReadPointTest, takes_a_value_that_was_not_delivered_as_empty)
{
    deliver({0, std::nullopt});
    EXPECT_EQ(read(2, 2), "??");
}

TEST_F(ReadPointTest, refused_by_the_server_leaves_the_buffer)
{
    deliver({4002, "hello"});
    EXPECT_EQ(read(8, 8, 4002), "????????");
    deliver({-1, std::nullopt});
    EXPECT_EQ(read(8, 8, -1), "????????");
}

TEST_F(ReadPointTest, that_fails_leaves_the_buffer)
{
    home->answer("get_DTP", Script::raising(CORBA::COMM_FAILURE()));
    EXPECT_EQ(read(8, 8, 102), "????????");
}

TEST_F(ReadPointTest, reads_a_large_value)
{
    const std::string value(5 << 20, 'v');
    deliver({0, value});
    EXPECT_TRUE(read(value.size(), 5 << 20) == value);
}

TEST_F(ReadPointTest, into_null_is_refused_before_any_call)
{
    EXPECT_TRUE(next_call_looks_up(keys::data_template_point_service)); // has it cached
    home->forget_calls();
    for (const int size : {5, -1})
        EXPECT_EQ(vl_get_data_template_point("point", nullptr, size, nullptr, nullptr),
                  102);
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up(keys::data_template_point_service));
}

TEST_F(ReadPointTest, into_null_of_size_0_copies_nothing)
{
    deliver({0, "hello"});
    EXPECT_EQ(vl_get_data_template_point("point", nullptr, 0, nullptr, nullptr), 0);
}

TEST_F(ReadPointTest, without_a_reference_or_a_server_leaves_the_buffer)
{
    home.unbind("home");
    EXPECT_EQ(read(5, 5, 99), "?????");
    set_own_servers({""});
    EXPECT_EQ(read(5, 5, 3000), "?????");
}

// vl_get_data_template_point_description() and ..._type().
struct PointText {
    const char* remote;
    char* (*get)(const char*, const char*, const char*);
    const char* log_text; // null for no line
};

void PrintTo(const PointText& text, std::ostream* out)
{
    *out << text.remote;
}

class PointTextTest : public ServerTest, public ::testing::WithParamInterface<PointText> {
protected:
    explicit PointTextTest(ScriptedServer::Reach reach = ScriptedServer::Reach::in_process)
        : ServerTest(reach)
    {
    }

    void deliver(const std::string& text)
    {
        Reply reply;
        reply.text = text;
        home->answer(GetParam().remote, reply);
    }

    static char* get(const char* server = nullptr, const char* point = "point")
    {
        return GetParam().get(point, server, nullptr);
    }

    static void expect_text(const std::string& text)
    {
        const CORBA::String_var received = get();
        ASSERT_NE(received.in(), nullptr);
        EXPECT_TRUE(received.in() == text);
    }
};

const auto texts = ::testing::Values(
    PointText{"get_DTP_description", vl_get_data_template_point_description, nullptr},
    PointText{"get_DTP_type", vl_get_data_template_point_type, "get_DTP_type M/W Error "});
const auto name_of_text = [](const auto& test) { return std::string(test.param.remote); };

INSTANTIATE_TEST_SUITE_P(Operations, PointTextTest, texts, name_of_text);

TEST_P(PointTextTest, sends_the_name_unchanged)
{
    deliver("text");
    CORBA::string_free(get(nullptr, odd_name.c_str()));
    CORBA::string_free(get(nullptr, nullptr));
    EXPECT_EQ(home->calls(), (Calls{GetParam().remote + ("(\"" + odd_name + "\")"),
                                    GetParam().remote + std::string("(\"\")")}));
}

TEST_P(PointTextTest, is_the_callers_to_free)
{
    deliver("text");
    char* const text = get();
    ASSERT_STREQ(text, "text");
    text[0] = 'T'; // nobody else's
    CORBA::string_free(text);
}

TEST_P(PointTextTest, empty_is_a_string_as_well)
{
    deliver("");
    expect_text("");
}

TEST_P(PointTextTest, without_any_server_is_null_and_requests_no_reference)
{
    set_own_servers({""});
    EXPECT_EQ(get(), nullptr);
    EXPECT_TRUE(naming.lookups().empty());
    EXPECT_TRUE(registry().serverMap.empty());
    EXPECT_TRUE(home->calls().empty());
}

TEST_P(PointTextTest, without_a_reference_is_null)
{
    EXPECT_EQ(get("unknown"), nullptr);
    EXPECT_TRUE(logged_lines().empty());
}

TEST_P(PointTextTest, after_an_exception_is_null_and_only_the_types_is_logged)
{
    const CORBA::TRANSIENT exception(0, CORBA::COMPLETED_NO);
    home->answer(GetParam().remote, Script::raising(exception));
    EXPECT_EQ(get(), nullptr);
    const char* const text = GetParam().log_text;
    EXPECT_EQ(logged_lines(), text ? Calls{text + orb::describe(exception)} : Calls{});
    EXPECT_TRUE(next_call_looks_up(keys::data_template_point_service));
}

class PointTextOverTheWireTest : public PointTextTest {
protected:
    PointTextOverTheWireTest() : PointTextTest(ScriptedServer::Reach::over_the_wire) {}
};

INSTANTIATE_TEST_SUITE_P(Operations, PointTextOverTheWireTest, texts, name_of_text);

TEST_P(PointTextOverTheWireTest, arrives_as_it_was)
{
    for (const std::string& text : {std::string(), odd_name, std::string(1 << 20, 't')}) {
        deliver(text);
        expect_text(text);
    }
}

} // namespace

} // namespace velmo::tests
