/* What the examples have in common: telling what failed. */
#ifndef VELMO_EXAMPLES_EXAMPLE_H
#define VELMO_EXAMPLES_EXAMPLE_H

#include <locale.h>
#include <stdio.h>
#include <stdlib.h>

#include <velmo/vl_api.h>

/* Texts of result codes are wide characters, which printf() writes in the character set
 * of the locale. */
static inline void begin(void)
{
    setlocale(LC_CTYPE, "");
    if (MB_CUR_MAX == 1)
        setlocale(LC_CTYPE, "C.UTF-8");
    setvbuf(stdout, NULL, _IOLBF, 0); /* in step with other processes */
}

/* Gives the code back; if it is none of success, tells it. */
static inline int check(const char* what, int code)
{
    if (code != VL_OK)
        fprintf(stderr, "%s: %d (%ls)\n", what, code, get_error_string(code));
    return code;
}

/* For what outlives the programs that use it, whichever of them is first: that it exists
 * is as good as to have created it. */
static inline int there_by_now(int code, int exists)
{
    return code == exists ? VL_OK : code;
}

#endif
