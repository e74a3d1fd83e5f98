#pragma once

#include "tarn/export.h"

/// An integer setting: a value set in this process by `config_int_set`, else the environment
/// variable OLE_CONFIG_ followed by the key in capitals, else the default. Text that is no whole
/// number counts as absent. Works before `main`. A null key gives the default.
TARN_API int config_int(const char* key, int defaultValue);

/// Sets an integer for later calls of `config_int`, for hosts that load the module after they
/// start.
TARN_API void config_int_set(const char* key, int value);
