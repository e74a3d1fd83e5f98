#pragma once

/// OLE_API marks what the module exports; everything else stays hidden.
#if defined(_WIN32)
#if defined(OLE_BUILDING)
#define OLE_API __declspec(dllexport)
#else
#define OLE_API __declspec(dllimport)
#endif
#else
#define OLE_API __attribute__((visibility("default")))
#endif

/// The module's version, "14.0.0.0". The text lives as long as the module is loaded.
OLE_API const char* oledbDllVersionStr();
