#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

/// The settings folders that a host may tell apart.
class TARN_API iSettings {
public:
    /// The folder that is asked for.
    enum eType : int {
        eUser = 0 ///< that of the person
    };
};

/// True for anything that exists at the path, or where a link there leads to: file, folder, device.
TARN_API bool fileExists(const LightweightString<wchar_t>& path);

/// The name of a path without its folders and its extension: what follows the last '/' or '\\', up
/// to the last '.' unless that is its first character.
TARN_API LightweightString<wchar_t> stripPathAndExt(const LightweightString<wchar_t>& path);

/// The preferences folder, ending in a separator so that a file name can be appended; it need not
/// exist. The environment variable OLE_PREFS_DIR where it is set, else the user's configuration
/// folder and "ole". Other types than 0 give the same folder.
TARN_API LightweightString<wchar_t> getPrefsDirectory(iSettings::eType type);
