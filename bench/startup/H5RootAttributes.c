/* Opens an HDF5 file and prints the names and string values of its root attributes:
 * the least a program must do to answer `zarvi-cli info`, to time its start-up against.
 * Usage: h5_root_attributes FILE */
#include <hdf5.h>
#include <stdio.h>
#include <stdlib.h>

static herr_t print_attribute(hid_t location, const char* name, const H5A_info_t* info, void* data)
{
    (void)info;
    (void)data;
    const hid_t attribute = H5Aopen(location, name, H5P_DEFAULT);
    const hid_t type = H5Aget_type(attribute);
    if (H5Tget_class(type) == H5T_STRING && !H5Tis_variable_str(type)) {
        const size_t size = H5Tget_size(type);
        char* text = calloc(size + 1, 1);
        H5Aread(attribute, type, text);
        printf("  @%s = \"%s\"\n", name, text);
        free(text);
    } else if (H5Tget_class(type) == H5T_STRING) {
        char* text = NULL;
        H5Aread(attribute, type, &text);
        printf("  @%s = \"%s\"\n", name, text ? text : "");
        H5free_memory(text);
    } else {
        printf("  @%s\n", name);
    }
    H5Tclose(type);
    H5Aclose(attribute);
    return 0;
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: %s FILE\n", argv[0]);
        return 2;
    }
    const hid_t file = H5Fopen(argv[1], H5F_ACC_RDONLY, H5P_DEFAULT);
    if (file < 0)
        return 1;
    printf("Root attributes:\n");
    H5Aiterate2(file, H5_INDEX_NAME, H5_ITER_INC, NULL, print_attribute, NULL);
    H5Fclose(file);
    return 0;
}
