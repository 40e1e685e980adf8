#pragma once

/// Marks a declaration as part of the library's binary interface; everything else stays hidden. On
/// Windows the build tells whether the library is made or used, and whether it is a DLL at all.
#if defined(_WIN32) && defined(ZolvaCheckoutKit_EXPORTS)
#define ZLV_EXPORT __declspec(dllexport)
#elif defined(_WIN32) && defined(ZLV_SHARED)
#define ZLV_EXPORT __declspec(dllimport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define ZLV_EXPORT __attribute__((visibility("default")))
#else
#define ZLV_EXPORT
#endif
