// velmod's configuration file: refused with file, line and reason, or what a server can
// be made of.

#include "server/options.h"
#include "server/realms.h"
#include "tests/fuzz/input_file.h"
#include "tests/fuzz/require.h"

using namespace velmo;
using tests::require;

namespace {

const tests::InputFile& input_file()
{
    static const tests::InputFile only("velmo.xml");
    return only;
}

void check(const server::Options& options)
{
    require(!options.endpoints.empty(), "it listens somewhere");
    require(options.data_dir.empty() || options.data_dir.front() == '/',
            "its folder does not depend on where it is started");
    require(server::needing_restart(options, options).empty(),
            "nothing differs from itself");
    try {
        const services::Realms realms = server::make_realms(options);
        require(realms.size() == 1 + options.realms.size(), "every realm is there");
        for (const auto& realm : realms)
            require(realm->templates.image().size() == options.templates.size(),
                    "every realm has the templates");
        require(server::reconfigure(realms, options).empty(), "no template is in the way");
    } catch (const model::TemplateError& error) {
        require(*error.what(), "a template is refused for a reason");
    }
}

// What is wrong is in the file, but for one option that asks for another.
bool is_reason(const std::string& text)
{
    return text.rfind(input_file().path().string() + ":", 0) == 0 ||
           text.rfind("--load needs --data-dir", 0) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    input_file().write(std::string(reinterpret_cast<const char*>(bytes), size));
    try {
        check(server::read_options({"--config", input_file().path().string()}));
    } catch (const std::runtime_error& error) {
        require(is_reason(error.what()), "what is wrong is said with its place");
    }
    return 0;
}
