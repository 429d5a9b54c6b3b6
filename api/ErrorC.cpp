#include "api/ErrorC.h"

#include "VelmoLang.h"
#include "registry/process_singleton.h"
#include "vl_result.h"

ErrorC::ErrorC() : fallback(unknown_error)
{
#define ADD_NAME(name, code) names[code] = #name;
    VL_RESULT_CODES(ADD_NAME)
#undef ADD_NAME
    for (int code = VL_REMOTE_FAILURE_FIRST; code <= VL_REMOTE_FAILURE_LAST; ++code)
        names[code] = VL_REMOTE_FAILURE_NAME;
}

ErrorC::~ErrorC()
{
    ProcessSingleton<ErrorC>::forget(this);
}

ErrorC* ErrorC::instance()
{
    return ProcessSingleton<ErrorC>::instance();
}

const wchar_t* ErrorC::text(int code) const
{
    const auto found = names.find(code);
    return found == names.end()
               ? fallback.c_str()
               : VelmoLang::GetInstance()->GetString(found->second.c_str());
}
