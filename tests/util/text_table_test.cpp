#include "util/text_table.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/log_stand_in.h"
#include "tests/support/temporary_folder.h"
#include "vl_result.h"

namespace {

using velmo::tests::clear_logged_lines;
using velmo::tests::logged_lines;
using velmo::tests::TemporaryFolder;
using velmo::util::chosen_language;
using velmo::util::TextTable;
using velmo::util::wide;

const std::vector<std::string> result_names{
#define NAME(name, code) #name,
    VL_RESULT_CODES(NAME)
#undef NAME
        VL_REMOTE_FAILURE_NAME};

// ---------------------------------------------------------------- the real texts

TEST(Texts, EveryResultNameHasItsOwnInEnglishAndInGerman)
{
    clear_logged_lines();
    TextTable english(LANGUAGES, "en");
    TextTable german(LANGUAGES, "de");
    std::set<std::wstring> different;
    for (const std::string& name : result_names) {
        const std::wstring in_english = english.text(name.c_str());
        const std::wstring in_german = german.text(name.c_str());
        EXPECT_NE(in_english, wide(name)) << name;
        EXPECT_NE(in_german, wide(name)) << name;
        EXPECT_NE(in_english, L"") << name;
        EXPECT_NE(in_german, L"") << name;
        different.insert(in_english);
        different.insert(in_german);
    }
    EXPECT_EQ(different.size(), 2 * result_names.size());
    EXPECT_TRUE(logged_lines().empty());
}

TEST(Texts, GermanHasUmlauts)
{
    EXPECT_EQ(TextTable(LANGUAGES, "de").text("RECEIVER_IS_NOT_EXIST"),
              std::wstring(L"Den Empf\u00E4nger gibt es nicht."));
}

// ----------------------------------------------------------------- the language

TEST(ChosenLanguage, IsEnglishWhenNobodySaysOtherwise)
{
    EXPECT_EQ(chosen_language(nullptr, nullptr, nullptr, nullptr), "en");
    EXPECT_EQ(chosen_language("", "", "", ""), "en");
}

TEST(ChosenLanguage, VelmoLangComesBeforeTheLocale)
{
    EXPECT_EQ(chosen_language("de", "fr_FR", "fr_FR", "fr_FR"), "de");
}

TEST(ChosenLanguage, TheFirstLocaleThatIsNotEmptyDecides)
{
    EXPECT_EQ(chosen_language(nullptr, "de_DE", "fr_FR", "it_IT"), "de");
    EXPECT_EQ(chosen_language("", "", "fr_FR", "it_IT"), "fr");
    EXPECT_EQ(chosen_language(nullptr, nullptr, nullptr, "it_IT"), "it");
    EXPECT_EQ(chosen_language(nullptr, "C", "de_DE", "de_DE"), "en");
}

TEST(ChosenLanguage, IsTheFirstPartOfALocalesName)
{
    for (const char* locale : {"de", "DE", "de_DE", "de_AT.UTF-8", "de_DE.UTF-8@euro",
                               "de@euro", "de.UTF-8", "de-CH"})
        EXPECT_EQ(chosen_language(nullptr, nullptr, nullptr, locale), "de") << locale;
}

TEST(ChosenLanguage, TheLocalesOfComputersAreEnglish)
{
    for (const char* locale : {"C", "POSIX", "C.UTF-8", "en_US.UTF-8"})
        EXPECT_EQ(chosen_language(nullptr, nullptr, nullptr, locale), "en") << locale;
}

TEST(ChosenLanguage, CannotBeAPath)
{
    for (const char* value : {"../de", "/etc/passwd", "de/../de", "d e", "de\n", "..",
                              "_DE", "abcdefghi", "d3", "\xC3\xA4"})
        EXPECT_EQ(chosen_language(value, "de", "de", "de"), "en") << value;
    EXPECT_EQ(chosen_language("abcdefgh", nullptr, nullptr, nullptr), "abcdefgh");
}

// -------------------------------------------------------------------- the table

TEST(Wide, ReadsUtf8InAnyLocale)
{
    EXPECT_EQ(wide("a\u00E4\u20AC\U0001F600"), L"a\u00E4\u20AC\U0001F600");
    EXPECT_EQ(wide(""), L"");
}

TEST(Wide, ReplacesWhatIsNotUtf8)
{
    EXPECT_EQ(wide("M\xFCller"), L"M\uFFFDller");
    EXPECT_EQ(wide("\xE2\x82"), L"\uFFFD\uFFFD");
}

class TextTableTest : public testing::Test {
protected:
    void SetUp() override { clear_logged_lines(); }

    void write(const std::string& name, const std::string& content)
    {
        std::ofstream(folder.path() / name) << content;
    }
    std::wstring text(const std::string& language, const char* key)
    {
        return TextTable(folder.path(), language).text(key);
    }

    const TemporaryFolder folder;
    const std::string english = "<texts><text key='A'>a in English</text><text key='B'> b "
                                "in English\n </text></texts>";
};

TEST_F(TextTableTest, EnglishStandsInForAMissingLanguage)
{
    write("en.xml", english);
    EXPECT_EQ(text("fr", "A"), L"a in English");
    EXPECT_TRUE(logged_lines().empty());
}

TEST_F(TextTableTest, EnglishStandsInForAMissingText)
{
    write("en.xml", english);
    write("de.xml", "<texts><text key='A'>a auf Deutsch</text></texts>");
    EXPECT_EQ(text("de", "A"), L"a auf Deutsch");
    EXPECT_EQ(text("de", "B"), L"b in English");
}

TEST_F(TextTableTest, AMissingKeyGivesTheKeyItself)
{
    write("en.xml", english);
    EXPECT_EQ(text("en", "NO_SUCH_KEY"), L"NO_SUCH_KEY");
    EXPECT_EQ(text("en", "Schl\xC3\xBCssel %s"), L"Schl\u00FCssel %s");
    EXPECT_EQ(text("en", ""), L"");
    EXPECT_EQ(text("en", nullptr), L"");
}

TEST_F(TextTableTest, MissingFilesAreReportedAndGiveKeys)
{
    EXPECT_EQ(text("de", "A"), L"A");
    const auto lines = logged_lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("en.xml"), std::string::npos) << lines[0];
}

TEST_F(TextTableTest, AFaultyFileIsReportedAndEnglishStandsIn)
{
    for (const char* faulty : {"", "not XML", "<texts><text key='A'>a</text>",
                               "<other><text key='A'>a</text></other>"}) {
        clear_logged_lines();
        write("en.xml", english);
        write("de.xml", faulty);
        EXPECT_EQ(text("de", "A"), L"a in English") << faulty;
        const auto lines = logged_lines();
        ASSERT_EQ(lines.size(), 1u) << faulty;
        EXPECT_NE(lines[0].find("de.xml"), std::string::npos) << lines[0];
    }
}

TEST_F(TextTableTest, AFolderInPlaceOfAFileIsReported)
{
    std::filesystem::create_directory(folder.path() / "en.xml");
    EXPECT_EQ(text("en", "A"), L"A");
    EXPECT_EQ(logged_lines().size(), 1u);
}

TEST_F(TextTableTest, AKeyGivesTheSamePointerEachTimeOnAnyThread)
{
    write("en.xml", english);
    TextTable table(folder.path(), "en");
    const std::vector<std::string> keys{"A", "B", "missing 1", "missing 2", "missing 3"};
    constexpr std::size_t threads = 8;
    std::vector<std::vector<const wchar_t*>> found(threads);
    std::vector<std::thread> readers;
    for (auto& own : found)
        readers.emplace_back([&] {
            for (const std::string& key : keys)
                own.push_back(table.text(key.c_str()));
        });
    for (std::thread& reader : readers)
        reader.join();
    for (const auto& own : found)
        EXPECT_EQ(own, found.front());
    EXPECT_EQ(std::wstring(found.front()[2]), L"missing 1");
}

} // namespace
