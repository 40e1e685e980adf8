#pragma once

/// Marks a declaration as part of the library's binary interface; everything else stays hidden.
#define ZLV_EXPORT __attribute__((visibility("default")))
