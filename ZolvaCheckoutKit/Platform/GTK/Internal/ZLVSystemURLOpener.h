#pragma once

#include <ZolvaCheckoutKit/ZLVURL.h>

/// The applications of the system that have registered for a URL scheme.
class ZLVSystemURLOpener {
 public:
  /// Starts the user's preferred one and does not wait for it; false when none is known.
  static bool openURL(const ZLVURL& url);
};
