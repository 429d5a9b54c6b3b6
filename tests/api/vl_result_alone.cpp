#include "vl_result.h"
