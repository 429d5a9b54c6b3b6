// Texts by key, in one language and in English where that has none.
#ifndef VELMO_UTIL_TEXT_TABLE_H
#define VELMO_UTIL_TEXT_TABLE_H

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace velmo::util {

// The language that the values of VELMO_LANG, LC_ALL, LC_MESSAGES and LANG, in this
// order, ask for; null means unset. The first that is not empty decides: "de" for
// "de", "de_AT" or "de_DE.UTF-8@euro"; "en" for "C", "POSIX" and whatever is not a
// language's name of up to eight letters, so that the result is safe as a file name.
std::string chosen_language(const char* velmo_lang, const char* lc_all,
                            const char* lc_messages, const char* lang);

// U+FFFD for what is not UTF-8; no locale has a say.
std::wstring wide(std::string_view utf8);

// The texts of FOLDER/LANGUAGE.xml, and of FOLDER/en.xml for keys that are not there.
//
//   <texts> <text key="VL_OK">The operation succeeded.</text> ... </texts>
//
// A faulty file, and the lack of en.xml, is reported through the log; there are no
// texts from it.
class TextTable {
public:
    TextTable(const std::filesystem::path& folder, const std::string& language);
    TextTable(const TextTable&) = delete;
    TextTable& operator=(const TextTable&) = delete;

    // The text of a key; the key itself when there is none, "" for null. The same
    // pointer each time, valid as long as the table. Every missing key takes memory
    // that long: keys are to be names, not data. Safe from any thread.
    const wchar_t* text(const char* key);

private:
    using Texts = std::map<std::string, std::wstring, std::less<>>;

    void read(const std::filesystem::path& folder, const std::string& language);

    Texts texts; // never changes after construction
    std::mutex mutex;
    Texts missing; // guarded by mutex
};

} // namespace velmo::util

#endif
