// The beginning of tests that need one server.
#ifndef VELMO_TESTS_E2E_ONE_SERVER_H
#define VELMO_TESTS_E2E_ONE_SERVER_H

#include <gtest/gtest.h>

#include "tests/e2e/calls.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

namespace velmo::tests {

// It runs, and is the default one.
class OneServer : public ::testing::Test {
protected:
    explicit OneServer(std::vector<std::string> arguments = {})
        : velmod(std::move(arguments))
    {
    }

    Velmod velmod;
    SettingsFile settings{"local=\"S\"", {{"S", velmod.naming_url()}}};
};

// Names that nothing but their bytes makes special.
inline const std::vector<std::string> unusual_names{
    "a/b", "/", "two\nlines", "\xFF\xC0\x80", " ", "%2F", std::string(255, 'n')};

} // namespace velmo::tests

#endif
