// Lines that a person types, with history and completion.
#ifndef VELMO_CLI_LINE_EDITOR_H
#define VELMO_CLI_LINE_EDITOR_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <histedit.h>

#include "cli/completer.h"

namespace velmo::cli {

// One at a time, on standard input and output.
class LineEditor {
public:
    using Complete = std::function<std::vector<Candidate>(const std::vector<std::string>&)>;

    // history: the file that it is kept in from one session to the next; "" for none.
    // Throws Failure when the terminal cannot be used.
    LineEditor(std::string prompt, std::string history, Complete complete);
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    // The next line without its end; none after Ctrl-D. Throws Interrupted on Ctrl-C.
    std::optional<std::string> read();

private:
    static char* give_prompt(EditLine* editor);
    static int read_character(EditLine* editor, wchar_t* character);
    static unsigned char complete_word(EditLine* editor, int);
    static LineEditor& of(EditLine* editor);

    void show(const std::vector<Candidate>& candidates) const;

    std::string prompt;
    const std::string history_file;
    const Complete complete;
    struct End {
        void operator()(EditLine* its_editor) const { el_end(its_editor); }
        void operator()(History* its_history) const { history_end(its_history); }
    };
    std::unique_ptr<History, End> history;
    std::unique_ptr<EditLine, End> editor;
    int interruption = -1; // what tells of Ctrl-C while a line is read
};

} // namespace velmo::cli

#endif
