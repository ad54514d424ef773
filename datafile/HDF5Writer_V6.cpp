#include "datafile/HDF5Writer_V6.h"
