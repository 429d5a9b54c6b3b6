#include "VelmoLang.h"

#include <dlfcn.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <system_error>

#include "util/text_table.h"

namespace {

using velmo::util::chosen_language;
using velmo::util::TextTable;

// Found from where this library is, so that an installation can be moved as a whole.
std::filesystem::path language_folder()
{
    static const char here = 0;
    Dl_info library{};
    if (dladdr(&here, &library) == 0)
        return {};
    std::error_code failed;
    const std::filesystem::path file =
        std::filesystem::canonical(library.dli_fname, failed);
    return (failed ? library.dli_fname : file).parent_path() / VELMO_LANGUAGES_FROM_LIBRARY;
}

// Never destroyed: texts stay valid until the process has ended.
TextTable& table()
{
    static TextTable& only =
        *std::make_unique<TextTable>(
             language_folder(),
             chosen_language(std::getenv("VELMO_LANG"), std::getenv("LC_ALL"),
                             std::getenv("LC_MESSAGES"), std::getenv("LANG")))
             .release();
    return only;
}

} // namespace

VelmoLang* VelmoLang::GetInstance()
{
    static VelmoLang only; // holds nothing: see table()
    return &only;
}

const wchar_t* VelmoLang::GetString(const char* key)
try {
    return table().text(key);
} catch (const std::exception&) {
    return L""; // memory ran out, also for the key itself
}
