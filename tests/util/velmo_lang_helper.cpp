// Prints the text of each key that it is given, in UTF-8.
#include <VelmoLang.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

// Texts are there until the very end.
void look_up_at_exit()
{
    if (VelmoLang::GetInstance()->GetString("VL_OK")[0] == L'\0')
        std::abort();
}

} // namespace

int main(int argc, char** argv)
{
    std::atexit(look_up_at_exit);
    // In the "C" locale, as most programs run: the texts must not depend on it.
    std::vector<const wchar_t*> texts;
    for (int i = 1; i < argc; ++i)
        texts.push_back(VelmoLang::GetInstance()->GetString(argv[i]));
    if (!std::setlocale(LC_CTYPE, "C.UTF-8"))
        return 2;
    for (const wchar_t* text : texts)
        std::printf("%ls\n", text);
    return 0;
}
