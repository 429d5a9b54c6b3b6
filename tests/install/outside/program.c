/* A program in C of another project: the functions, the utilities, the texts. */
#include <locale.h>
#include <stdio.h>

#include <velmo/vl_api.h>
#include <velmo/vl_util.h>

int main(void)
{
    void* data = NULL;
    unsigned int length = 0;
    NameList names = {0, NULL};

    setlocale(LC_ALL, "C.UTF-8");
    if (vl_create_port("outside", 7, 0, NULL, NULL) != VL_OK ||
        vl_send_packet(7, "hello", 5, 0, NULL, NULL) != VL_OK ||
        vl_receive_packetv(7, NULL, &data, &length, 1000, NULL, NULL) != VL_OK ||
        vl_create_data_template_point("level", "int32", NULL, NULL) != VL_OK ||
        vl_get_all_point_name(&names, NULL, NULL) != VL_OK)
        return 1;
    printf("%.*s %s\n%ls\n", (int)length, (char*)data, names.names[0],
           get_error_string(2002));
    vl_free_memory(&data);
    for (unsigned int i = 0; i < names.count; i++)
        vl_string_free(names.names[i]);
    vl_free_memory((void**)&names.names);
    return 0;
}
