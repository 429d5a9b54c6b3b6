#include "server/model/template_catalogue.h"

#include <mutex>

namespace velmo::model {

namespace {

using WriteLock = std::unique_lock<std::shared_mutex>;
using ReadLock = std::shared_lock<std::shared_mutex>;

} // namespace

TemplateCatalogue::TemplateCatalogue(std::size_t max_bytes,
                                     const std::vector<TemplateDefinition>& built_in)
    : max_value_bytes(max_bytes)
{
    for (const TemplateDefinition& definition : built_in)
        add(entries, definition, Origin::built_in);
}

void TemplateCatalogue::add(Entries& to, const TemplateDefinition& definition,
                            Origin origin) const
{
    auto type = std::make_shared<const Template>(definition, max_value_bytes);
    if (!to.try_emplace(definition.name, Entry{std::move(type), origin}).second)
        throw TemplateError("template \"" + definition.name + "\": the name is in use");
}

void TemplateCatalogue::add(const TemplateDefinition& definition)
{
    const WriteLock lock(mutex);
    add(entries, definition, Origin::configuration);
}

std::vector<std::string>
TemplateCatalogue::reconfigure(const std::vector<TemplateDefinition>& definitions)
{
    Entries wanted;
    for (const TemplateDefinition& definition : definitions)
        add(wanted, definition, Origin::configuration);
    const WriteLock lock(mutex);
    std::vector<std::string> kept;
    for (const auto& [name, entry] : entries) {
        const auto found = wanted.find(name);
        const bool wanted_anew = found != wanted.end();
        if (entry.origin == Origin::built_in && wanted_anew)
            throw TemplateError("template \"" + name + "\": the name is a built-in one");
        const bool same =
            wanted_anew && found->second.type->definition() == entry.type->definition();
        // Whoever makes or has a point of it holds it, too.
        const bool in_use = entry.type.use_count() > 1;
        const bool goes = entry.origin == Origin::configuration && !wanted_anew;
        if ((wanted_anew && !same && in_use) || (goes && in_use))
            kept.push_back(name);
        if (!goes && !wanted_anew)
            wanted.emplace(name, entry);
        else if (same || in_use)
            wanted.insert_or_assign(name, Entry{entry.type, Origin::configuration});
    }
    entries.swap(wanted);
    return kept;
}

std::shared_ptr<const Template> TemplateCatalogue::find(std::string_view name) const
{
    const ReadLock lock(mutex);
    const auto found = entries.find(name);
    return found == entries.end() ? nullptr : found->second.type;
}

vl_result TemplateCatalogue::names(std::vector<std::string>& names) const
{
    const ReadLock lock(mutex);
    if (entries.empty())
        return TYPE_LIST_IS_NUL;
    names.clear();
    for (const auto& [name, entry] : entries)
        names.push_back(name);
    return VL_OK;
}

std::vector<TemplateDefinition> TemplateCatalogue::image() const
{
    const ReadLock lock(mutex);
    std::vector<TemplateDefinition> definitions;
    for (const auto& [name, entry] : entries)
        if (entry.origin != Origin::built_in)
            definitions.push_back(entry.type->definition());
    return definitions;
}

vl_result TemplateCatalogue::restore(const std::vector<TemplateDefinition>& image,
                                     std::string& problem)
try {
    Entries restored;
    for (const TemplateDefinition& definition : image)
        add(restored, definition, Origin::snapshot);
    const WriteLock lock(mutex);
    for (const auto& [name, entry] : entries)
        if (entry.origin == Origin::built_in && restored.count(name) != 0)
            throw TemplateError("template \"" + name + "\": the name is a built-in one");
    for (const auto& [name, entry] : entries)
        if (entry.origin != Origin::snapshot)
            restored.insert_or_assign(name, entry);
    entries.swap(restored);
    return VL_OK;
} catch (const TemplateError& error) {
    problem = error.what();
    return FAIL_TO_CREATE_DATA_TYPE;
}

} // namespace velmo::model
