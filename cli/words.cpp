#include "cli/words.h"

namespace velmo::cli {

namespace {

bool is_blank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

Line split(std::string_view text)
{
    Line line;
    char quote = '\0';
    bool escaped = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool plain = quote == '\0' && !escaped;
        if (plain && is_blank(c)) {
            line.is_between = true;
            line.last_begin = i + 1;
            continue;
        }
        if (line.is_between) {
            if (c == '#')
                break;
            line.words.emplace_back();
            line.is_between = false;
            line.last_begin = i;
        }
        std::string& word = line.words.back();
        if (escaped) {
            if (quote == '"' && c != '"' && c != '\\')
                word += '\\';
            word += c;
            escaped = false;
        } else if (c == '\\' && quote != '\'') {
            escaped = true;
        } else if (quote == '\0' && (c == '\'' || c == '"')) {
            quote = c;
        } else if (c == quote && quote != '\0') {
            quote = '\0';
        } else {
            word += c;
        }
    }
    line.is_open = quote != '\0' || escaped;
    return line;
}

std::string quoted(const std::string& word)
{
    if (!word.empty() && word.front() != '#' &&
        word.find_first_of(" \t\r\n'\"\\") == std::string::npos)
        return word;
    std::string result = "'";
    for (const char c : word)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

} // namespace velmo::cli
