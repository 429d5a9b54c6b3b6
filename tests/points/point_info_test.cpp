// All about one point: two texts and its value.

#include <cstdlib>
#include <cstring>

#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

// get_dtp_info(), which gives no length, and get_dtp_info2().
struct PointInfo {
    const char* name;
    bool gives_length;
    int (*get)(const char* point, char** text1, char** text2, void** data,
               unsigned int* length, const char* server);
};

void PrintTo(const PointInfo& info, std::ostream* out)
{
    *out << info.name;
}

int without_length(const char* point, char** text1, char** text2, void** data,
                   unsigned int* /*length*/, const char* server)
{
    return get_dtp_info(point, text1, text2, data, server, nullptr);
}

int with_length(const char* point, char** text1, char** text2, void** data,
                unsigned int* length, const char* server)
{
    return get_dtp_info2(point, text1, text2, data, length, server, nullptr);
}

class PointInfoTest : public ServerTest, public ::testing::WithParamInterface<PointInfo> {
protected:
    explicit PointInfoTest(ScriptedServer::Reach reach = ScriptedServer::Reach::in_process)
        : ServerTest(reach)
    {
    }
    ~PointInfoTest() override
    {
        free_texts();
        vl_free_memory(&data);
    }

    void deliver(const std::optional<std::string>& value, int result = 0)
    {
        deliver("the type", "the description", value, result);
    }
    void deliver(const std::string& type, const std::string& description,
                 const std::optional<std::string>& value, int result = 0)
    {
        Reply reply{result, value};
        reply.text = type;
        reply.more_text = description;
        home->answer("get_dtp_info", reply);
    }
    void fail() { home->answer("get_dtp_info", Script::raising(CORBA::COMM_FAILURE())); }

    int get(const char* server = nullptr)
    {
        return GetParam().get("point", &text1, &text2, &data, &length, server);
    }

    void free_texts()
    {
        for (char** text : {&text1, &text2}) {
            if (*text != stale)
                CORBA::string_free(*text);
            *text = stale;
        }
    }

    // What the caller's variables held before, all but the block.
    bool is_untouched() const { return text1 == stale && text2 == stale && length == 77; }

    void expect_value(const std::string& value) const
    {
        ASSERT_NE(data, nullptr);
        EXPECT_EQ(std::memcmp(data, value.data(), value.size()), 0);
        EXPECT_EQ(length, GetParam().gives_length ? value.size() : 77);
    }

    char stale[1] = {'?'};
    char* text1 = stale;
    char* text2 = stale;
    void* data = nullptr;
    unsigned int length = 77;
};

const auto infos = ::testing::Values(PointInfo{"get_dtp_info", false, without_length},
                                     PointInfo{"get_dtp_info2", true, with_length});
const auto name_of_info = [](const auto& test) { return std::string(test.param.name); };

INSTANTIATE_TEST_SUITE_P(Operations, PointInfoTest, infos, name_of_info);

TEST_P(PointInfoTest, sends_the_name_unchanged)
{
    deliver("value", 4002);
    for (const char* point : {"gr\xc3\xb6\xc3\x9f", "\t\x01", ""}) {
        home->forget_calls();
        EXPECT_EQ(GetParam().get(point, &text1, &text2, &data, &length, nullptr), 4002);
        EXPECT_EQ(home->calls(), Calls{"get_dtp_info(\"" + std::string(point) + "\")"});
    }
    home->forget_calls();
    EXPECT_EQ(GetParam().get(nullptr, &text1, &text2, &data, &length, nullptr), 4002);
    EXPECT_EQ(home->calls(), Calls{"get_dtp_info(\"\")"});
}

TEST_P(PointInfoTest, gives_both_texts_in_the_servers_order_and_the_value)
{
    deliver(std::string("\0\xff value", 8));
    EXPECT_EQ(get(), 0);
    EXPECT_STREQ(text1, "the type");
    EXPECT_STREQ(text2, "the description");
    expect_value(std::string("\0\xff value", 8));
}

TEST_P(PointInfoTest, a_second_success_frees_the_first_block)
{
    deliver("first");
    EXPECT_EQ(get(), 0);
    free_texts();
    deliver("the second");
    EXPECT_EQ(get(), 0); // the leak checker misses no block
    expect_value("the second");
}

// Also a block that the library has not made, if it is of the C heap.
TEST_P(PointInfoTest, a_success_frees_the_callers_block)
{
    data = std::malloc(100);
    deliver("value");
    EXPECT_EQ(get(), 0);
    expect_value("value");
}

TEST_P(PointInfoTest, a_failure_keeps_the_block_and_makes_both_texts_null)
{
    deliver("first");
    EXPECT_EQ(get(), 0);
    free_texts();
    length = 5;
    void* const first = data;

    deliver("second", 4002);
    EXPECT_EQ(get(), 4002);
    EXPECT_EQ(text1, nullptr);
    EXPECT_EQ(text2, nullptr);
    free_texts();
    fail();
    EXPECT_EQ(get(), 150);
    EXPECT_EQ(text1, nullptr);
    EXPECT_EQ(text2, nullptr);

    EXPECT_EQ(data, first);
    EXPECT_EQ(length, 5u);
    EXPECT_EQ(std::memcmp(data, "first", 5), 0);
}

TEST_P(PointInfoTest, without_a_server_or_reference_everything_is_left)
{
    EXPECT_EQ(get("unknown"), 99);
    EXPECT_TRUE(is_untouched());
    set_own_servers({""});
    EXPECT_EQ(get(), 3000);
    EXPECT_TRUE(is_untouched());
    EXPECT_EQ(data, nullptr);
}

TEST_P(PointInfoTest, both_texts_are_null_before_the_remote_call_where_the_block_is_kept)
{
    data = std::malloc(1);
    void* const callers = data;
    home->answer("get_dtp_info", [this, callers] {
        EXPECT_EQ(text1, nullptr);
        EXPECT_EQ(text2, nullptr);
        EXPECT_EQ(data, callers);
        EXPECT_EQ(length, 77u);
        return Reply{4002};
    });
    EXPECT_EQ(get(), 4002);
    EXPECT_EQ(home->calls().size(), 1u);
}

TEST_P(PointInfoTest, of_an_empty_value_gives_a_block_of_length_0)
{
    deliver("");
    EXPECT_EQ(get(), 0);
    expect_value("");
    vl_free_memory(&data);
    EXPECT_EQ(data, nullptr);
}

TEST_P(PointInfoTest, takes_a_value_that_was_not_delivered_as_empty)
{
    deliver(std::nullopt);
    EXPECT_EQ(get(), 0);
    EXPECT_STREQ(text1, "the type");
    expect_value("");
    free_texts();
    deliver(std::nullopt, 4002);
    EXPECT_EQ(get(), 4002);
}

TEST_P(PointInfoTest, into_null_is_refused_before_any_call)
{
    EXPECT_TRUE(next_call_looks_up(keys::data_template_point_service)); // has it cached
    home->forget_calls();
    const auto get_into = GetParam().get;
    EXPECT_EQ(get_into("point", nullptr, &text2, &data, &length, nullptr), 150);
    EXPECT_EQ(get_into("point", &text1, nullptr, &data, &length, nullptr), 150);
    EXPECT_EQ(get_into("point", &text1, &text2, nullptr, &length, nullptr), 150);
    if (GetParam().gives_length) {
        EXPECT_EQ(get_into("point", &text1, &text2, &data, nullptr, nullptr), 150);
    }
    EXPECT_TRUE(is_untouched());
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up(keys::data_template_point_service));
}

class PointInfoOverTheWireTest : public PointInfoTest {
protected:
    PointInfoOverTheWireTest() : PointInfoTest(ScriptedServer::Reach::over_the_wire) {}
};

INSTANTIATE_TEST_SUITE_P(Operations, PointInfoOverTheWireTest, infos, name_of_info);

TEST_P(PointInfoOverTheWireTest, arrives_as_it_was)
{
    const std::string texts[] = {"", "gr\xc3\xb6\xc3\x9f\t\x01", std::string(1 << 20, 't')};
    const std::string values[] = {"", std::string("\0\xff value", 8),
                                  std::string(5 << 20, 'v')};
    for (int i = 0; i < 3; ++i) {
        deliver(texts[i], texts[2 - i], values[i]);
        length = 77;
        EXPECT_EQ(get(), 0);
        EXPECT_TRUE(text1 == texts[i]);
        EXPECT_TRUE(text2 == texts[2 - i]);
        expect_value(values[i]);
        free_texts();
    }
}

} // namespace

} // namespace velmo::tests
