#include "util/naming_name.h"

#include <gtest/gtest.h>

#include <string>

using velmo::util::name_of_path;
using velmo::util::NamingUrl;

namespace {

// "id.kind" of each part, separated by blanks.
std::string shown(const CosNaming::Name& name)
{
    std::string text;
    for (CORBA::ULong i = 0; i < name.length(); ++i)
        text += std::string(i ? " " : "") + name[i].id.in() + "." + name[i].kind.in();
    return text;
}

TEST(NameOfPath, IsSplitAtSlashes)
{
    EXPECT_EQ(shown(name_of_path("KEY")), "KEY.");
    EXPECT_EQ(shown(name_of_path("/REALM/KEY")), "REALM. KEY.");
    EXPECT_EQ(shown(name_of_path("/A/B/KEY")), "A. B. KEY.");
}

TEST(NameOfPath, SkipsEmptyParts)
{
    EXPECT_EQ(shown(name_of_path("//A///KEY/")), "A. KEY.");
    EXPECT_EQ(name_of_path("").length(), 0u);
    EXPECT_EQ(name_of_path("/").length(), 0u);
}

TEST(NameOfPath, LeavesDotsAndBackslashesToTheNames)
{
    EXPECT_EQ(shown(name_of_path("/a.b\\c/KEY")), "a.b\\c. KEY.");
}

TEST(NamingUrl, WithoutCorbanameIsTheObjectItself)
{
    const NamingUrl url("corbaloc::1.2@localhost:2809/NameService");
    EXPECT_EQ(url.object_url, "corbaloc::1.2@localhost:2809/NameService");
    EXPECT_EQ(url.name.length(), 0u);
}

TEST(NamingUrl, CorbanameIsTakenApart)
{
    const NamingUrl url("corbaname::1.2@localhost:2809/NameService#alpha/beta.kind");
    EXPECT_EQ(url.object_url, "corbaloc::1.2@localhost:2809/NameService");
    EXPECT_EQ(shown(url.name), "alpha. beta.kind");
}

TEST(NamingUrl, CorbanameHasADefaultKey)
{
    EXPECT_EQ(NamingUrl("corbaname::localhost#alpha").object_url,
              "corbaloc::localhost/NameService");
    EXPECT_EQ(NamingUrl("corbaname:rir:").object_url, "corbaloc:rir:/NameService");
    EXPECT_EQ(NamingUrl("corbaname::localhost#").name.length(), 0u);
}

TEST(NamingUrl, EscapesOfUrlsAndOfNamesAreUndone)
{
    EXPECT_EQ(shown(NamingUrl("corbaname::localhost#a%20b%5c/c").name), "a b/c.");
    EXPECT_EQ(shown(NamingUrl("corbaname::localhost#a\\.b.c").name), "a.b.c");
}

TEST(NamingUrl, MalformedEscapeIsRefused)
{
    EXPECT_THROW(NamingUrl("corbaname::localhost#a%2"), CORBA::BAD_PARAM);
    EXPECT_THROW(NamingUrl("corbaname::localhost#a%zz"), CORBA::BAD_PARAM);
}

} // namespace
