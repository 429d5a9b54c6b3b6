// velmod's points and templates, called over the broker.
#include <gtest/gtest.h>

#include "tests/server/client.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

using Velmo::DT_POINT_SVC::DT_Point_Factory;
using Velmo::DT_POINT_SVC::DT_Point_Factory_var;
using Velmo::SYSTEM_SVC::DT_manager;
using Velmo::SYSTEM_SVC::DT_manager_var;
using Names = std::vector<std::string>;

Names names_in(const Velmo::NAME_SEQ& sequence)
{
    Names names;
    for (CORBA::ULong i = 0; i < sequence.length(); ++i)
        names.emplace_back(sequence[i].in());
    return names;
}

class VelmodPoints : public ::testing::Test {
protected:
    explicit VelmodPoints(std::vector<std::string> arguments = {})
        : velmod(std::move(arguments)), points(point_service(""))
    {
    }

    DT_Point_Factory_var point_service(const std::string& realm) const
    {
        CORBA::Object_var object =
            resolve(velmod.naming_url(), realm + keys::data_template_point_service);
        return DT_Point_Factory_var(DT_Point_Factory::_narrow(object.in()));
    }

    // The value, or the code in brackets.
    std::string get(const char* name)
    {
        Velmo::DATA_BUFFER_var value;
        const CORBA::Long result = points->get_DTP(name, value.out());
        if (result == VL_OK)
            return text(value.in());
        EXPECT_EQ(value->length(), 0u);
        return "[" + std::to_string(result) + "]";
    }

    // "CODE|TYPE|DESCRIPTION|VALUE"
    std::string info(const char* name)
    {
        CORBA::String_var type, description;
        Velmo::DATA_BUFFER_var value;
        const CORBA::Long result =
            points->get_dtp_info(name, type.out(), description.out(), value.out());
        return std::to_string(result) + "|" + type.in() + "|" + description.in() + "|" +
               text(value.in());
    }

    Names all_names()
    {
        Velmo::NAME_SEQ_var names;
        EXPECT_EQ(points->get_all_point_name(names.out()), VL_OK);
        return names_in(names.in());
    }

    std::string type(const char* name)
    {
        CORBA::String_var text = points->get_DTP_type(name);
        return text.in();
    }

    std::string description(const char* name)
    {
        CORBA::String_var text = points->get_DTP_description(name);
        return text.in();
    }

    Velmod velmod;
    DT_Point_Factory_var points;
};

class VelmodPointsInRealms : public VelmodPoints {
protected:
    VelmodPointsInRealms() : VelmodPoints({"--realm", "alpha"}) {}
};

TEST_F(VelmodPoints, APointFromItsCreationToItsEnd)
{
    ASSERT_EQ(points->create_DTP("p", "int32"), VL_OK);
    EXPECT_EQ(points->create_DTP("p", "int32"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(points->create_DTP("q", "no such"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(get("p"), "[2001]");
    EXPECT_EQ(info("p"), "0|int32||");
    EXPECT_EQ(points->set_DTP("p", buffer("12345")), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(points->set_DTP("p", buffer("1234")), VL_OK);
    EXPECT_EQ(points->set_DTP_description("p", "a number"), VL_OK);
    EXPECT_EQ(get("p"), "1234");
    EXPECT_EQ(info("p"), "0|int32|a number|1234");
    EXPECT_EQ(type("p"), "int32");
    EXPECT_EQ(description("p"), "a number");
    EXPECT_EQ(points->remove_DTP("p"), VL_OK);
    EXPECT_EQ(get("p"), "[4002]");
}

TEST_F(VelmodPoints, AnUnknownPointHasACodeAndEmptyTexts)
{
    EXPECT_EQ(get("none"), "[4002]");
    EXPECT_EQ(info("none"), "4002|||");
    EXPECT_EQ(type("none"), "");
    EXPECT_EQ(description("none"), "");
    EXPECT_EQ(points->set_DTP("none", buffer("x")), VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(points->set_DTP_description("none", "x"), VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(points->remove_DTP("none"), VARIABLE_IS_NOT_EXIST);
}

TEST_F(VelmodPoints, NamesOfAllKinds)
{
    Velmo::NAME_SEQ_var names;
    EXPECT_EQ(all_names(), Names{});
    ASSERT_EQ(points->create_set("set", "text", buffer("b\na\n")), VL_OK);
    ASSERT_EQ(points->create_DTP("i", "int8"), VL_OK);
    ASSERT_EQ(points->set_DTP("set/a", buffer("")), VL_OK);
    EXPECT_EQ(all_names(), (Names{"i", "set/a", "set/b"}));
    EXPECT_EQ(points->get_all_point_by_typename(names.out(), "text"), VL_OK);
    EXPECT_EQ(names_in(names.in()), (Names{"set/a", "set/b"}));
    EXPECT_EQ(points->get_all_point_by_typename(names.out(), "none"),
              ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(names->length(), 0u);
    EXPECT_EQ(points->check_null_data(names.out()), VL_OK);
    EXPECT_EQ(names_in(names.in()), (Names{"i", "set/b"}));
    EXPECT_EQ(points->create_set("set", "text", buffer("")), INVAILD_NULL_PARAMETER);
}

TEST_F(VelmodPoints, ValuesOfAnyLengthAndKindPassUnchanged)
{
    ASSERT_EQ(points->create_DTP("p", "bytes"), VL_OK);
    for (const std::size_t length : {0u, 1u, 1023u, 8192u, 16384u, 65536u, 3u << 20}) {
        std::string sent(length, '\0');
        for (std::size_t i = 0; i < length; ++i)
            sent[i] = static_cast<char>(i * 7 >> 3);
        ASSERT_EQ(points->set_DTP("p", buffer(sent)), VL_OK);
        EXPECT_TRUE(get("p") == sent) << length;
    }
}

TEST_F(VelmodPoints, NamesOfOneMegabyteAreRefused)
{
    const std::string name(1u << 20, 'n');
    EXPECT_EQ(points->create_DTP(name.c_str(), "text"), PARAMETER_ERROR);
    EXPECT_EQ(points->create_DTP("p", name.c_str()), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(points->create_set(name.c_str(), "text", buffer("a")), PARAMETER_ERROR);
    EXPECT_EQ(get(name.c_str()), "[4002]");
    EXPECT_EQ(all_names(), Names{});
}

TEST_F(VelmodPoints, TheServersOwnPointsAreReadOnly)
{
    Port_Factory_var ports = port_service(velmod.naming_url());
    ASSERT_EQ(ports->create_port("from", 7, 0), VL_OK);
    EXPECT_EQ(get("$SYS/ports/from/handle"), "7");
    EXPECT_EQ(type("$SYS/ports/from/handle"), "$SYS");
    EXPECT_EQ(points->set_DTP("$SYS/ports/from/handle", buffer("8")), PARAMETER_ERROR);
    EXPECT_EQ(points->remove_DTP("$SYS/ports/from/handle"), PARAMETER_ERROR);
    EXPECT_EQ(all_names(), Names{});
    Velmo::NAME_SEQ_var names;
    EXPECT_EQ(points->get_all_point_by_typename(names.out(), "$SYS"), VL_OK);
    const Names listed = names_in(names.in());
    EXPECT_EQ(std::count(listed.begin(), listed.end(), "$SYS/ports/from/handle"), 1);
}

TEST_F(VelmodPoints, TheBuiltInTemplatesAreListed)
{
    CORBA::Object_var object = resolve(velmod.naming_url(), keys::data_template_service);
    DT_manager_var templates = DT_manager::_narrow(object.in());
    Velmo::NAME_SEQ_var names;
    ASSERT_EQ(templates->get_query_data_type(names.out()), VL_OK);
    EXPECT_EQ(names_in(names.in()),
              (Names{"bool", "bytes", "float32", "float64", "int16", "int32", "int64",
                     "int8", "text", "uint16", "uint32", "uint64", "uint8"}));
}

TEST_F(VelmodPointsInRealms, ARealmHasItsOwnPoints)
{
    DT_Point_Factory_var alpha = point_service("alpha/");
    ASSERT_EQ(points->create_DTP("p", "text"), VL_OK);
    ASSERT_EQ(alpha->create_DTP("p", "int8"), VL_OK);
    CORBA::String_var of_alpha = alpha->get_DTP_type("p");
    EXPECT_STREQ(of_alpha.in(), "int8");
    EXPECT_EQ(type("p"), "text");
}

} // namespace
