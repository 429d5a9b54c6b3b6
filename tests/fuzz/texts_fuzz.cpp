// The texts in the user's language: any file gives texts or a line in the log.

#include <cstring>

#include "tests/fuzz/input_file.h"
#include "tests/fuzz/require.h"
#include "tests/support/log_stand_in.h"
#include "util/text_table.h"

using namespace velmo;
using tests::require;

namespace {

void check_language(const std::string& locale)
{
    const std::string language =
        util::chosen_language(locale.c_str(), nullptr, nullptr, nullptr);
    require(!language.empty() && language.size() <= 8 &&
                language.find_first_not_of("abcdefghijklmnopqrstuvwxyz") ==
                    std::string::npos,
            "a language is safe as a file's name");
}

void check_wide(const std::string& text)
{
    const std::wstring wide = util::wide(text);
    require(wide.size() <= text.size(), "a character takes a byte or more");
    for (const wchar_t character : wide)
        require(character >= 0 && character <= 0x10FFFF &&
                    !(character >= 0xD800 && character <= 0xDFFF),
                "a character is one of Unicode's");
}

void check_file(const std::string& text)
{
    static const tests::InputFile file("en.xml");
    file.write(text);
    tests::clear_logged_lines();
    util::TextTable table(file.parent(), "de");
    require(tests::logged_lines().size() <= 1, "a faulty file is told once");

    const wchar_t* const known = table.text("VL_OK");
    require(known && known == table.text("VL_OK"), "a text stays where it is");
    require(std::wcscmp(table.text("no such key in the file"),
                        L"no such key in the file") == 0 ||
                text.find("no such key in the file") != std::string::npos,
            "a key without a text is its own");
    require(table.text(nullptr), "and so is none");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    check_language(text);
    check_wide(text);
    check_file(text);
    return 0;
}
