#include "tests/support/lang_stand_in.h"

#include <map>
#include <memory>
#include <mutex>

#include "VelmoLang.h"

namespace velmo::tests {

namespace {

struct Table {
    std::mutex mutex;
    std::map<std::wstring, std::wstring> handed_out; // texts stay valid
    std::string missing;
};

Table& table()
{
    static Table& only = *std::make_unique<Table>().release();
    return only;
}

} // namespace

std::wstring stand_in_text(const std::string& key)
{
    return L"text of " + std::wstring(key.begin(), key.end());
}

std::wstring stand_in_text_for_missing(const std::string& key)
{
    return L"no text for " + std::wstring(key.begin(), key.end());
}

void take_text_away(const std::string& key)
{
    std::lock_guard<std::mutex> guard(table().mutex);
    table().missing = key;
}

} // namespace velmo::tests

VelmoLang* VelmoLang::GetInstance()
{
    static VelmoLang only;
    return &only;
}

const wchar_t* VelmoLang::GetString(const char* key)
{
    using namespace velmo::tests;
    std::lock_guard<std::mutex> guard(table().mutex);
    const std::wstring text =
        key == table().missing ? stand_in_text_for_missing(key) : stand_in_text(key);
    return table().handed_out.emplace(text, text).first->second.c_str();
}
