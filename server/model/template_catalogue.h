// The templates of one realm.
#ifndef VELMO_SERVER_MODEL_TEMPLATE_CATALOGUE_H
#define VELMO_SERVER_MODEL_TEMPLATE_CATALOGUE_H

#include <map>
#include <shared_mutex>

#include "server/model/template.h"
#include "vl_result.h"

namespace velmo::model {

// Any function from any thread. Templates are shared: one that a restored snapshot
// drops lives on in the points that were made from it.
class TemplateCatalogue {
public:
    // Holds the given templates for good; they are no part of snapshots.
    // max_value_bytes: no template may ask for more. Throws TemplateError.
    explicit TemplateCatalogue(
        std::size_t max_value_bytes,
        const std::vector<TemplateDefinition>& built_in = built_in_templates());

    // Adds a template of the configuration. Throws TemplateError, also for a name that
    // is in use.
    void add(const TemplateDefinition& definition);

    // Makes these the templates of the configuration, in place of those there are, as
    // far as no point is made from what would change or go. All of it or, on a failure,
    // nothing. Gives the names of the templates that stay as they were. Throws
    // TemplateError.
    std::vector<std::string>
    reconfigure(const std::vector<TemplateDefinition>& definitions);

    // The template of that name, null for none.
    std::shared_ptr<const Template> find(std::string_view name) const;

    // All names, in byte order.
    //   TYPE_LIST_IS_NUL  there is none
    vl_result names(std::vector<std::string>& names) const;

    // All definitions but the built-in ones, in byte order of their names.
    std::vector<TemplateDefinition> image() const;

    // Makes an image the contents, beside what is built in and configured: of a name
    // in both, the configured template stays. All of it or, on a failure, nothing.
    //   FAIL_TO_CREATE_DATA_TYPE  a bad definition, or a name twice, or a built-in one
    // problem: what is wrong then, a phrase.
    vl_result restore(const std::vector<TemplateDefinition>& image, std::string& problem);

private:
    enum class Origin { built_in, configuration, snapshot };
    struct Entry {
        std::shared_ptr<const Template> type;
        Origin origin;
    };
    using Entries = std::map<std::string, Entry, std::less<>>;

    void add(Entries& to, const TemplateDefinition& definition, Origin origin) const;

    const std::size_t max_value_bytes;
    mutable std::shared_mutex mutex;
    Entries entries;
};

} // namespace velmo::model

#endif
