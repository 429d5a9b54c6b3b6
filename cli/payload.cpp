#include "cli/payload.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include <unistd.h>

#include "cli/failure.h"
#include "cli/text.h"

namespace velmo::cli {

void Payload::declare(CLI::App& app, const char* name, const char* description)
{
    argument = app.add_option(name, text, description);
    app.add_flag("--hex", hex, "Takes pairs of hexadecimal digits instead of text");
    app.add_option("--file", file, "Takes the bytes of a file; \"-\" is standard input")
        ->type_name("FILE")
        ->excludes(argument);
}

std::string Payload::bytes() const
{
    if (!is_given() && isatty(STDIN_FILENO))
        throw misuse("nothing is given to send",
                     "give it as an argument, with --file, or on standard input");
    std::string given = is_argument() ? text : read_all(is_file() ? file : "-");
    if (!hex)
        return given;
    const std::optional<std::string> decoded = from_hex(given);
    if (!decoded)
        throw misuse("--hex needs pairs of hexadecimal digits, such as 00ff");
    return *decoded;
}

std::string read_all(const std::string& path)
{
    const bool standard = path == "-";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(
        standard ? nullptr : std::fopen(path.c_str(), "rbe"), std::fclose);
    std::FILE* const file = standard ? stdin : opened.get();
    std::string bytes;
    char block[65536];
    errno = file ? 0 : errno;
    while (file) {
        const std::size_t count = std::fread(block, 1, sizeof block, file);
        bytes.append(block, count);
        if (count < sizeof block)
            break;
    }
    if (!file || std::ferror(file))
        throw misuse("cannot read " + (standard ? "standard input" : in_quotes(path)) +
                     ": " + std::generic_category().message(errno));
    return bytes;
}

} // namespace velmo::cli
