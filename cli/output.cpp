#include "cli/output.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

#include "cli/failure.h"

namespace velmo::cli {

namespace {

bool is_set(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && *value != '\0';
}

bool wants_colours(Colours colours, bool terminal)
{
    if (colours != Colours::automatic)
        return colours == Colours::always;
    const char* kind = std::getenv("TERM");
    const bool dumb = !kind || std::string_view(kind) == "dumb";
    return terminal && !dumb && !is_set("NO_COLOR");
}

std::string dump(const Json& document, int indent)
{
    return document.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace

Output::Output(bool as_json, Colours wanted)
    : json(as_json), terminal(isatty(STDOUT_FILENO) == 1),
      colours(wants_colours(wanted, terminal)),
      error_colours(wants_colours(wanted, isatty(STDERR_FILENO) == 1))
{
}

void Output::result(const Json& document, const std::string& text)
{
    if (json)
        write(dump(document, terminal ? 2 : -1));
    else if (!text.empty())
        write(text + "\n");
}

void Output::result(const Json& document, const Table& table)
{
    if (json)
        result(document, std::string());
    else
        write(terminal ? table.aligned(colours) : table.separated());
}

void Output::item(const Json& document, const std::string& text)
{
    write(json ? dump(document, -1) : text + "\n");
    std::fflush(stdout);
}

void Output::done(const Json& document, const std::string& text)
{
    if (json)
        result(document, text);
    else if (isatty(STDERR_FILENO))
        message(text);
}

void Output::raw(std::string_view bytes)
{
    write(bytes);
}

void Output::message(const std::string& text)
{
    std::fflush(stdout);
    std::fputs((text + "\n").c_str(), stderr);
}

void Output::error(const std::string& text, const std::string& advice)
{
    const std::string name = error_colours ? styled("velmo:", Style::bad) : "velmo:";
    message(name + " " + text + (advice.empty() ? "" : "\n    " + advice));
}

std::string Output::style(const std::string& text, Style wanted) const
{
    return colours && !json ? styled(text, wanted) : text;
}

void Output::finish()
{
    if (std::fflush(stdout) != 0)
        throw Failure(failed, "cannot write the results: " +
                                  std::generic_category().message(errno));
}

void Output::write(std::string_view text)
{
    // The library has SIGPIPE ignored: without this nobody would notice that there is
    // no reader any more.
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::ferror(stdout))
        throw Failure(failed, "cannot write the results: " +
                                  std::generic_category().message(errno));
}

Json json_text(const std::string& text)
{
    return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace velmo::cli
