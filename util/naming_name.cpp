#include "util/naming_name.h"

#include <cctype>

namespace velmo::util {

namespace {

void append(CosNaming::Name& name, const std::string& id, const std::string& kind)
{
    const CORBA::ULong last = name.length();
    name.length(last + 1);
    name[last].id = id.c_str();
    name[last].kind = kind.c_str();
}

// %41 for A, as URLs have it.
std::string unescape_url(const std::string& text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            plain += text[i];
            continue;
        }
        if (i + 2 >= text.size() ||
            !std::isxdigit(static_cast<unsigned char>(text[i + 1])) ||
            !std::isxdigit(static_cast<unsigned char>(text[i + 2])))
            throw CORBA::BAD_PARAM();
        plain += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
        i += 2;
    }
    return plain;
}

// A stringified name of the naming service: "ID.KIND/ID", \ before a literal "/",
// "." or "\" (Naming Service 1.3, 2.4).
CosNaming::Name name_of_stringified(const std::string& text)
{
    CosNaming::Name name;
    std::string parts[2]; // id and kind
    int part = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size()) {
            parts[part] += text[++i];
        } else if (c == '.' && part == 0) {
            part = 1;
        } else if (c == '/') {
            append(name, parts[0], parts[1]);
            parts[0].clear();
            parts[1].clear();
            part = 0;
        } else {
            parts[part] += c;
        }
    }
    append(name, parts[0], parts[1]);
    return name;
}

} // namespace

CosNaming::Name name_of_path(const std::string& path)
{
    CosNaming::Name name;
    std::size_t begin = 0;
    while (begin < path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        if (end > begin)
            append(name, path.substr(begin, end - begin), "");
        begin = end + 1;
    }
    return name;
}

NamingUrl::NamingUrl(const std::string& url) : object_url(url)
{
    static const std::string scheme = "corbaname:";
    if (url.compare(0, scheme.size(), scheme) != 0)
        return;
    const std::size_t fragment = std::min(url.find('#'), url.size());
    object_url = "corbaloc:" + url.substr(scheme.size(), fragment - scheme.size());
    if (object_url.find('/') == std::string::npos)
        object_url += "/NameService";
    if (fragment + 1 < url.size())
        name = name_of_stringified(unescape_url(url.substr(fragment + 1)));
}

} // namespace velmo::util
