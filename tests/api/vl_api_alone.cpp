#include "vl_api.h"
