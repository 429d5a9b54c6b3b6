#include "cli/table.h"

#include <gtest/gtest.h>

using velmo::cli::Style;
using velmo::cli::Table;

namespace {

Table tree()
{
    Table table({"SERVER", "ROLE"});
    table.add({"line", {"master", Style::good}});
    table.add({{"öfen", Style::plain, 1}, "", "more"});
    return table;
}

TEST(Table, StandsInColumnsWithATreesIndents)
{
    EXPECT_EQ(tree().aligned(false), "SERVER  ROLE\n"
                                     "line    master\n"
                                     "  öfen          more\n");
}

TEST(Table, ColoursDoNotMoveColumns)
{
    EXPECT_EQ(tree().aligned(true), "\033[1mSERVER\033[0m  \033[1mROLE\033[0m\n"
                                    "line    \033[32mmaster\033[0m\n"
                                    "  öfen          more\n");
}

TEST(Table, ForProgramsHasNeitherHeadsNorIndents)
{
    EXPECT_EQ(tree().separated(), "line\tmaster\nöfen\t\tmore\n");
}

TEST(Table, KeepsControlCharactersFromTheTerminal)
{
    Table table;
    table.add({"a\033[2Jb\tc\n"});
    EXPECT_EQ(table.aligned(true), "a\\x1b[2Jb\\x09c\\x0a\n");
    EXPECT_EQ(table.separated(), "a\\x1b[2Jb\\x09c\\x0a\n");
}

} // namespace
