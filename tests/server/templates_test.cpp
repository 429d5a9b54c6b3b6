// Templates and catalogues of them.
#include <gtest/gtest.h>

#include "tests/server/point_fixture.h"

using namespace velmo;
using namespace velmo::tests;
using model::Kind;
using model::Template;
using model::TemplateCatalogue;
using model::TemplateDefinition;
using model::TemplateError;

namespace {

constexpr std::size_t max_bytes = 1000;

TemplateDefinition with_initial(const std::string& kind, const std::string& initial)
{
    TemplateDefinition written = definition("t", kind);
    written.initial = initial;
    return written;
}

TemplateDefinition with_size(TemplateDefinition written, std::uint64_t size)
{
    written.size = size;
    return written;
}

TemplateDefinition with_maximum(TemplateDefinition written, std::uint64_t size)
{
    written.max_size = size;
    return written;
}

// The initial value's bytes in hexadecimal, or "no data", or why there is no template.
std::string initial_of(const TemplateDefinition& written)
try {
    const Template checked(written, max_bytes);
    if (!checked.initial())
        return "no data";
    std::string text;
    for (const std::uint8_t byte : *checked.initial()) {
        text += "0123456789abcdef"[byte / 16];
        text += "0123456789abcdef"[byte % 16];
    }
    return text;
} catch (const TemplateError& error) {
    return error.what();
}

std::string initial_of(const std::string& kind, const std::string& initial)
{
    return initial_of(with_initial(kind, initial));
}

TEST(Templates, AScalarTakesValuesOfItsSizeOnly)
{
    const std::map<std::string, std::size_t> sizes{
        {"int8", 1},    {"uint8", 1},   {"int16", 2}, {"uint16", 2},
        {"int32", 4},   {"uint32", 4},  {"int64", 8}, {"uint64", 8},
        {"float32", 4}, {"float64", 8}, {"bool", 1}};
    for (const auto& [kind, size] : sizes) {
        const Template scalar(definition("t", kind), max_bytes);
        EXPECT_EQ(name_of(scalar.kind()), kind);
        EXPECT_FALSE(scalar.accepts(0)) << kind;
        EXPECT_FALSE(scalar.accepts(size - 1)) << kind;
        EXPECT_TRUE(scalar.accepts(size)) << kind;
        EXPECT_FALSE(scalar.accepts(size + 1)) << kind;
    }
}

TEST(Templates, TextAndBytesTakeAnySizeUnlessToldOtherwise)
{
    for (const std::string kind : {"text", "bytes"}) {
        const Template any(definition("t", kind), max_bytes);
        EXPECT_TRUE(any.accepts(0));
        EXPECT_TRUE(any.accepts(max_bytes));
        EXPECT_FALSE(any.accepts(max_bytes + 1));
        const Template fixed(with_size(definition("t", kind), 10), max_bytes);
        EXPECT_FALSE(fixed.accepts(9));
        EXPECT_TRUE(fixed.accepts(10));
        EXPECT_FALSE(fixed.accepts(11));
        const Template up_to(with_maximum(definition("t", kind), 10), max_bytes);
        EXPECT_TRUE(up_to.accepts(0));
        EXPECT_TRUE(up_to.accepts(10));
        EXPECT_FALSE(up_to.accepts(11));
        const Template nothing(with_size(definition("t", kind), 0), max_bytes);
        EXPECT_TRUE(nothing.accepts(0));
        EXPECT_FALSE(nothing.accepts(1));
    }
}

TEST(Templates, NumbersAreLittleEndian)
{
    EXPECT_EQ(initial_of("int8", "-1"), "ff");
    EXPECT_EQ(initial_of("uint8", "255"), "ff");
    EXPECT_EQ(initial_of("int16", "-2"), "feff");
    EXPECT_EQ(initial_of("uint16", "258"), "0201");
    EXPECT_EQ(initial_of("int32", "1"), "01000000");
    EXPECT_EQ(initial_of("uint32", "4294967295"), "ffffffff");
    EXPECT_EQ(initial_of("int64", "-9223372036854775808"), "0000000000000080");
    EXPECT_EQ(initial_of("uint64", "72623859790382856"), "0807060504030201");
    EXPECT_EQ(initial_of("float32", "1.5"), "0000c03f");
    EXPECT_EQ(initial_of("float64", "-2e0"), "00000000000000c0");
}

TEST(Templates, OtherInitialValues)
{
    EXPECT_EQ(initial_of("bool", "true"), "01");
    EXPECT_EQ(initial_of("bool", "false"), "00");
    EXPECT_EQ(initial_of("text", "a\xc3\xa4"), "61c3a4");
    EXPECT_EQ(initial_of("text", ""), "");
    EXPECT_EQ(initial_of("bytes", "00fFa1"), "00ffa1");
    EXPECT_EQ(initial_of("bytes", ""), "");
    EXPECT_EQ(initial_of(definition("t", "bytes")), "no data");
}

TEST(Templates, AnInitialValueOfAnotherKindIsRefused)
{
    const std::vector<std::pair<std::string, std::string>> bad{
        {"int8", "128"},     {"int8", ""},        {"uint8", "-1"}, {"uint8", "256"},
        {"int32", "1.0"},    {"int32", " 1"},     {"int32", "1 "}, {"uint64", "0x10"},
        {"float32", "1e99"}, {"float64", "half"}, {"bool", "yes"}, {"bool", "1"},
        {"bytes", "abc"},    {"bytes", "0g"},     {"bytes", "-1"}};
    for (const auto& [kind, initial] : bad)
        EXPECT_EQ(initial_of(kind, initial), "template \"t\": the initial value \"" +
                                                 initial + "\" is none of kind " + kind);
}

TEST(Templates, AnInitialValueThatDoesNotFitIsRefused)
{
    EXPECT_EQ(initial_of(with_size(with_initial("text", "abc"), 3)), "616263");
    EXPECT_EQ(initial_of(with_size(with_initial("text", "abc"), 4)),
              "template \"t\": the initial value has 3 bytes, which do not fit");
    EXPECT_EQ(initial_of(with_maximum(with_initial("bytes", "0001"), 1)),
              "template \"t\": the initial value has 2 bytes, which do not fit");
}

TEST(Templates, BadDefinitionsAreRefused)
{
    EXPECT_EQ(initial_of(definition("t", "integer")),
              "template \"t\": there is no kind \"integer\"");
    EXPECT_EQ(initial_of(definition("", "text")),
              "template \"\": a name has 1 to 255 bytes");
    EXPECT_EQ(initial_of(definition(std::string(255, 'n'), "text")), "no data");
    EXPECT_EQ(initial_of(definition(std::string(256, 'n'), "text")),
              "template \"" + std::string(256, 'n') + "\": a name has 1 to 255 bytes");
    EXPECT_EQ(initial_of(definition("$SYS", "text")),
              "template \"$SYS\": the name is the server's own");
    EXPECT_EQ(initial_of(with_size(definition("t", "int8"), 1)),
              "template \"t\": the size of a value of kind int8 is known");
    EXPECT_EQ(initial_of(with_maximum(with_size(definition("t", "text"), 1), 2)),
              "template \"t\": there is a size or a maximum size, not both");
    for (const std::uint64_t size : {std::uint64_t{1001}, ~std::uint64_t{0}}) {
        EXPECT_EQ(initial_of(with_size(definition("t", "text"), size)),
                  "template \"t\": no value may have more than 1000 bytes");
        EXPECT_EQ(initial_of(with_maximum(definition("t", "text"), size)),
                  "template \"t\": no value may have more than 1000 bytes");
    }
}

class Catalogue : public ::testing::Test {
protected:
    std::string names() const
    {
        Names all;
        const vl_result result = catalogue.names(all);
        std::string text;
        for (const std::string& name : all)
            text.append(text.empty() ? "" : " ").append(name);
        return coded(result, text);
    }

    static std::string names_after(const std::string& name)
    {
        return "bool bytes float32 float64 int16 int32 int64 int8 text uint16 uint32 "
               "uint64 uint8" +
               name;
    }

    TemplateCatalogue catalogue{max_bytes};
    std::string problem;
};

TEST_F(Catalogue, HoldsOneTemplateForEachKind)
{
    EXPECT_EQ(names(), names_after(""));
    EXPECT_EQ(catalogue.find("float32")->kind(), Kind::float32);
    EXPECT_EQ(catalogue.find("float32")->initial(), nullptr);
    EXPECT_EQ(catalogue.find("float"), nullptr);
    EXPECT_TRUE(catalogue.image().empty());
}

TEST_F(Catalogue, WithoutAnyTemplateThereIsACode)
{
    const TemplateCatalogue empty(max_bytes, {});
    Names all{"as before"};
    EXPECT_EQ(empty.names(all), TYPE_LIST_IS_NUL);
    EXPECT_EQ(all, Names{"as before"});
}

TEST_F(Catalogue, NamesAreInByteOrder)
{
    for (const std::string name : {"\xff", "Z", "a", "zz"})
        catalogue.add(definition(name, "text"));
    EXPECT_EQ(names(), "Z a " + names_after(" zz \xff"));
}

TEST_F(Catalogue, ANameThatIsInUseIsRefused)
{
    catalogue.add(definition("mine", "text"));
    EXPECT_THROW(catalogue.add(definition("mine", "int8")), TemplateError);
    EXPECT_THROW(catalogue.add(definition("int8", "int8")), TemplateError);
    EXPECT_THROW(catalogue.add(definition("other", "none")), TemplateError);
    EXPECT_EQ(catalogue.find("mine")->kind(), Kind::text);
    EXPECT_EQ(names(), "bool bytes float32 float64 int16 int32 int64 int8 mine text "
                       "uint16 uint32 uint64 uint8");
}

TEST_F(Catalogue, AnImageMakesAnEqualCatalogue)
{
    TemplateDefinition full = with_maximum(with_initial("text", "none yet"), 100);
    full.description = "of a pump";
    catalogue.add(full);
    catalogue.add(with_size(definition("s", "bytes"), 12));
    const auto image = catalogue.image();
    ASSERT_EQ(image.size(), 2u);
    EXPECT_EQ(image[0].name, "s");
    EXPECT_TRUE(image[1] == full);

    TemplateCatalogue other(max_bytes);
    ASSERT_EQ(other.restore(image, problem), VL_OK) << problem;
    EXPECT_TRUE(other.image() == image);
    EXPECT_TRUE(other.find("s")->accepts(12));
    EXPECT_FALSE(other.find("s")->accepts(11));
    EXPECT_EQ(text_of(other.find("t")->initial()), "none yet");
}

TEST_F(Catalogue, RestoringReplacesWhatWasRestored)
{
    ASSERT_EQ(
        catalogue.restore({definition("a", "text"), definition("b", "text")}, problem),
        VL_OK);
    const auto kept = catalogue.find("a");
    ASSERT_EQ(
        catalogue.restore({definition("b", "int8"), definition("c", "text")}, problem),
        VL_OK);
    EXPECT_EQ(catalogue.find("a"), nullptr);
    EXPECT_EQ(catalogue.find("b")->kind(), Kind::int8);
    EXPECT_NE(catalogue.find("c"), nullptr);
    EXPECT_EQ(kept->name(), "a");
}

TEST_F(Catalogue, WhatIsConfiguredStaysWhenRestoring)
{
    catalogue.add(definition("mine", "int8"));
    catalogue.add(definition("new", "int8"));
    ASSERT_EQ(
        catalogue.restore({definition("mine", "text"), definition("old", "text")}, problem),
        VL_OK);
    EXPECT_EQ(catalogue.find("mine")->kind(), Kind::int8);
    EXPECT_NE(catalogue.find("new"), nullptr);
    EXPECT_NE(catalogue.find("old"), nullptr);
}

TEST_F(Catalogue, ABadImageChangesNothing)
{
    ASSERT_EQ(catalogue.restore({definition("a", "text")}, problem), VL_OK);
    const std::vector<std::pair<std::vector<TemplateDefinition>, std::string>> bad{
        {{definition("b", "text"), definition("c", "long")},
         "template \"c\": there is no kind \"long\""},
        {{definition("b", "text"), definition("b", "text")},
         "template \"b\": the name is in use"},
        {{definition("b", "text"), definition("int8", "int8")},
         "template \"int8\": the name is a built-in one"}};
    for (const auto& [image, reason] : bad) {
        EXPECT_EQ(catalogue.restore(image, problem), FAIL_TO_CREATE_DATA_TYPE);
        EXPECT_EQ(problem, reason);
        EXPECT_NE(catalogue.find("a"), nullptr);
        EXPECT_EQ(catalogue.find("b"), nullptr);
    }
}

} // namespace
