#pragma once

/// TARN_API marks what the platform library exports; everything else stays hidden.
#if defined(_WIN32)
#if defined(TARN_BUILDING)
#define TARN_API __declspec(dllexport)
#else
#define TARN_API __declspec(dllimport)
#endif
#else
#define TARN_API __attribute__((visibility("default")))
#endif
