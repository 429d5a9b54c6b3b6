#include "vl_api.h"

#include "tests/api/record_layouts.h"
