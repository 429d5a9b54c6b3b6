// The beginning that tests of the library share.
#ifndef VELMO_TESTS_SUPPORT_LIBRARY_TEST_H
#define VELMO_TESTS_SUPPORT_LIBRARY_TEST_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/lang_stand_in.h"
#include "tests/support/log_stand_in.h"
#include "tests/support/naming_stand_in.h"
#include "tests/support/reader_stand_in.h"
#include "vlReferenceContainer.h"

namespace velmo::tests {

// Every test finds the stand-ins and the process's registry as new, and leaves no
// reference behind.
class LibraryTest : public ::testing::Test {
protected:
    LibraryTest() { forget_everything(); }
    ~LibraryTest() override { forget_everything(); }

    // The servers at position "own"; "" stands for a record without a name, which
    // alone leaves the position without a server.
    void set_own_servers(std::vector<std::string> names)
    {
        reader.set_servers("own", std::move(names));
        registry().BuildSettingData();
    }

    static vlReferenceContainer& registry() { return *vlReferenceContainer::instance(); }

    NamingStandIn& naming = NamingStandIn::instance();
    ReaderStandIn& reader = ReaderStandIn::instance();

private:
    void forget_everything()
    {
        naming.reset();
        reader.reset();
        registry().BuildSettingData();
        reader.reset();
        take_text_away("");
        clear_logged_lines();
    }
};

} // namespace velmo::tests

#endif
