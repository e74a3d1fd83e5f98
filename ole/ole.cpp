// The module's version.

#include "ole/ole.h"

const char* oledbDllVersionStr() {
    return "14.0.0.0";
}
