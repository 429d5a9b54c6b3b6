#include "vlServerInfoXmlImpl.h"

#include <algorithm>
#include <cstring>

#include "util/settings.h"

namespace {

// The field's length leaves room for the NUL; the record has been cleared.
template <std::size_t Size>
void copy_cut(char (&field)[Size], const std::string& text)
{
    std::memcpy(field, text.data(), std::min(text.size(), Size - 1));
}

} // namespace

vlServerInfoXmlImpl::vlServerInfoXmlImpl() : settings(velmo::settings::renew()) {}

vlServerInfoXmlImpl::~vlServerInfoXmlImpl() = default;

std::vector<_ServerInfoData> vlServerInfoXmlImpl::GetServerInfo(const char* position)
{
    std::vector<_ServerInfoData> records;
    for (const velmo::settings::Server* server : settings->at(position ? position : "")) {
        _ServerInfoData record{};
        copy_cut(record.information, server->naming_url.value);
        copy_cut(record.name, server->name);
        records.push_back(record);
    }
    return records;
}
