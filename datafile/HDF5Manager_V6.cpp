#include "datafile/HDF5Manager_V6.h"
