#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebPage.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebView.h>

namespace {

using URI = ZLVGOwned<GUri, g_uri_unref>;

/// The host as it is shown and compared; empty when there is none. Names in other scripts stay in
/// their encoded form ("xn--"), in which none passes for another.
std::string hostOf(const char* url) {
  const URI uri(url == nullptr ? nullptr : g_uri_parse(url, G_URI_FLAGS_PARSE_RELAXED, nullptr));
  const char* const host = uri ? g_uri_get_host(uri.get()) : nullptr;
  return host == nullptr ? std::string() : host;
}

/// Web pages may write characters into a URL that have no place in one.
std::optional<ZLVURL> parsedURL(const char* url) {
  const ZLVGText escaped(g_uri_escape_string(url, ":/?#[]@!$&'()*+,;=%", FALSE));
  return ZLVURL::URLWithString(escaped.get());
}

const char* urlOf(WebKitNavigationAction* action) {
  return webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
}

bool isAttachment(WebKitURIResponse* response) {
  auto* const headers = webkit_uri_response_get_http_headers(response);
  char* disposition = nullptr;
  if (headers == nullptr ||
      soup_message_headers_get_content_disposition(headers, &disposition, nullptr) == FALSE) {
    return false;
  }
  return g_ascii_strcasecmp(ZLVGText(disposition).get(), "attachment") == 0;
}

}  // namespace

ZLVWebPage::ZLVWebPage(ZLVGObject<WebKitWebView> view,
                       std::shared_ptr<ZLVCertificateAuthorities> authorities, Events events)
    : authorities_(std::move(authorities)),
      events_(std::move(events)),
      view_(std::move(view)),
      presses_(view_.get(), {.began = [this] { policy_.pressBegan(); },
                             .arrived =
                                 [this](bool isInOwnFrame) {
                                   policy_.pressArrived(isInOwnFrame);
                                   events_.pressed();
                                 }}),
      dialogs_(view_.get()),
      refusals_(view_.get(), [this] {
        if (hasPage_) events_.fileRefused();
      }) {
  connectLoading();
  connectPolicies();
}

ZLVWebPage::~ZLVWebPage() {
  signals_.disconnect();
  // A page that is busy with itself would not end by being asked to.
  webkit_web_view_terminate_web_process(view_.get());
}

ZLVWebPage::State ZLVWebPage::state() const {
  return {.host = host_,
          .security = security_,
          .isLoading = webkit_web_view_is_loading(view_.get()) != FALSE,
          .progress = webkit_web_view_get_estimated_load_progress(view_.get()),
          .canGoBack = webkit_web_view_can_go_back(view_.get()) != FALSE,
          .certificate = ZLVGObject<GTlsCertificate>::retain(certificate_.get())};
}

void ZLVWebPage::load(std::string url) {
  policy_.pageRequested();
  request(std::move(url));
}

void ZLVWebPage::request(std::string url) {
  requestedURL_ = std::move(url);
  if (host_.empty()) host_ = hostOf(requestedURL_.c_str());
  webkit_web_view_load_uri(view_.get(), requestedURL_.c_str());
}

void ZLVWebPage::goBack() { webkit_web_view_go_back(view_.get()); }

void ZLVWebPage::connectLoading() {
  auto* const view = view_.get();
  for (const char* property : {"notify::estimated-load-progress", "notify::is-loading"}) {
    signals_.connect(view, property,
                     [this](WebKitWebView*, GParamSpec*) { events_.stateChanged(); });
  }
  signals_.connect(view, "load-changed", [this](WebKitWebView*, WebKitLoadEvent event) {
    if (event == WEBKIT_LOAD_STARTED) interruption_ = ZLVProblem::Kind::Address;
    if (event == WEBKIT_LOAD_COMMITTED) committed();
  });
  // Handled, or the engine would show a page of its own.
  signals_.connect(view, "load-failed",
                   [this](WebKitWebView*, WebKitLoadEvent event, const char* url, GError* error) {
                     loadFailed(event, url, *error);
                     return TRUE;
                   });
  signals_.connect(view, "load-failed-with-tls-errors",
                   [this](WebKitWebView*, const char* url, GTlsCertificate* certificate,
                          GTlsCertificateFlags flags) {
                     certificateFailed(url, certificate, flags);
                     return TRUE;
                   });
  signals_.connect(view, "web-process-terminated",
                   [this](WebKitWebView*, WebKitWebProcessTerminationReason) {
                     fail(ZLVProblem::Kind::Crashed, requestedURL_);
                   });
  signals_.connect(view, "close", [this](WebKitWebView*) { events_.closed(); });
}

void ZLVWebPage::connectPolicies() {
  auto* const view = view_.get();
  signals_.connect(view, "decide-policy",
                   [this](WebKitWebView*, WebKitPolicyDecision* decision,
                          WebKitPolicyDecisionType type) -> gboolean {
                     const bool isAllowed = decide(decision, type);
                     if (!isAllowed) webkit_policy_decision_ignore(decision);
                     return ZLVGBoolean(!isAllowed);
                   });
  // A link to a new window asks for a decision, a script asks for the window right away.
  signals_.connect(view, "create",
                   [this](WebKitWebView*, WebKitNavigationAction* action) -> GtkWidget* {
                     openWindow(action);
                     return nullptr;
                   });
  signals_.connect(view, "script-dialog",
                   [this](WebKitWebView*, WebKitScriptDialog* dialog) -> gboolean {
                     if (dialogs_.isOwn(dialog)) events_.dialogOpened(ZLVScriptDialog(dialog));
                     return TRUE;
                   });
  // The engine's own dialog takes keys even while nothing of its page can be seen.
  signals_.connect(view, "authenticate",
                   [this](WebKitWebView*, WebKitAuthenticationRequest* request) -> gboolean {
                     askedToLogIn(request);
                     return TRUE;
                   });
}

void ZLVWebPage::committed() {
  const char* const url = webkit_web_view_get_uri(view_.get());
  policy_.pageCommitted();
  // The engine shows an empty page, and reports no failure, for a port that it will not talk to.
  const auto host = hostOf(url);
  hasPage_ = !host.empty();
  if (!hasPage_) return fail(ZLVProblem::Kind::Address, requestedURL_);

  requestedURL_ = url;
  host_ = host;
  GTlsCertificate* certificate = nullptr;
  GTlsCertificateFlags flags{};
  const bool isEncrypted = webkit_web_view_get_tls_info(view_.get(), &certificate, &flags) != FALSE;
  const bool isTrusted = isEncrypted && (flags == 0 || authorities_->vouch(certificate, host));
  certificate_ = ZLVGObject<GTlsCertificate>::retain(isEncrypted ? certificate : nullptr);
  security_ = isTrusted ? ZLVSecurity::Secure : ZLVSecurity::NotSecure;
  events_.shown();
  events_.stateChanged();
}

void ZLVWebPage::fail(ZLVProblem::Kind kind, std::string url, std::string detail,
                      GTlsCertificateFlags flags) const {
  auto host = hostOf(url.c_str());
  events_.failed({.kind = kind,
                  .URL = std::move(url),
                  .host = std::move(host),
                  .certificateFlags = flags,
                  .detail = std::move(detail)});
}

void ZLVWebPage::loadFailed(WebKitLoadEvent reached, const char* url, const GError& error) const {
  if (g_error_matches(&error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) != FALSE) {
    // Without a login something else is loaded instead, or it was an image that wanted it.
    if (!login_ || reached == WEBKIT_LOAD_COMMITTED) return;
    auto problem = *login_;
    problem.URL = url;
    return events_.failed(problem);
  }
  if (error.domain != WEBKIT_POLICY_ERROR) {
    return fail(ZLVProblem::Kind::Unreachable, url, error.message);
  }
  constexpr int interrupted = WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE;
  if (error.code != interrupted) return fail(ZLVProblem::Kind::Address, url);
  if (!hasPage_) return fail(interruption_, requestedURL_);
  if (interruption_ == ZLVProblem::Kind::File) events_.fileRefused();
}

void ZLVWebPage::askedToLogIn(WebKitAuthenticationRequest* request) {
  // Without the certificate that a server asks for, it decides itself whether it goes on.
  if (webkit_authentication_request_get_scheme(request) ==
      WEBKIT_AUTHENTICATION_SCHEME_CLIENT_CERTIFICATE_REQUESTED) {
    return webkit_authentication_request_authenticate(request, nullptr);
  }
  const bool isProxy = webkit_authentication_request_is_for_proxy(request) != FALSE;
  login_ = {.kind = isProxy ? ZLVProblem::Kind::ProxyLogin : ZLVProblem::Kind::Login,
            .host = webkit_authentication_request_get_host(request)};
  webkit_authentication_request_cancel(request);
}

void ZLVWebPage::openingFailed() {
  // The engine may be about to say that the load has ended.
  interruption_ = ZLVProblem::Kind::NoApplication;
  fail(interruption_, requestedURL_);
}

void ZLVWebPage::certificateFailed(const char* url, GTlsCertificate* certificate,
                                   GTlsCertificateFlags flags) {
  const auto host = hostOf(url);
  const bool isNew = !vouched_ || g_tls_certificate_is_same(vouched_.get(), certificate) == FALSE;
  if (isNew && authorities_->vouch(certificate, host)) {
    vouched_ = ZLVGObject<GTlsCertificate>::retain(certificate);
    webkit_network_session_allow_tls_certificate_for_host(
        webkit_web_view_get_network_session(view_.get()), certificate, host.c_str());
    return request(url);
  }
  fail(ZLVProblem::Kind::Certificate, url, {}, flags);
}

ZLVNavigationPolicy::Verdict ZLVWebPage::verdictOn(WebKitNavigationAction* action,
                                                   bool isNewWindow) {
  return policy_.decide({.URL = urlOf(action),
                         .isUserGesture = webkit_navigation_action_is_user_gesture(action) != FALSE,
                         .isRedirect = webkit_navigation_action_is_redirect(action) != FALSE,
                         .isNewWindow = isNewWindow});
}

bool ZLVWebPage::decideNavigation(WebKitNavigationAction* action) {
  using Verdict = ZLVNavigationPolicy::Verdict;
  const auto verdict = verdictOn(action, false);
  if (verdict == Verdict::Load) {
    // Here, for a login may be asked for before the load is said to have started.
    login_.reset();
    return webkit_navigation_action_get_navigation_type(action) !=
           WEBKIT_NAVIGATION_TYPE_FORM_RESUBMITTED;
  }
  // A file that the page has made itself.
  if (hasPage_ && g_str_has_prefix(urlOf(action), "blob:") != FALSE) events_.fileRefused();
  const auto target = verdict == Verdict::Refuse ? std::nullopt : parsedURL(urlOf(action));
  if (!target) return false;
  if (verdict == Verdict::HandOver) interruption_ = ZLVProblem::Kind::LedOut;
  (verdict == Verdict::HandOver ? events_.ledOut : events_.wantsOut)(*target);
  return false;
}

bool ZLVWebPage::decideResponse(WebKitResponsePolicyDecision* decision) {
  auto* const response = webkit_response_policy_decision_get_response(decision);
  if (webkit_response_policy_decision_is_main_frame_main_resource(decision) != FALSE) {
    const auto status = webkit_uri_response_get_status_code(response);
    const bool isEmpty = status == SOUP_STATUS_NO_CONTENT || status == SOUP_STATUS_RESET_CONTENT;
    interruption_ = isEmpty ? ZLVProblem::Kind::Empty : ZLVProblem::Kind::File;
  }
  // Of anything else the engine would make a download.
  return webkit_response_policy_decision_is_mime_type_supported(decision) != FALSE &&
         !isAttachment(response);
}

void ZLVWebPage::openWindow(WebKitNavigationAction* action) {
  if (verdictOn(action, true) != ZLVNavigationPolicy::Verdict::Load) return;
  webkit_web_view_load_request(view_.get(), webkit_navigation_action_get_request(action));
}

bool ZLVWebPage::decide(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type) {
  if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
    return decideResponse(WEBKIT_RESPONSE_POLICY_DECISION(decision));
  }
  auto* const action = webkit_navigation_policy_decision_get_navigation_action(
      WEBKIT_NAVIGATION_POLICY_DECISION(decision));
  if (type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION) return decideNavigation(action);
  openWindow(action);
  return false;
}
