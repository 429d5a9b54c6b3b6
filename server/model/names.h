// What is a name: 1 to max_name_bytes bytes, whatever they are but NUL, with which no
// client could write the name.
#ifndef VELMO_SERVER_MODEL_NAMES_H
#define VELMO_SERVER_MODEL_NAMES_H

#include <string_view>

#include "server/model/data.h"
#include "vl_result.h"

namespace velmo::model {

// VL_OK, INVAILD_NULL_PARAMETER (empty) or PARAMETER_ERROR (too long, or
// with a NUL in it).
inline vl_result check_name(std::string_view name)
{
    if (name.empty())
        return INVAILD_NULL_PARAMETER;
    const bool good =
        name.size() <= max_name_bytes && name.find('\0') == std::string_view::npos;
    return good ? VL_OK : PARAMETER_ERROR;
}

} // namespace velmo::model

#endif
