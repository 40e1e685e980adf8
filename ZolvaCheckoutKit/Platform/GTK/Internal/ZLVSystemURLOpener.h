#pragma once

#include <ZolvaCheckoutKit/ZLVURL.h>

/// The applications of the system that have registered for a URL scheme.
namespace ZLVSystemURLOpener {

/// Starts the user's preferred one and does not wait for it; false when none is known.
bool openURL(const ZLVURL& url);

}  // namespace ZLVSystemURLOpener
