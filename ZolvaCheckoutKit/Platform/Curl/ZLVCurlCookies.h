#pragma once

#include <curl/curl.h>

/// The cookies that a session keeps, in memory.
namespace ZLVCurlCookies {

/// Keeps them within limits once the answer that `handle` got has set any: those go first that
/// libcurl lists first, which are the oldest of their server.
void limit(CURL* handle);

}  // namespace ZLVCurlCookies
