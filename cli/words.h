// Lines of a session, as words.
#ifndef VELMO_CLI_WORDS_H
#define VELMO_CLI_WORDS_H

#include <string>
#include <string_view>
#include <vector>

namespace velmo::cli {

struct Line {
    std::vector<std::string> words;
    std::size_t last_begin = 0; // where the last word begins, or one after it would
    bool is_open = false;       // within quotes, or after a backslash at the end
    bool is_between = true;     // after a blank, or at the beginning: no word is begun
};

// Splits at blanks, as a shell does: nothing is special within '...', a backslash takes the
// special meaning from what follows it, within "..." only from \ and ". A # where a word
// would begin starts a comment. Nothing is expanded: $SYS is just that.
Line split(std::string_view line);

// A word that split() gives back as it is.
std::string quoted(const std::string& word);

} // namespace velmo::cli

#endif
