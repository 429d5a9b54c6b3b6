/* The settings as a C program sees them. */
#ifndef VELMO_TESTS_UTIL_VL_UTIL_FROM_C_H
#define VELMO_TESTS_UTIL_VL_UTIL_FROM_C_H

#ifdef __cplusplus
extern "C" {
#endif

/* Writes "NAME=URL " for every server of a file into text, cut to size bytes with
 * the NUL; returns their number, or -1 when the file is faulty. */
int print_servers_from_c(const char* path, char* text, unsigned int size);

#ifdef __cplusplus
}
#endif

#endif
