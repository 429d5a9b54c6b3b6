// VelmoLang as a process sees it: each test runs a program that asks for texts.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

using velmo::tests::Process;
using velmo::tests::TemporaryFolder;

const std::string english = "The operation succeeded.\n";
const std::string german = "Die Operation war erfolgreich.\n";

// With no locale but the one that is given.
Process::Environment locale(Process::Environment given)
{
    given.insert({{"VELMO_LANG", ""},
                  {"LC_ALL", ""},
                  {"LC_MESSAGES", ""},
                  {"LANG", ""},
                  {"VELMO_LOG", "stderr"}});
    return given;
}

std::string text_of(const std::string& key, const Process::Environment& given)
{
    Process process({VELMO_LANG_HELPER, key}, locale(given));
    EXPECT_EQ(process.wait(), 0) << process.err();
    EXPECT_EQ(process.err(), "");
    return process.out();
}

TEST(VelmoLang, SpeaksEnglishByDefault)
{
    EXPECT_EQ(text_of("VL_OK", {}), english);
}

TEST(VelmoLang, SpeaksTheLanguageOfTheLocale)
{
    EXPECT_EQ(text_of("VL_OK", {{"LANG", "de_DE.UTF-8"}}), german);
    EXPECT_EQ(text_of("VL_OK", {{"LC_MESSAGES", "de_AT"}, {"LANG", "en_US"}}), german);
    EXPECT_EQ(text_of("VL_OK", {{"LC_ALL", "C"}, {"LANG", "de_DE"}}), english);
}

TEST(VelmoLang, VelmoLangOverridesTheLocale)
{
    EXPECT_EQ(text_of("VL_OK", {{"VELMO_LANG", "de"}, {"LC_ALL", "en_US.UTF-8"}}), german);
}

TEST(VelmoLang, ItsTextsAreUnicodeInTheCLocale)
{
    EXPECT_EQ(text_of("WOULD_BLOCK", {{"VELMO_LANG", "en"}}),
              "The queue is full, and the call was not to wait.\n");
    EXPECT_EQ(text_of("RECEIVER_IS_NOT_EXIST", {{"VELMO_LANG", "de"}}),
              "Den Empf\xC3\xA4nger gibt es nicht.\n");
}

TEST(VelmoLang, AMissingKeyGivesTheKeyItself)
{
    EXPECT_EQ(text_of("NO_SUCH_KEY", {}), "NO_SUCH_KEY\n");
}

// The library, moved away from its texts.
TEST(VelmoLang, WithoutItsTextsGivesKeysAndReportsItOnce)
{
    const TemporaryFolder folder;
    const fs::path library = VELMO_UTIL_LIBRARY;
    const fs::path moved = folder.path() / VELMO_UTIL_SONAME;
    fs::copy_file(library, moved);
    // The helper's own search path may come before LD_LIBRARY_PATH.
    Process process({VELMO_LANG_HELPER, "VL_OK", "VL_FAIL"},
                    locale({{"VELMO_LANG", "de"},
                            {"LD_PRELOAD", moved},
                            {"ASAN_OPTIONS", "verify_asan_link_order=0"}}));
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.out(), "VL_OK\nVL_FAIL\n");
    const std::string log = process.err();
    EXPECT_NE(log.find("no texts from "), std::string::npos) << log;
    EXPECT_EQ(log.find("no texts from "), log.rfind("no texts from ")) << log;
}

} // namespace
