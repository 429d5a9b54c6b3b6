/* Points: named values in a server.
 *
 *     points
 *
 * creates some points, writes, reads, describes and lists them, and removes them again.
 */
#include <string.h>

#include <velmo/vl_util.h>

#include "example.h"

/* One value. In C it is bytes, as many as the point's template says: here a double. */
static int one_value(void)
{
    const char* name = "example/temperature";
    double degrees = 0;
    int code = check(
        "create", there_by_now(vl_create_data_template_point(name, "float64", NULL, NULL),
                               OBJECT_ALREADY_EXSIT));
    if (code != VL_OK)
        return code;

    /* A new point has no data, which is a code like any other. */
    code = vl_get_data_template_point(name, &degrees, sizeof degrees, NULL, NULL);
    if (code == NON_EXIST_DATA)
        printf("%s: nobody has written it yet\n", name);
    else if (check("read", code) != VL_OK)
        return code;

    degrees = 180.5;
    code = check("write",
                 vl_set_data_template_point(name, &degrees, sizeof degrees, NULL, NULL));
    if (code != VL_OK)
        return code;
    degrees = 0;
    code = check("read",
                 vl_get_data_template_point(name, &degrees, sizeof degrees, NULL, NULL));
    if (code == VL_OK)
        printf("%s: %.1f\n", name, degrees);
    return code;
}

/* All about a point, and a value of any length: the library allocates, we free. */
static int all_about(void)
{
    const char* name = "example/note";
    const char* text = "to be cleaned on Monday";
    char* type = NULL;
    char* description = NULL;
    void* value = NULL; /* has to be NULL, or a block of an earlier call */
    unsigned int length = 0;
    int code = check("create",
                     there_by_now(vl_create_data_template_point(name, "text", NULL, NULL),
                                  OBJECT_ALREADY_EXSIT));
    if (code == VL_OK)
        code = check("write",
                     vl_set_data_template_point(name, text, (int)strlen(text), NULL, NULL));
    if (code == VL_OK)
        code = check("describe", vl_set_data_template_point_description(
                                     name, "for the next shift", NULL, NULL));
    if (code == VL_OK)
        code = check("ask about",
                     get_dtp_info2(name, &type, &description, &value, &length, NULL, NULL));
    if (code != VL_OK)
        return code;
    printf("%s (%s, %s): %.*s\n", name, type, description, (int)length, (char*)value);
    vl_string_free(type); /* strings one way ... */
    vl_string_free(description);
    vl_free_memory(&value); /* ... blocks another */
    return VL_OK;
}

/* The names of all points of a type, each removed. */
static int remove_all_of(const char* type)
{
    NameList list;
    int code = check("list", vl_get_all_point_by_typename(&list, type, NULL, NULL));
    if (code != VL_OK)
        return code;
    for (unsigned int i = 0; i < list.count; i++) {
        if (strncmp(list.names[i], "example/", 8) == 0) { /* ours */
            printf("removing %s\n", list.names[i]);
            code = check("remove", vl_remove_template_point(list.names[i], NULL, NULL));
        }
        vl_string_free(list.names[i]);
    }
    vl_free_memory((void**)&list.names);
    return code;
}

int main(void)
{
    begin();
    return one_value() == VL_OK && all_about() == VL_OK &&
                   remove_all_of("float64") == VL_OK && remove_all_of("text") == VL_OK
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}
