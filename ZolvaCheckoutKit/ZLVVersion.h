#pragma once

// The library's version. The build reads the three numbers.

/// Until it is 1, every minor version may change the interfaces.
#define ZLV_VERSION_MAJOR 0
/// Counts what was added.
#define ZLV_VERSION_MINOR 1
/// Counts what was mended.
#define ZLV_VERSION_PATCH 1

/// The three numbers as a text, such as "1.2.3".
#define ZLV_VERSION ZLV_VERSION_TEXT(ZLV_VERSION_MAJOR, ZLV_VERSION_MINOR, ZLV_VERSION_PATCH)

/// @cond
#define ZLV_VERSION_TEXT(major, minor, patch) ZLV_VERSION_TEXT_OF(major, minor, patch)
#define ZLV_VERSION_TEXT_OF(major, minor, patch) #major "." #minor "." #patch
/// @endcond
