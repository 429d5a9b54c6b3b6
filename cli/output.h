// What velmo says: results to standard output, messages to standard error.
//
// With --json the results are JSON documents, each on a line of its own, and nothing else
// is there; documents of a terminal are spread over lines. Otherwise tables are aligned
// and coloured on a terminal, and rows separated by tabulators elsewhere.
#ifndef VELMO_CLI_OUTPUT_H
#define VELMO_CLI_OUTPUT_H

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "cli/table.h"

namespace velmo::cli {

using Json = nlohmann::ordered_json;

enum class Colours { automatic, always, never };

class Output {
public:
    explicit Output(bool as_json = false, Colours colours = Colours::automatic);

    bool is_json() const { return json; }
    bool is_terminal() const { return terminal; } // standard output

    // The result of a command. text: for people, without its last line's end; no line at
    // all when it is empty.
    void result(const Json& document, const std::string& text);
    void result(const Json& document, const Table& table);

    // One of many results, seen at once: JSON on one line.
    void item(const Json& document, const std::string& text);

    // That all is done, where there is no result: a document for programs, a message for
    // a person who looks on.
    void done(const Json& document, const std::string& message);

    // Bytes as they are, --json or not.
    void raw(std::string_view bytes);

    // To standard error.
    void message(const std::string& text);

    // "velmo: TEXT", and what to do next on a line of its own unless that is empty.
    void error(const std::string& text, const std::string& advice);

    std::string style(const std::string& text, Style style) const;

    // That everything is written. Throws Failure when it could not be.
    void finish();

private:
    void write(std::string_view text);

    bool json;
    bool terminal;
    bool colours;
    bool error_colours;
};

// A text of the middleware as JSON has it: what is not UTF-8 is replaced.
Json json_text(const std::string& text);

} // namespace velmo::cli

#endif
