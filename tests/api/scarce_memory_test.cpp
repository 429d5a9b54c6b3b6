// The operations on a server where there is no memory for what they carry.

#include <cstdlib>
#include <new>

#include "api/name_list.h"
#include "tests/api/data_operations.h"
#include "tests/api/scarce_memory.h"
#include "tests/support/callers_list.h"
#include "tests/support/server_test.h"

namespace velmo::tests {

namespace {

using Names = Script::Names;

// A size that nothing else in the process has.
constexpr std::size_t odd_size = 4321;

class OutgoingDataWithoutMemoryTest : public ServerTest,
                                      public ::testing::WithParamInterface<DataOperation> {
};

INSTANTIATE_TEST_SUITE_P(Operations, OutgoingDataWithoutMemoryTest,
                         ::testing::ValuesIn(data_operations),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(OutgoingDataWithoutMemoryTest, fail_before_any_call_and_drop_the_reference)
{
    EXPECT_TRUE(next_call_looks_up(GetParam().key)); // has the reference cached
    home->answer(GetParam().remote, 0);
    home->forget_calls();
    const std::string data(odd_size, 'd');
    WatchedArrays arrays(odd_size);
    arrays.refuse_after(0);
    EXPECT_EQ(GetParam().call(data.data(), odd_size), GetParam().failure);
    EXPECT_TRUE(home->calls().empty());
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_TRUE(next_call_looks_up(GetParam().key));
    arrays.refuse_none();
    EXPECT_EQ(GetParam().call(data.data(), odd_size), 0);
}

class IncomingDataWithoutMemoryTest : public ServerTest {
protected:
    IncomingDataWithoutMemoryTest()
    {
        for (const char* remote : {"receive_packet", "receive_reply", "get_dtp_info"})
            home->answer(remote, Reply{0, "hello"});
    }

    char stale[1] = {'?'};
    void* data = stale;
    unsigned int length = 77;
};

TEST_F(IncomingDataWithoutMemoryTest, a_packets_block_is_null_with_123)
{
    {
        const NoBlocks now;
        EXPECT_EQ(vl_receive_packetv(7, nullptr, &data, &length, 0, nullptr, nullptr), 123);
    }
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(length, 0u);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_TRUE(next_call_looks_up());
}

TEST_F(IncomingDataWithoutMemoryTest, a_replys_block_is_left_as_it_was_with_127)
{
    {
        const NoBlocks now;
        EXPECT_EQ(vl_receive_reply2(7, &data, &length, 0, nullptr, nullptr), 127);
    }
    EXPECT_EQ(data, stale);
    EXPECT_EQ(length, 77u);
    EXPECT_TRUE(next_call_looks_up());
}

TEST_F(IncomingDataWithoutMemoryTest, a_points_block_is_left_as_it_was_with_150)
{
    char* text1 = stale;
    char* text2 = stale;
    data = std::malloc(5);
    void* const callers = data;
    {
        const NoBlocks now;
        EXPECT_EQ(get_dtp_info2("point", &text1, &text2, &data, &length, nullptr, nullptr),
                  150);
    }
    EXPECT_EQ(text1, nullptr);
    EXPECT_EQ(text2, nullptr);
    EXPECT_EQ(data, callers);
    EXPECT_EQ(length, 77u);
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_TRUE(next_call_looks_up(keys::data_template_point_service));
    vl_free_memory(&data);
}

class ArrivingDataWithoutMemoryTest : public ServerTest {
protected:
    ArrivingDataWithoutMemoryTest() : ServerTest(ScriptedServer::Reach::over_the_wire) {}
};

TEST_F(ArrivingDataWithoutMemoryTest, give_the_failure_code_and_the_next_call_is_well)
{
    EXPECT_TRUE(next_call_looks_up()); // is connected
    home->answer("receive_reply", Reply{0, std::string(odd_size, 'd')});
    std::string buffer(odd_size, '?');
    const auto receive = [&buffer] {
        return vl_receive_reply(7, buffer.data(), odd_size, 0, nullptr, nullptr);
    };
    WatchedArrays arrays(odd_size);
    arrays.refuse_after(0);
    EXPECT_EQ(receive(), 127);
    EXPECT_EQ(buffer, std::string(odd_size, '?'));
    arrays.refuse_none();
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(buffer, std::string(odd_size, 'd'));
}

class ConnectionsWithoutMemoryTest : public ServerTest,
                                     public ::testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Blocks, ConnectionsWithoutMemoryTest, ::testing::Values(0, 1, 2));

TEST_P(ConnectionsWithoutMemoryTest, are_those_before_and_a_count_of_one_more_with_151)
{
    const Script::Pairs three{{"a", "b"}, {"b", "c"}, {"c", "d"}};
    Reply reply;
    reply.connections = three;
    home->answer("get_connection_info", reply);
    ConnectionList list{};
    {
        const NoBlocks after(GetParam());
        EXPECT_EQ(vl_get_connection_info(&list, nullptr, nullptr), 151);
    }
    EXPECT_EQ(list.count, GetParam() + 1);
    Script::Pairs listed;
    for (const ConnectionBlock* block = list.first; block; block = block->next)
        listed.emplace_back(block->first_text, block->second_text);
    EXPECT_EQ(listed, Script::Pairs(three.begin(), three.begin() + GetParam()));
    EXPECT_TRUE(logged_lines().empty());
    EXPECT_TRUE(next_call_looks_up());
    vl_destory_connection_seq(&list);
    EXPECT_EQ(list.count, 0);
}

struct Listing {
    const char* remote;
    int (*get)(NameList* list);
    int failure;
    bool clears_first;
};

void PrintTo(const Listing& listing, std::ostream* out)
{
    *out << listing.remote;
}

int get_all_point_name(NameList* list)
{
    return vl_get_all_point_name(list, nullptr, nullptr);
}

int get_all_point_by_typename(NameList* list)
{
    return vl_get_all_point_by_typename(list, "type", nullptr, nullptr);
}

int check_null_data(NameList* list)
{
    return vl_check_null_data(list, nullptr, nullptr);
}

int get_query_data_type(NameList* list)
{
    return vl_get_query_data_type(list, nullptr, nullptr);
}

int com_chennal_seq(NameList* list)
{
    return vl_com_chennal_seq(list, nullptr, nullptr);
}

class NamesWithoutMemoryTest : public ServerTest,
                               public ::testing::WithParamInterface<Listing> {
protected:
    NamesWithoutMemoryTest()
    {
        Reply reply;
        reply.names = names;
        home->answer(GetParam().remote, reply);
    }
    ~NamesWithoutMemoryTest() override { list.forget(); }

    int get() { return GetParam().get(list.record()); }

    // Of the same odd size with their NUL.
    const Names names{std::string(odd_size - 1, 'a'), std::string(odd_size - 1, 'b')};
    CallersList list;
};

INSTANTIATE_TEST_SUITE_P(
    Operations, NamesWithoutMemoryTest,
    ::testing::Values(Listing{"get_all_point_name", get_all_point_name, 145, false},
                      Listing{"get_all_point_by_typename", get_all_point_by_typename, 147,
                              false},
                      Listing{"check_null_data", check_null_data, 146, false},
                      Listing{"get_query_data_type", get_query_data_type, 140, false},
                      Listing{"com_chennal_seq", com_chennal_seq, 143, true}),
    [](const auto& test) { return std::string(test.param.remote); });

TEST_P(NamesWithoutMemoryTest, for_the_array_are_a_count_alone)
{
    char** const before = GetParam().clears_first ? nullptr : list.record()->names;
    const WatchedArrays arrays(odd_size);
    {
        const NoBlocks now;
        EXPECT_EQ(get(), GetParam().failure);
    }
    EXPECT_EQ(list.record()->count, 2u);
    EXPECT_EQ(list.record()->names, before);
    EXPECT_EQ(arrays.alive(), 0);
    EXPECT_TRUE(logged_lines().empty());
}

TEST_P(NamesWithoutMemoryTest, for_a_second_copy_are_all_there)
{
    WatchedArrays arrays(odd_size);
    arrays.refuse_after(2); // the server's answer
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(list.names(), names);
    list.give_back();
    EXPECT_EQ(arrays.alive(), 0);
}

// Of a sequence that lends its names, which have to be copied.
TEST(LentNamesWithoutMemoryTest, for_a_name_are_those_before)
{
    std::string first(odd_size - 1, 'a'), second(odd_size - 1, 'b');
    char* strings[] = {first.data(), second.data()};
    Velmo::NAME_SEQ names(2, 2, strings, false);
    NameList list{};
    WatchedArrays arrays(odd_size);
    arrays.refuse_after(1);
    EXPECT_THROW(velmo::api::fill(list, names), std::bad_alloc);
    EXPECT_EQ(list.count, 2u);
    ASSERT_NE(list.names, nullptr);
    EXPECT_EQ(list.names[0], first);
    EXPECT_EQ(arrays.alive(), 1);
    CORBA::string_free(list.names[0]);
    EXPECT_EQ(arrays.alive(), 0);
    vl_free_memory(reinterpret_cast<void**>(&list.names));
}

// Alone in catching no more than what the remote call raises.
class RealmsWithoutMemoryTest : public ServerTest {
protected:
    NameList list{};
};

TEST_F(RealmsWithoutMemoryTest, for_the_array_let_the_exception_out)
{
    Reply reply;
    reply.names = Names{"alpha"};
    home->answer("get_releam_seq", reply);
    for (const char* server : {"home", "has none"}) {
        const NoBlocks now;
        EXPECT_THROW(vl_releam_seq(&list, server), std::bad_alloc);
    }
    EXPECT_EQ(list.names, nullptr);
}

TEST_F(RealmsWithoutMemoryTest, for_a_second_copy_are_all_there)
{
    const std::string name(odd_size - 1, 'a');
    Reply reply;
    reply.names = Names{name};
    home->answer("get_releam_seq", reply);
    WatchedArrays arrays(odd_size);
    arrays.refuse_after(1); // the server's answer
    EXPECT_EQ(vl_releam_seq(&list, nullptr), 0);
    ASSERT_EQ(list.count, 1u);
    EXPECT_EQ(list.names[0], name);
    CORBA::string_free(list.names[0]);
    EXPECT_EQ(arrays.alive(), 0);
    vl_free_memory(reinterpret_cast<void**>(&list.names));
}

} // namespace

} // namespace velmo::tests
