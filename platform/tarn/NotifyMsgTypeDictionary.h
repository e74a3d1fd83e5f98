#pragma once

#include "tarn/export.h"

/// Small whole numbers for message-type names, one dictionary a process.
class TARN_API NotifyMsgTypeDictionary {
public:
    /// The number of a name (case-sensitive), given out at first use and never changed. Works
    /// before `main`; any thread may call it. Null reads as "".
    static int intern(const char* name);
    /// The name of a number, "" for one that was never given out.
    static const char* name(int type);
};
