#include "cli/manual.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <vector>

namespace velmo::cli {

namespace {

// Text as it is: nothing in it means anything to man.
std::string plain(const std::string& text)
{
    std::string result;
    for (const char c : text)
        switch (c) {
        case '\\':
            result += "\\e";
            break;
        case '-':
            result += "\\-";
            break;
        case '\'':
            result += "\\(aq";
            break;
        default:
            result += c;
        }
    return result.empty() || result.front() != '.' ? result : "\\&" + result;
}

std::string bold(const std::string& text)
{
    return "\\fB" + plain(text) + "\\fR";
}

std::string italic(const std::string& text)
{
    return "\\fI" + plain(text) + "\\fR";
}

std::string entry(const std::string& tag, const std::string& text)
{
    return ".TP\n" + tag + "\n" + plain(text) + "\n";
}

std::string sentence(std::string text)
{
    return text.empty() || text.back() == '.' ? text : text + ".";
}

bool is_help(const CLI::Option& option)
{
    return option.check_lname("help");
}

std::string described(const CLI::Option& option)
{
    const std::string& value = option.get_default_str();
    return sentence(option.get_description() + (value.empty() ? "" : " (" + value + ")"));
}

// An option or argument as it is typed.
std::string tag(const CLI::Option& option)
{
    if (option.get_positional())
        return italic(option.get_name());
    std::string names;
    for (const std::string& name : option.get_lnames())
        names += (names.empty() ? "" : ", ") + bold("--" + name);
    const std::string value = option.get_type_name(); // and after a colon what is checked
    return option.get_items_expected_max() > 0
               ? names + " " + italic(value.substr(0, value.find(':')))
               : names;
}

// What is typed after the command's name.
std::string usage(const CLI::App& app)
{
    std::string text;
    bool options = false;
    for (const CLI::Option* option : app.get_options()) {
        if (!option->get_positional()) {
            const bool needed = option->get_required();
            options = options || (!needed && !is_help(*option));
            text += needed ? " " + tag(*option) : "";
            continue;
        }
        const std::string name =
            tag(*option) + (option->get_items_expected_max() > 1 ? " ..." : "");
        text += " " + (option->get_required() ? name : "[" + name + "]");
    }
    return (options ? " [" + italic("OPTION") + " ...]" : "") + text;
}

std::string options_of(const CLI::App& app)
{
    std::string text;
    for (const CLI::Option* option : app.get_options())
        if (!is_help(*option))
            text += entry(tag(*option), described(*option));
    return text;
}

std::string command(const std::string& name, const CLI::App& app)
{
    const std::string options = options_of(app);
    return ".TP\n" + bold(name) + usage(app) + "\n" +
           plain(sentence(app.get_description())) + "\n" +
           (options.empty() ? "" : ".RS\n" + options + ".RE\n");
}

std::string group(const CLI::App& app)
{
    std::string text = ".SS " + plain(app.get_name()) + "\n";
    const std::vector<const CLI::App*> verbs = app.get_subcommands(nullptr);
    if (verbs.empty())
        return text + command(app.get_name(), app);
    text += plain(sentence(app.get_description())) + "\n";
    if (app.get_require_subcommand_min() == 0) // its name alone is a command, too
        text += command(app.get_name(), app);
    for (const CLI::App* verb : verbs)
        text += command(app.get_name() + " " + verb->get_name(), *verb);
    return text;
}

std::string upper_case(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

constexpr const char* ending = R"(.SH ENVIRONMENT
.TP
.B VELMO_SETTINGS
The settings file; see
.BR velmo\-settings (5).
.TP
.B VELMO_LANG
The language of the texts of result codes.
.TP
.B VELMO_LOG
Where the library's own messages go;
.I stderr
shows why a call failed. They go nowhere otherwise.
.TP
.B NO_COLOR
Set to anything, there are no colours.
.SH SEE ALSO
.BR velmo\-settings (5),
.BR velmod (8)
)";

bool begins_option(const std::string& line)
{
    return line.size() > 3 && line.compare(0, 3, "  -") == 0;
}

} // namespace

std::string manual_of(const CLI::App& program)
{
    const std::string& name = program.get_name();
    std::string text = ".TH " + upper_case(name) + " 1 \"\" \"" + name +
                       "\" \"User Commands\"\n.SH NAME\n" + plain(name) +
                       " \\- the command line tool of Velmo\n.SH SYNOPSIS\n" + bold(name) +
                       " [" + italic("OPTION") + " ...] " + italic("GROUP") + " " +
                       italic("VERB") + " [" + italic("ARGUMENT") +
                       " ...]\n.SH DESCRIPTION\n" + plain(program.get_description()) +
                       "\n.PP\n" + plain(program.get_footer()) + "\n.SH OPTIONS\n" +
                       options_of(program) + ".SH COMMANDS\n";
    for (const CLI::App* sub : program.get_subcommands(nullptr))
        if (!sub->get_group().empty())
            text += group(*sub);
    return text + ending;
}

// The options of a help text: each begins a line with two blanks and a dash, its
// description follows after at least two blanks, or on lines of its own.
std::string with_options(const std::string& page, const std::string& help)
{
    std::string options, name, text;
    const auto flush = [&] {
        if (!name.empty())
            options += entry(bold(name), sentence(text));
        name = text = "";
    };
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find_first_not_of(' ');
        if (begins_option(line)) {
            flush();
            const std::size_t gap = line.find("  ", begin);
            name = line.substr(begin, gap - begin);
            const std::size_t rest =
                line.find_first_not_of(' ', std::min(gap, line.size()));
            text = rest == std::string::npos ? "" : line.substr(rest);
        } else if (!name.empty() && begin != std::string::npos && begin > 2) {
            text += (text.empty() ? "" : " ") + line.substr(begin);
        } else {
            flush();
        }
    }
    flush();
    std::string result = page;
    const std::string mark = "@OPTIONS@\n";
    const std::size_t at = result.find(mark);
    return at == std::string::npos ? result : result.replace(at, mark.size(), options);
}

} // namespace velmo::cli
