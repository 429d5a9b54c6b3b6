#include "cli/value_output.h"

#include "cli/text.h"
#include "cli/write_file.h"

namespace velmo::cli {

void add_kind(CLI::App& app, std::string& kind)
{
    app.add_option("--as", kind,
                   "Kind of the value, where nothing else tells: int8 ... uint64, "
                   "float32, float64, bool, text, bytes")
        ->check(CLI::IsMember(kind_names()).description(""))
        ->type_name("KIND");
}

void ValueOutput::declare(CLI::App& app)
{
    add_kind(app, kind);
    app.add_flag("--hex", hex, "Shows the bytes in hexadecimal");
    app.add_option("--file", file,
                   "Writes the bytes as they are to a file; \"-\" is standard output")
        ->type_name("FILE");
}

void ValueOutput::show(Session& session, Json document, Kind its_kind,
                       std::string_view value) const
{
    if (file == "-")
        return session.out.raw(value);
    if (!file.empty())
        write_file(file, value);
    const Kind shown = hex ? Kind::bytes : its_kind;
    document["value"] = to_json(shown, value);
    if (!file.empty())
        return session.out.done(document, "wrote " + counted(value.size(), "byte") +
                                              " to " + in_quotes(file));
    const bool to_program = !session.out.is_json() && !session.out.is_terminal();
    if (hex)
        return session.out.result(document, to_hex(value));
    if (shown == Kind::bytes && to_program)
        return session.out.raw(value);
    const std::string text = format(shown, value);
    const bool hostile = session.out.is_terminal() && !is_readable(text);
    session.out.result(document, hostile ? harmless(text) : text);
}

void ValueOutput::show_line(Session& session, Json document, Kind its_kind,
                            std::string_view value) const
{
    const Kind shown = hex ? Kind::bytes : its_kind;
    document["value"] = to_json(shown, value);
    session.out.item(document, hex ? to_hex(value) : harmless(format(shown, value)));
}

} // namespace velmo::cli
