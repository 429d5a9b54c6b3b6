// What an installation has, and that nothing of it stays.
#include <gtest/gtest.h>

#include <fnmatch.h>

#include <algorithm>
#include <fstream>

#include "tests/install/installation.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

namespace fs = std::filesystem;

// Patterns of paths.
std::vector<std::string> expected_files()
{
    std::vector<std::string> lines;
    std::ifstream file(EXPECTED_FILES);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

bool matches(const std::string& pattern, const std::string& path)
{
    return fnmatch(pattern.c_str(), path.c_str(), 0) == 0;
}

void expect_listed_files(const std::vector<std::string>& listing)
{
    const std::vector<std::string> patterns = expected_files();
    for (const std::string& path : listing)
        EXPECT_TRUE(
            std::any_of(patterns.begin(), patterns.end(),
                        [&](const auto& pattern) { return matches(pattern, path); }))
            << path << " is not expected";
    for (const std::string& pattern : patterns)
        EXPECT_TRUE(std::any_of(listing.begin(), listing.end(),
                                [&](const auto& path) { return matches(pattern, path); }))
            << pattern << " is not installed";
}

TEST(Install, LaysOutTheListedFiles)
{
    const Installation installed;
    const std::vector<std::string> listing = installed.listing();
    expect_listed_files(listing);
    for (const std::string& path : listing)
        EXPECT_GT(fs::file_size(installed.path(path)), 0U) << path;
}

TEST(Install, GoesBelowDestdir)
{
    const Installation installed(true);
    expect_listed_files(installed.listing());
    std::ifstream file(installed.path("lib/systemd/system/velmod.service"));
    const std::string unit{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(unit.find("\nExecStart=/opt/" BINDIR "/velmod "), std::string::npos) << unit;
    EXPECT_EQ(unit.find('@'), unit.find("@system-service")) << unit;
}

TEST(Uninstall, LeavesNothing)
{
    const Installation installed;
    installed.uninstall();
    EXPECT_TRUE(installed.gone()) << installed.listing().front();
}

TEST(Uninstall, LeavesNothingBelowDestdir)
{
    const Installation installed(true);
    installed.uninstall();
    EXPECT_TRUE(installed.gone()) << installed.listing().front();
}

TEST(Uninstall, LeavesWhatOthersHavePutThere)
{
    const Installation installed;
    const std::string other = "etc/velmo/velmo.xml";
    std::ofstream(installed.path(other)) << "<velmo/>\n";
    installed.uninstall();
    EXPECT_EQ(installed.listing(), std::vector<std::string>{other});
}

TEST(ExampleConfiguration, IsGoodForProgramsAndVelmod)
{
    const Installation installed;
    const std::string example = installed.path("etc/velmo/velmo.xml.example");
    const std::string velmo = installed.path(BINDIR "/velmo");
    EXPECT_NO_THROW(output_of({velmo, "settings", "check", example}));
    Velmod velmod({"--config", example}, {}, installed.path(BINDIR "/velmod"));
    EXPECT_EQ(velmod.stop(), 0) << velmod.process().err();
}

} // namespace
