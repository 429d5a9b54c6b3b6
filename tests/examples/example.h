// Running an example.
#ifndef VELMO_TESTS_EXAMPLES_EXAMPLE_H
#define VELMO_TESTS_EXAMPLES_EXAMPLE_H

#include <gtest/gtest.h>

#include "tests/e2e/one_server.h"

namespace velmo::tests {

// Its program.
inline std::string example(const std::string& name)
{
    return std::string(EXAMPLES) + "/" + name;
}

// Runs one that ends by itself well; gives what it wrote.
inline std::string output_of(const Process::Command& command)
{
    Process process(command);
    EXPECT_EQ(process.wait(), 0) << process.err();
    EXPECT_EQ(process.err(), "");
    return process.out();
}

} // namespace velmo::tests

#endif
