// Lists of names, and the creation of sets. The data of a set are tested in
// ../api/outgoing_data_test.cpp.

#include "tests/support/callers_list.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

using Names = Script::Names;

struct Query {
    const char* remote;
    int (*ask)(NameList* list, const char* server);
    int failure;
    const char* key;
};

void PrintTo(const Query& query, std::ostream* out)
{
    *out << query.remote;
}

int get_all_point_name(NameList* list, const char* server)
{
    return vl_get_all_point_name(list, server, nullptr);
}

int get_all_point_by_typename(NameList* list, const char* server)
{
    return vl_get_all_point_by_typename(list, "type", server, nullptr);
}

int check_null_data(NameList* list, const char* server)
{
    return vl_check_null_data(list, server, nullptr);
}

int get_query_data_type(NameList* list, const char* server)
{
    return vl_get_query_data_type(list, server, nullptr);
}

const Query all_points{"get_all_point_name", get_all_point_name, 145,
                       keys::data_template_point_service};
const Query points_of_type{"get_all_point_by_typename", get_all_point_by_typename, 147,
                           keys::data_template_point_service};
const Query points_without_data{"check_null_data", check_null_data, 146,
                                keys::data_template_point_service};
const Query data_types{"get_query_data_type", get_query_data_type, 140,
                       keys::data_template_service};

const auto queries =
    ::testing::Values(all_points, points_of_type, points_without_data, data_types);
const auto name_of_query = [](const auto& test) { return std::string(test.param.remote); };

class QueryTest : public ServerTest, public ::testing::WithParamInterface<Query> {
protected:
    explicit QueryTest(ScriptedServer::Reach reach = ScriptedServer::Reach::in_process)
        : ServerTest(reach)
    {
    }

    void deliver(const std::optional<Names>& names, int result = 0)
    {
        Reply reply{result};
        reply.names = names;
        home->answer(GetParam().remote, reply);
    }

    int ask(const char* server = nullptr) { return GetParam().ask(list.record(), server); }

    CallersList list;
};

INSTANTIATE_TEST_SUITE_P(Operations, QueryTest, queries, name_of_query);

TEST_P(QueryTest, gives_the_names_in_the_servers_order)
{
    const Names names{"b", "a", "", "gr\xc3\xb6\xc3\x9f", "\x01\t", "a"};
    deliver(names);
    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(list.names(), names);
}

TEST_P(QueryTest, of_no_names_gives_count_0_and_an_array_all_the_same)
{
    deliver(Names{});
    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(list.record()->count, 0u);
    EXPECT_FALSE(list.is_untouched());
    EXPECT_NE(list.record()->names, nullptr);
}

TEST_P(QueryTest, overwrites_the_record_without_freeing_what_it_held)
{
    deliver(Names{"a"});
    EXPECT_EQ(ask(), 0);
    const NameList first = *list.record();
    EXPECT_EQ(ask(), 0);
    EXPECT_NE(list.record()->names, first.names);
    EXPECT_STREQ(first.names[0], "a");
    list.give_back();
    *list.record() = first;
}

TEST_P(QueryTest, leaves_the_record_where_nothing_arrives)
{
    EXPECT_EQ(ask("unknown"), 99);
    EXPECT_TRUE(list.is_untouched());
    home->answer(GetParam().remote, Script::raising(CORBA::COMM_FAILURE()));
    EXPECT_EQ(ask(), GetParam().failure);
    EXPECT_TRUE(list.is_untouched());
    set_own_servers({""});
    EXPECT_EQ(ask(), 3000);
    EXPECT_TRUE(list.is_untouched());
}

TEST_P(QueryTest, leaves_the_record_where_no_sequence_is_delivered)
{
    for (const int result : {0, 2}) {
        deliver(std::nullopt, result);
        EXPECT_EQ(ask(), result);
        EXPECT_TRUE(list.is_untouched());
    }
}

TEST_P(QueryTest, into_null_is_refused_before_any_call)
{
    EXPECT_TRUE(next_call_looks_up(GetParam().key)); // has the reference cached
    home->forget_calls();
    EXPECT_EQ(GetParam().ask(nullptr, nullptr), GetParam().failure);
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_FALSE(next_call_looks_up(GetParam().key));
}

class PointNamesTest : public QueryTest {};

INSTANTIATE_TEST_SUITE_P(Operations, PointNamesTest,
                         ::testing::Values(all_points, points_of_type, points_without_data),
                         name_of_query);

TEST_P(PointNamesTest, that_come_with_an_error_are_given_as_well)
{
    for (const int result : {2, -1, 3006}) {
        deliver(Names{"a", "b"}, result);
        EXPECT_EQ(ask(), result);
        EXPECT_EQ(list.names(), (Names{"a", "b"}));
        list.give_back();
    }
}

class DataTypesTest : public QueryTest {};

INSTANTIATE_TEST_SUITE_P(Operations, DataTypesTest, ::testing::Values(data_types),
                         name_of_query);

TEST_P(DataTypesTest, that_come_with_an_error_leave_the_record)
{
    for (const int result : {2, -1, 3006}) {
        deliver(Names{"a", "b"}, result);
        EXPECT_EQ(ask(), result);
        EXPECT_TRUE(list.is_untouched());
    }
}

class QueryOverTheWireTest : public QueryTest {
protected:
    QueryOverTheWireTest() : QueryTest(ScriptedServer::Reach::over_the_wire) {}

    void expect_as_delivered(const Names& names)
    {
        deliver(names);
        EXPECT_EQ(ask(), 0);
        EXPECT_TRUE(list.names() == names);
    }
};

INSTANTIATE_TEST_SUITE_P(Operations, QueryOverTheWireTest, queries, name_of_query);

TEST_P(QueryOverTheWireTest, gives_empty_and_odd_names)
{
    expect_as_delivered({"", "gr\xc3\xb6\xc3\x9f", "", "\x01\t\x7f\xff"});
}

TEST_P(QueryOverTheWireTest, gives_no_names)
{
    expect_as_delivered({});
    EXPECT_NE(list.record()->names, nullptr);
}

TEST_P(QueryOverTheWireTest, gives_names_of_a_megabyte)
{
    expect_as_delivered({std::string(1 << 20, 'a'), "", std::string(1 << 20, 'b')});
}

TEST_P(QueryOverTheWireTest, gives_100000_names)
{
    Names names;
    for (int i = 0; i < 100000; ++i)
        names.push_back("point " + std::to_string(i));
    expect_as_delivered(names);
}

class PointsOfTypeTest : public ServerTest {};

TEST_F(PointsOfTypeTest, are_asked_for_with_the_type_unchanged)
{
    home->answer("get_all_point_by_typename", 0);
    CallersList list;
    for (const char* type : {"gr\xc3\xb6\xc3\x9f", "\x01", "", "$SYS"}) {
        home->forget_calls();
        EXPECT_EQ(vl_get_all_point_by_typename(list.record(), type, nullptr, nullptr), 0);
        EXPECT_EQ(home->calls(),
                  Calls{"get_all_point_by_typename(\"" + std::string(type) + "\")"});
        list.give_back();
    }
}

TEST_F(PointsOfTypeTest, of_null_are_asked_for_with_an_empty_type)
{
    home->answer("get_all_point_by_typename", 0);
    CallersList list;
    EXPECT_EQ(vl_get_all_point_by_typename(list.record(), nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), Calls{"get_all_point_by_typename(\"\")"});
}

class CreateSetTest : public ServerTest {};

TEST_F(CreateSetTest, sends_both_names_and_the_data_unchanged)
{
    home->answer("create_set", 3008);
    EXPECT_EQ(vl_create_set("gr\xc3\xb6\xc3\x9f", "\t\x01", "members", 6, nullptr, nullptr),
              3008);
    EXPECT_EQ(home->calls(),
              Calls{"create_set(\"gr\xc3\xb6\xc3\x9f\", \"\t\x01\", \"member\")"});
}

TEST_F(CreateSetTest, sends_null_names_as_empty_ones)
{
    home->answer("create_set", 0);
    EXPECT_EQ(vl_create_set(nullptr, nullptr, "x", 1, nullptr, nullptr), 0);
    EXPECT_EQ(home->calls(), Calls{"create_set(\"\", \"\", \"x\")"});
}

} // namespace

} // namespace velmo::tests
