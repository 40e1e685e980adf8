#pragma once

#include <exception>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/C/zolvacheckoutkit.h>

// No exception crosses the boundary: out of a call it becomes a result, out of a block a fault.

/// A handle that is used up. Thrown inside, returned as ZLV_GONE.
struct ZLVGone {};

/// The result that stands for the exception being handled; keeps its text for zlv_last_fault.
zlv_result ZLVResultOfException() noexcept;

/// Runs what a function of the interface does, and makes a result of how it ended.
template <class Body>
zlv_result ZLVResultOf(Body&& body) noexcept {
  try {
    std::forward<Body>(body)();
    return ZLV_OK;
  } catch (...) {
    return ZLVResultOfException();
  }
}

/// Tells the host of the exception being handled, which a block threw on the main thread.
void ZLVReportException() noexcept;

/// Runs a block of the library's, or several.
template <class Block>
void ZLVRunReporting(Block&& block) noexcept {
  try {
    std::forward<Block>(block)();
  } catch (...) {
    ZLVReportException();
  }
}

/// `text`, or a fault that names the call and what it is without.
const char* ZLVRequired(const char* text, std::string_view call, std::string_view what);

/// A fault with this text.
[[noreturn]] void ZLVThrowFault(std::string_view call, std::string_view what);
