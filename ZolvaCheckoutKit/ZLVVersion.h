#pragma once

/// The library's version. The build reads it from this line.
#define ZLV_VERSION "0.1.1"
