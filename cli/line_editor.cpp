#include "cli/line_editor.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include <poll.h>
#include <unistd.h>

#include "cli/interruption.h"
#include "cli/text.h"
#include "cli/words.h"

namespace velmo::cli {

namespace {

constexpr int longest_history = 1000;
constexpr std::size_t most_shown = 100;

std::string common_beginning(const std::vector<Candidate>& candidates)
{
    std::string common = candidates.front().word;
    for (const Candidate& candidate : candidates) {
        const auto differ = std::mismatch(common.begin(), common.end(),
                                          candidate.word.begin(), candidate.word.end());
        common.erase(differ.first, common.end());
    }
    return common;
}

} // namespace

LineEditor::LineEditor(std::string its_prompt, std::string its_history,
                       Complete its_complete)
    : prompt(std::move(its_prompt)), history_file(std::move(its_history)),
      complete(std::move(its_complete)), history(history_init()),
      editor(el_init("velmo", stdin, stdout, stderr))
{
    if (!history || !editor)
        throw Failure(failed, "cannot use the terminal");
    HistEvent event;
    ::history(history.get(), &event, H_SETSIZE, longest_history);
    ::history(history.get(), &event, H_SETUNIQUE, 1);
    if (!history_file.empty())
        ::history(history.get(), &event, H_LOAD, history_file.c_str());
    EditLine* const el = editor.get();
    el_set(el, EL_CLIENTDATA, this);
    el_set(el, EL_EDITOR, "emacs");
    el_set(el, EL_PROMPT, give_prompt);
    el_set(el, EL_HIST, ::history, history.get());
    el_set(el, EL_GETCFN, read_character);
    // el_set() would copy both texts and never free them.
    el_wset(el, EL_ADDFN, L"velmo-complete", L"Completes the word", complete_word);
    el_set(el, EL_BIND, "^I", "velmo-complete", nullptr);
    el_set(el, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_source(el, nullptr); // what a person has chosen for all such programs
}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read()
{
    const Interruption noted;
    interruption = noted.descriptor();
    el_resize(editor.get());
    int length = 0;
    const char* const text = el_gets(editor.get(), &length);
    interruption = -1;
    if (noted.happened()) {
        std::fputs("^C\n", stdout);
        throw Interrupted();
    }
    if (!text || length <= 0) {
        std::fputs("\n", stdout);
        return std::nullopt;
    }
    std::string line(text, static_cast<std::size_t>(length));
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.pop_back();
    if (line.find_first_not_of(" \t") != std::string::npos) {
        HistEvent event;
        ::history(history.get(), &event, H_ENTER, line.c_str());
        if (!history_file.empty()) // at once: sessions may end in any way
            ::history(history.get(), &event, H_SAVE, history_file.c_str());
    }
    return line;
}

LineEditor& LineEditor::of(EditLine* editor)
{
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return *static_cast<LineEditor*>(self);
}

char* LineEditor::give_prompt(EditLine* editor)
{
    return of(editor).prompt.data();
}

// As the library's own, but Ctrl-C ends it.
int LineEditor::read_character(EditLine* editor, wchar_t* character)
{
    std::mbstate_t state{};
    for (;;) {
        pollfd sources[] = {{STDIN_FILENO, POLLIN, 0},
                            {of(editor).interruption, POLLIN, 0}};
        const int ready = poll(sources, 2, -1);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready < 0 || sources[1].revents != 0) {
            errno = EINTR;
            return -1;
        }
        char byte;
        const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
        if (count <= 0)
            return static_cast<int>(count);
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the state is its own
        const std::size_t length = std::mbrtowc(character, &byte, 1, &state);
        if (length == static_cast<std::size_t>(-1))
            state = {}; // no character of this locale: it is left out
        else if (length != static_cast<std::size_t>(-2))
            return 1;
    }
}

unsigned char LineEditor::complete_word(EditLine* el, int)
{
    LineEditor& self = of(el);
    const LineInfo* const info = el_line(el);
    const std::string_view text(info->buffer,
                                static_cast<std::size_t>(info->cursor - info->buffer));
    const Line line = split(text);
    std::vector<std::string> words = line.words;
    if (line.is_between)
        words.emplace_back();
    const std::vector<Candidate> candidates = self.complete(words);
    if (candidates.empty())
        return CC_REFRESH_BEEP;
    const std::string common = common_beginning(candidates);
    const bool whole = candidates.size() == 1;
    if (whole || common.size() > words.back().size()) {
        const std::size_t begun = width(text.substr(line.last_begin));
        std::string word = quoted(common);
        if (whole)
            word += " ";
        else if (word.back() == '\'')
            word.pop_back(); // there is more to come within the quotes
        el_deletestr(el, static_cast<int>(begun));
        el_insertstr(el, word.c_str());
        return CC_REFRESH;
    }
    self.show(candidates);
    return CC_REDISPLAY;
}

void LineEditor::show(const std::vector<Candidate>& candidates) const
{
    Table table;
    for (std::size_t i = 0; i < std::min(candidates.size(), most_shown); ++i)
        table.add({candidates[i].word, {candidates[i].description, Style::faint}});
    if (candidates.size() > most_shown)
        table.add({"... and " + std::to_string(candidates.size() - most_shown) + " more"});
    std::fputs(("\n" + table.aligned(false)).c_str(), stdout);
    std::fflush(stdout);
}

} // namespace velmo::cli
