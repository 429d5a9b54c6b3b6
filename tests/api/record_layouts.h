/* The layout of the public records, for both languages: programs and library may have
 * been compiled years apart. */
#ifndef VELMO_TESTS_API_RECORD_LAYOUTS_H
#define VELMO_TESTS_API_RECORD_LAYOUTS_H

#include <assert.h>
#include <stddef.h>

#include "vl_api.h"

static_assert(offsetof(NameList, count) == 0, "");
static_assert(offsetof(NameList, names) == 8, "");
static_assert(sizeof(NameList) == 16, "");

static_assert(offsetof(ConnectionBlock, first_text) == 0, "");
static_assert(offsetof(ConnectionBlock, second_text) == 256, "");
static_assert(offsetof(ConnectionBlock, next) == 512, "");
static_assert(sizeof(ConnectionBlock) == 520, "");

static_assert(offsetof(ConnectionList, first) == 0, "");
static_assert(offsetof(ConnectionList, count) == 8, "");
static_assert(sizeof(ConnectionList) == 16, "");

static_assert(offsetof(ServerRecord, count) == 0, "");
static_assert(offsetof(ServerRecord, names) == 8, "");
static_assert(sizeof(ServerRecord) == 168, "");

#endif
