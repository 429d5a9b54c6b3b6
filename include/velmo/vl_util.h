/* The Velmo utility library for C programs: freeing strings, reading settings.
 * Plain C11 and C++17, self-contained. No function throws or contacts a server. */
#ifndef VELMO_VL_UTIL_H
#define VELMO_VL_UTIL_H

#include "vl_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Frees a string that a function of vl_api.h handed out: a name of a NameList, a
 * description, a type, a text of point information. NULL is harmless. */
VL_EXPORT void vl_string_free(char* string);

/* ------------------------------------------------------------ settings
 *
 * Reads a settings file as the library does, without writing to the log. A
 * vl_settings never changes after it was opened and may be read from several
 * threads; every string belongs to it and lives until vl_settings_close(). NULL
 * for a vl_settings is harmless everywhere, and like one without servers.
 */
typedef struct vl_settings vl_settings;

/* One server of the settings. An origin tells where a value came from, for
 * people: "line 7", "default", "environment variable VELMO_CALL_TIMEOUT_MS". */
typedef struct vl_settings_server {
    const char* name;
    const char* parent;    /* the enclosing server's name, "" at the top */
    const char* role;      /* "master", "slave" or "" */
    const char* positions; /* its position words, separated by blanks */
    const char* naming_url;
    const char* naming_origin;
    unsigned int call_timeout_ms; /* 0: none */
    const char* call_timeout_origin;
    unsigned int naming_timeout_ms; /* 0: none */
    const char* naming_timeout_origin;
    int line; /* where the file names it */
} vl_settings_server;

/* Reads a file, or with path NULL the one that the library would use. Never
 * fails for a missing or faulty file, see vl_settings_error(); NULL only when
 * memory has run out. Close with vl_settings_close(). */
VL_EXPORT vl_settings* vl_settings_open(const char* path);

VL_EXPORT void vl_settings_close(vl_settings* settings);

/* The file's path, "" when no file was found. */
VL_EXPORT const char* vl_settings_path(const vl_settings* settings);

/* How the file was found, for people: "environment variable VELMO_SETTINGS",
 * "argument", "user's configuration", "system's configuration", "no file". */
VL_EXPORT const char* vl_settings_path_origin(const vl_settings* settings);

/* What is wrong with the settings, as "FILE:LINE: REASON" (line 1 for what
 * concerns the file as a whole; the reason alone when there is no file); NULL when
 * nothing is. */
VL_EXPORT const char* vl_settings_error(const vl_settings* settings);

/* The connection time-out in milliseconds, 0 for none, and its origin (origin
 * may be NULL). */
VL_EXPORT unsigned int vl_settings_connect_timeout(const vl_settings* settings,
                                                   const char** origin);

/* The number of servers that the file lists; 0 for a missing or faulty file. */
VL_EXPORT int vl_settings_server_count(const vl_settings* settings);

/* The server at an index from 0, in the order of the file, into *server.
 * 0; 4 (PARAMETER_ERROR) for an index out of range or a NULL pointer. */
VL_EXPORT int vl_settings_get_server(const vl_settings* settings, int index,
                                     vl_settings_server* server);

#ifdef __cplusplus
}
#endif

#endif
