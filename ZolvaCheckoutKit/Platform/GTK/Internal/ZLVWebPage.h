#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVCertificateAuthorities.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVDialogWatch.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVNavigationPolicy.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVPressWatch.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVProblem.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVRefusals.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVScriptDialog.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

/// What is known of who one is talking to.
enum class ZLVSecurity { Unknown, Secure, NotSecure };

/// A web view that forgets everything with its end and lets nothing out of itself.
class ZLVWebPage {
 public:
  /// Called from inside the engine, which must not lose the page there.
  struct Events {
    std::function<void()> stateChanged;
    /// A page is there to look at.
    std::function<void()> shown;
    std::function<void(const ZLVProblem& problem)> failed;
    /// The page led to a URL that is not for a browser.
    std::function<void(const ZLVURL& url)> ledOut;
    /// It wanted to, but nothing says that the user wants it.
    std::function<void(const ZLVURL& url)> wantsOut;
    /// There was a file in place of a page; the page that is shown stays.
    std::function<void()> fileRefused;
    std::function<void(ZLVScriptDialog dialog)> dialogOpened;
    /// The user has done something on the page.
    std::function<void()> pressed;
    /// The page closed its window.
    std::function<void()> closed;
  };

  struct State {
    std::string host{};
    ZLVSecurity security = ZLVSecurity::Unknown;
    bool isLoading = true;
    double progress = 0;
    bool canGoBack = false;
    /// The server's; none without encryption.
    ZLVGObject<GTlsCertificate> certificate{};
  };

  /// `view` has loaded nothing so far and is nobody else's.
  ZLVWebPage(ZLVGObject<WebKitWebView> view, std::shared_ptr<ZLVCertificateAuthorities> authorities,
             Events events);
  ZLVWebPage(const ZLVWebPage&) = delete;
  ZLVWebPage& operator=(const ZLVWebPage&) = delete;
  /// Ends the processes behind the page.
  ~ZLVWebPage();

  [[nodiscard]] GtkWidget* widget() const { return GTK_WIDGET(view_.get()); }
  [[nodiscard]] State state() const;
  /// Whether any page has come so far.
  [[nodiscard]] bool hasPage() const { return hasPage_; }

  /// For the host or the user.
  void load(std::string url);
  void goBack();
  /// Fetches the page again; never sends a form again.
  void reload() { load(requestedURL_); }
  /// Nothing opens the URL that led out before there was a page.
  void openingFailed();

 private:
  void connectLoading();
  void connectPolicies();
  void request(std::string url);
  void committed();
  void fail(ZLVProblem::Kind kind, std::string url, std::string detail = {},
            GTlsCertificateFlags flags = {}) const;
  void loadFailed(WebKitLoadEvent reached, const char* url, const GError& error) const;
  void askedToLogIn(WebKitAuthenticationRequest* request);
  void certificateFailed(const char* url, GTlsCertificate* certificate, GTlsCertificateFlags flags);
  /// Whether it may go on.
  bool decide(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type);
  bool decideNavigation(WebKitNavigationAction* action);
  bool decideResponse(WebKitResponsePolicyDecision* decision);
  ZLVNavigationPolicy::Verdict verdictOn(WebKitNavigationAction* action, bool isNewWindow);
  /// Loads here what was meant for a new window.
  void openWindow(WebKitNavigationAction* action);

  std::shared_ptr<ZLVCertificateAuthorities> authorities_;
  Events events_;
  ZLVGObject<WebKitWebView> view_;
  std::string host_;
  ZLVSecurity security_ = ZLVSecurity::Unknown;
  ZLVGObject<GTlsCertificate> certificate_;
  /// The page that is shown, or on its way.
  std::string requestedURL_;
  bool hasPage_ = false;
  ZLVNavigationPolicy policy_;
  /// Why the load under way would end without a page.
  ZLVProblem::Kind interruption_ = ZLVProblem::Kind::Address;
  /// Who has asked for a login in the load under way.
  std::optional<ZLVProblem> login_;
  /// The certificate that the authorities last vouched for.
  ZLVGObject<GTlsCertificate> vouched_;
  ZLVPressWatch presses_;
  ZLVDialogWatch dialogs_;
  ZLVRefusals refusals_;
  ZLVSignals signals_;
};
