#pragma once

/// Where a page may lead.
class ZLVNavigationPolicy {
 public:
  enum class Verdict {
    Load,      ///< In the view.
    HandOver,  ///< To the platform's URL opener; the view stays as it is.
    Refuse
  };

  /// What is about to happen in the main frame.
  struct Navigation {
    const char* URL = nullptr;
    bool isUserGesture = false;
    bool isRedirect = false;
    bool isNewWindow = false;
  };

  static Verdict decide(const Navigation& navigation);

  /// A content security policy that keeps every other frame to http and https, which leaves the
  /// main frame as the only one that can ask for anything else.
  static constexpr const char* frameSecurityPolicy =
      "frame-src http: https:; object-src http: https:";
};
