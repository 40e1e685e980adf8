#pragma once

/// Where a page may lead. Another application is opened once for each time that somebody wanted
/// something: the host or the user a page, or the user what a press on that page does.
class ZLVNavigationPolicy {
 public:
  enum class Verdict {
    Load,      ///< In the view.
    HandOver,  ///< To the platform's URL opener; the view stays as it is.
    Ask,       ///< The user, whether it is to be handed over.
    Refuse
  };

  /// What is about to happen in the main frame.
  struct Navigation {
    const char* URL = nullptr;
    bool isUserGesture = false;
    bool isRedirect = false;
    bool isNewWindow = false;
  };

  /// By the browser's own means: its redirects are wanted until there is a page.
  void pageRequested() { wish_ = Wish::Page; }
  void pageCommitted();
  /// A button, a key or a finger went down on the view; on what is not known yet.
  void pressBegan();
  /// It was on the page itself, or else in a frame of somebody else's.
  void pressArrived(bool isInOwnFrame) { wish_ = isInOwnFrame ? Wish::Press : Wish::None; }

  /// A hand-over uses up what was wanted.
  Verdict decide(const Navigation& navigation);

  /// A content security policy that keeps every other frame to http and https, which leaves the
  /// main frame as the only one that can ask for anything else.
  static constexpr const char* frameSecurityPolicy =
      "frame-src http: https:; object-src http: https:";

 private:
  enum class Wish { None, Page, Press };

  Wish wish_ = Wish::None;
};
