#include "datafile/ElementKind.h"
