#include "util/text_table.h"

#include <algorithm>
#include <pugixml.hpp>
#include <system_error>

#include "CQuilp.h"
#include "quilp/utf8.h"

namespace velmo::util {

namespace {

constexpr const char* fallback_language = "en";

bool is_letter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

// Of a locale's name, LANGUAGE[_TERRITORY][.CODESET][@MODIFIER], or of LANGUAGE-TERRITORY.
std::string language_of(std::string_view locale)
{
    constexpr std::size_t longest = 8;
    std::string language(locale.substr(0, locale.find_first_of("_-.@")));
    const bool is_name = !language.empty() && language.size() <= longest &&
                         std::all_of(language.begin(), language.end(), is_letter);
    if (!is_name)
        return fallback_language;
    for (char& letter : language)
        letter = static_cast<char>(letter | 0x20); // a small one
    return language == "c" || language == "posix" ? fallback_language : language;
}

} // namespace

std::string chosen_language(const char* velmo_lang, const char* lc_all,
                            const char* lc_messages, const char* lang)
{
    for (const char* value : {velmo_lang, lc_all, lc_messages, lang})
        if (value && *value)
            return language_of(value);
    return fallback_language;
}

std::wstring wide(std::string_view utf8)
{
    static_assert(sizeof(wchar_t) == sizeof(char32_t), "one wchar_t holds any character");
    std::wstring result;
    while (!utf8.empty()) {
        const quilp::Utf8Character character = quilp::first_character(utf8);
        result.push_back(static_cast<wchar_t>(character.code));
        utf8.remove_prefix(character.length);
    }
    return result;
}

TextTable::TextTable(const std::filesystem::path& folder, const std::string& language)
{
    read(folder, language);
    if (language != fallback_language)
        read(folder, fallback_language);
}

// Adds the texts of those keys that have none yet.
void TextTable::read(const std::filesystem::path& folder, const std::string& language)
{
    const std::filesystem::path file = folder / (language + ".xml");
    const auto report = [&file](const char* reason) {
        CQuilp::instance()->vl_log("no texts from %s: %s", file.c_str(), reason);
    };
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(file, unknown)) {
        if (language == fallback_language)
            report("there is no such file");
        return;
    }
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(
        file.c_str(), pugi::parse_default | pugi::parse_trim_pcdata, pugi::encoding_utf8);
    if (!result)
        return report(result.description());
    const pugi::xml_node root = document.child("texts");
    if (!root)
        return report("it has no element <texts>");
    for (const pugi::xml_node text : root.children("text"))
        texts.emplace(text.attribute("key").value(), wide(text.child_value()));
}

const wchar_t* TextTable::text(const char* key)
{
    const std::string_view name = key ? key : "";
    if (const auto found = texts.find(name); found != texts.end())
        return found->second.c_str();
    const std::lock_guard<std::mutex> lock(mutex);
    auto found = missing.find(name);
    if (found == missing.end())
        found = missing.emplace(name, wide(name)).first;
    return found->second.c_str();
}

} // namespace velmo::util
