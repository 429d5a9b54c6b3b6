#include "server/services/template_servant.h"

#include "server/services/sequences.h"

namespace velmo::services {

using metrics::Operation;

TemplateServant::TemplateServant(const model::TemplateCatalogue& catalogue,
                                 const Snapshots& realm_snapshots, const Calls& calls)
    : call(calls), templates(catalogue), snapshots(realm_snapshots)
{
}

CORBA::Long TemplateServant::get_query_data_type(Velmo::NAME_SEQ_out type_names)
{
    type_names = new Velmo::NAME_SEQ;
    return call(Operation::get_query_data_type, [&] {
        std::vector<std::string> names;
        const vl_result result = templates.names(names);
        fill(*type_names.ptr(), names);
        return result;
    });
}

CORBA::Long TemplateServant::make_DT_snapshot()
{
    return call(Operation::make_DT_snapshot, [&] { return snapshots.make_templates(); });
}

} // namespace velmo::services
