// A client of the matrix: each exported function does what it is for, with names and
// values in UTF-8. The default server is new, keeps snapshots and has the realm "Süd/水".

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "tests/e2e/calls.h"

using namespace velmo::tests;

namespace {

const std::string text = "Füllstand 4½ m³ ≈ 水位 🚀";
const char* const realm = "Süd/水";

bool contains(const Names& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

TEST(Exports, OnTheMiddleware)
{
    EXPECT_EQ(vl_mid_connect(nullptr), VL_OK);
    EXPECT_EQ(vl_mid_is_connect("S"), VL_OK);
    const ServerRecord own = vl_get_servername("own");
    ASSERT_EQ(own.count, 1);
    EXPECT_STREQ(own.names[0], "S");
    EXPECT_EQ(listed([](NameList* list) { return vl_releam_seq(list, nullptr); }),
              (Names{"ROOT", realm}));
    setenv("VELMO_LANG", "en", 1);
    EXPECT_STRNE(get_error_string(OBJECT_ALREADY_EXSIT), get_error_string(-1));
    EXPECT_EQ(vl_mid_disconnect(), VL_OK);
    EXPECT_EQ(vl_mid_is_connect("S"), VL_OK);
}

TEST(Exports, OnPorts)
{
    ASSERT_EQ(create_port("Öl/aus", 1), VL_OK);
    ASSERT_EQ(create_port("Öl/ein", 2), VL_OK);
    EXPECT_EQ(create_port("Öl/ein", 3), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(connect("Öl/aus", "Öl/ein", 30004), VL_OK);
    EXPECT_EQ(
        listed([](NameList* list) { return vl_com_chennal_seq(list, nullptr, nullptr); }),
        (Names{"Öl/aus", "Öl/ein"}));
    ConnectionList connections{};
    ASSERT_EQ(vl_get_connection_info(&connections, nullptr, nullptr), VL_OK);
    ASSERT_EQ(connections.count, 1);
    EXPECT_STREQ(connections.first->first_text, "Öl/aus");
    EXPECT_STREQ(connections.first->second_text, "Öl/ein");
    vl_destory_connection_seq(&connections);
    EXPECT_EQ(enableCopy("Öl/aus", 0, nullptr, nullptr), VL_OK);
    EXPECT_EQ(enableCopy("Öl/none", 0, nullptr, nullptr), INVAILD_PORT_HANDLE);

    ASSERT_EQ(send(1, text), VL_OK);
    ASSERT_EQ(send_to_front(1, "first"), VL_OK);
    char buffer[5];
    ASSERT_EQ(vl_receive_packet(2, nullptr, buffer, sizeof buffer, 0, nullptr, nullptr),
              VL_OK);
    EXPECT_EQ(std::string(buffer, sizeof buffer), "first");
    EXPECT_EQ(receive(2, 0, 1), text);
    EXPECT_EQ(receive(2), in_brackets(EMPTY_QUEUE));
    EXPECT_EQ(receive(2, 1), in_brackets(TIME_OUT));

    ASSERT_EQ(reply(2, "reply"), VL_OK);
    ASSERT_EQ(reply(2, text), VL_OK);
    ASSERT_EQ(vl_receive_reply(1, buffer, sizeof buffer, 0, nullptr, nullptr), VL_OK);
    EXPECT_EQ(std::string(buffer, sizeof buffer), "reply");
    EXPECT_EQ(receive_reply(1), text);
    EXPECT_EQ(vl_disconenct_port(1, nullptr, nullptr), VL_OK);
    EXPECT_EQ(vl_disconenct_port(1, nullptr, nullptr), NOT_CONNECTED);
}

TEST(Exports, OnEvents)
{
    ASSERT_EQ(declare_event(7, "ruhig ☾"), VL_OK);
    ASSERT_EQ(add_event("Störung", 7), VL_OK);
    EXPECT_EQ(get_point("$SYS/events/Störung/data"), "ruhig ☾");
    EXPECT_EQ(raise_event("Störung", text), VL_OK);
    EXPECT_EQ(get_point("$SYS/events/Störung/data"), text);
    EXPECT_EQ(event_count("Störung"), "1");
    EXPECT_EQ(clear_event("Störung"), VL_OK);
    EXPECT_EQ(event_count("Störung"), "0");
}

TEST(Exports, OnPoints)
{
    ASSERT_EQ(create_point("Kessel/Füllstand"), VL_OK);
    EXPECT_EQ(get_point("Kessel/Füllstand"), in_brackets(NON_EXIST_DATA));
    EXPECT_EQ(
        listed([](NameList* list) { return vl_check_null_data(list, nullptr, nullptr); }),
        Names{"Kessel/Füllstand"});
    ASSERT_EQ(set_point("Kessel/Füllstand", text), VL_OK);
    EXPECT_EQ(get_point("Kessel/Füllstand"), text);
    ASSERT_EQ(vl_set_data_template_point_description("Kessel/Füllstand", "in Prozent ‰",
                                                     nullptr, nullptr),
              VL_OK);
    EXPECT_EQ(
        taken(vl_get_data_template_point_description("Kessel/Füllstand", nullptr, nullptr)),
        "in Prozent ‰");
    EXPECT_EQ(taken(vl_get_data_template_point_type("Kessel/Füllstand", nullptr, nullptr)),
              "text");
    EXPECT_EQ(point_info("Kessel/Füllstand"), "text|in Prozent ‰|" + text);
    char* type = nullptr;
    char* description = nullptr;
    void* value = nullptr;
    ASSERT_EQ(
        get_dtp_info("Kessel/Füllstand", &type, &description, &value, nullptr, nullptr),
        VL_OK);
    EXPECT_EQ(taken(type), "text");
    EXPECT_EQ(taken(description), "in Prozent ‰");
    EXPECT_EQ(taken(VL_OK, value, static_cast<unsigned int>(text.size())), text);

    ASSERT_EQ(create_set("Motor", "float64", "Größe\nΔt\n"), VL_OK);
    EXPECT_EQ(points_of("float64"), (Names{"Motor/Größe", "Motor/Δt"}));
    EXPECT_EQ(all_points(), (Names{"Kessel/Füllstand", "Motor/Größe", "Motor/Δt"}));
    EXPECT_TRUE(contains(listed([](NameList* list) {
                             return vl_get_query_data_type(list, nullptr, nullptr);
                         }),
                         "float64"));
    EXPECT_EQ(vl_remove_template_point("Motor/Δt", nullptr, nullptr), VL_OK);
    EXPECT_EQ(points_of("float64"), Names{"Motor/Größe"});
}

TEST(Exports, OnSnapshots)
{
    ASSERT_EQ(create_point("gesichert ✓"), VL_OK);
    ASSERT_EQ(set_point("gesichert ✓", text), VL_OK);
    EXPECT_EQ(vl_make_dt_snapshot(nullptr, nullptr), VL_OK);
    EXPECT_EQ(vl_load_dt_snapshot(nullptr, nullptr), VL_OK);
    ASSERT_EQ(vl_make_dtp_snapshot(nullptr, nullptr), VL_OK);
    ASSERT_EQ(set_point("gesichert ✓", "other"), VL_OK);
    ASSERT_EQ(vl_load_dtp_snapshot(nullptr, nullptr), VL_OK);
    EXPECT_EQ(get_point("gesichert ✓"), text);
    EXPECT_EQ(vl_make_port_snapshot(nullptr, nullptr), VL_OK);
    EXPECT_EQ(vl_load_port_snapshot(nullptr, nullptr), VL_OK);
}

TEST(Exports, OnContention)
{
    ASSERT_EQ(regist("Pumpen ⚙", "südlich", 1, text, "Ort"), VL_OK);
    EXPECT_EQ(get_point("$SYS/contention/Pumpen ⚙/master"), "südlich");
    EXPECT_EQ(get_point("$SYS/contention/Pumpen ⚙/contenders/südlich/data"), text);
    EXPECT_EQ(update("Pumpen ⚙", "südlich"), VL_OK);
    EXPECT_EQ(withdraw("Pumpen ⚙", "südlich"), VL_OK);
    EXPECT_EQ(update("Pumpen ⚙", "südlich"), CONTENDER_IS_NUL);
}

TEST(Exports, InARealmOfItsOwn)
{
    ASSERT_EQ(create_point("Kessel ♨", "text", realm), VL_OK);
    ASSERT_EQ(set_point("Kessel ♨", text, realm), VL_OK);
    EXPECT_EQ(point_info("Kessel ♨", realm), "text||" + text);
    EXPECT_EQ(get_point("Kessel ♨"), in_brackets(VARIABLE_IS_NOT_EXIST));
    ASSERT_EQ(create_port("Öl", 9, 0, realm), VL_OK);
    ASSERT_EQ(send(9, text, 0, realm), VL_OK);
    EXPECT_EQ(receive(9, 0, 0, realm), text);
    EXPECT_EQ(create_port("Öl", 9, 0, "Nord/水"), VL_NO_REFERENCE);
}

TEST(LargePackets, PassBothWays)
{
    std::string packet(8u << 20, '\0');
    for (std::size_t i = 0; i < packet.size(); ++i)
        packet[i] = static_cast<char>(i * 31 + i / 4096);
    ASSERT_EQ(create_port("p", 1), VL_OK);
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(send(1, packet), VL_OK);
        EXPECT_TRUE(receive(1) == packet);
    }
    ASSERT_EQ(reply(1, packet), VL_OK);
    EXPECT_TRUE(receive_reply(1) == packet);
    ASSERT_EQ(create_point("v", "bytes"), VL_OK);
    ASSERT_EQ(set_point("v", packet), VL_OK);
    EXPECT_TRUE(get_point("v") == packet);
}

} // namespace
