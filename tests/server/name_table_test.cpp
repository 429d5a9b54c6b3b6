#include "server/model/name_table.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tests/server/images.h"

using velmo::model::NameTable;

namespace {

using Names = std::vector<std::string>;

NameTable sorted(const Names& names)
{
    NameTable table;
    for (const std::string& name : names)
        table.add(name);
    table.sort();
    return table;
}

TEST(NameTables, AreInTheOrderOfBytes)
{
    EXPECT_EQ(sorted({"b", "a/2", "", "a", "\xc3\xbc", "Z", "a/10"}),
              (Names{"", "Z", "a", "a/10", "a/2", "b", "\xc3\xbc"}));
    EXPECT_TRUE(sorted({}).empty());
}

TEST(NameTables, HoldNamesOfAnyLength)
{
    std::mt19937 random(1);
    Names names;
    for (int i = 0; i < 3000; ++i)
        names.emplace_back(random() % 255, static_cast<char>('a' + random() % 26));
    names.emplace_back(200000, 'x');
    names.emplace_back("after the large one");
    const NameTable table = sorted(names);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(table, names);
    EXPECT_EQ(table.size(), names.size());
}

TEST(NameTables, KeepTheirNamesWhenTheyMove)
{
    NameTable table = sorted({"b", "a"});
    const NameTable moved = std::move(table);
    EXPECT_EQ(moved, (Names{"a", "b"}));
}

} // namespace
