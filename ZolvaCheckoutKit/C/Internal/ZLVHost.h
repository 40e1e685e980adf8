#pragma once

#include <cstring>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/C/Internal/ZLVBoundary.h>
#include <ZolvaCheckoutKit/C/zolvacheckoutkit.h>

/// The host's functions and their context. The texts of the struct it was made of are not its own
/// and are gone once the platform is installed.
struct ZLVHost : zlv_platform {
  /// Any thread. Everything that calls it was made by the platform that is installed.
  static const ZLVHost& installed() noexcept;
};

/// A host's struct as this version knows it. Throws a fault where it is of an older version than
/// any, or makes use of what only a later version knows.
template <class Struct>
Struct ZLVStruct(const Struct* given, std::string_view call, std::string_view what) {
  if (given == nullptr) ZLVThrowFault(call, std::string("no ").append(what));
  std::size_t size = 0;
  std::memcpy(&size, given, sizeof size);
  if (size < sizeof(Struct)) {
    ZLVThrowFault(call, std::string(what).append(": its size is less than that of the struct"));
  }
  const std::string_view bytes(static_cast<const char*>(static_cast<const void*>(given)), size);
  if (bytes.find_first_not_of('\0', sizeof(Struct)) != std::string_view::npos) {
    ZLVThrowFault(call, std::string(what).append(
                            ": made for a later version of the library, or not set to zero first"));
  }
  Struct known{};
  std::memcpy(&known, given, sizeof known);
  return known;
}
