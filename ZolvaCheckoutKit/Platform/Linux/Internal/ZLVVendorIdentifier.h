#pragma once

#include <optional>
#include <string>

/// The identifier of an application on a machine.
namespace ZLVVendorIdentifier {

/// The name-based UUID (version 5) of the application in the machine id's namespace, upper case:
/// the same at every start, another one for every application, and no way back to the machine id.
/// Nothing when `machineIdentifier` is no machine-id(5).
std::optional<std::string> identifier(const std::string& machineIdentifier,
                                      const std::string& application);

}  // namespace ZLVVendorIdentifier
