#include "Apps/Console/DemoUser.h"

#include <utility>

namespace {

/// What stands between `before` and `after`, from `position` on, which moves behind it.
std::string between(const std::string& text, std::string_view before, std::string_view after,
                    std::size_t& position) {
  const auto start = text.find(before, position);
  if (start == std::string::npos) return "";
  const auto end = text.find(after, start + before.size());
  if (end == std::string::npos) return "";
  position = end;
  return text.substr(start + before.size(), end - start - before.size());
}

/// Scheme, host and port of an absolute URL.
std::string origin(const std::string& url) {
  return url.substr(0, url.find('/', url.find("//") + 2));
}

}  // namespace

class DemoUser::Browser : public ZLVBrowser {
 public:
  Browser(DemoUser& user, std::string url) : user_(user), url_(std::move(url)) {}
  void setDismissButtonStyle(ZLVDismissButtonStyle) override {}
  void show(ZLVViewController&, bool, ZLVOnce<void()>) override {
    user_.tell_("The in-app browser opens " + url_);
    user_.visit(url_);
  }
  void hide(bool) override { user_.tell_("The in-app browser closes"); }

 private:
  DemoUser& user_;
  std::string url_;
};

DemoUser::DemoUser(const ZLVPlatform& platform, Tell tell)
    : queue_(platform.mainQueue), session_(platform.makeURLSession()), tell_(std::move(tell)) {}

std::unique_ptr<ZLVBrowser> DemoUser::makeBrowser(const ZLVURL& url) {
  return std::make_unique<Browser>(*this, url.absoluteString());
}

bool DemoUser::openURL(const ZLVURL& url) {
  tell_("The application is asked to open " + url.absoluteString());
  ZLVClient::handleCallbackUrl(url);
  return true;
}

void DemoUser::visit(const std::string& url) {
  ZLVURLRequest request;
  request.URL = ZLVURL::URLWithString(url);
  send(std::move(request), [this, url](const ZLVURLAnswer& answer) { confirm(url, answer.data); });
}

void DemoUser::confirm(const std::string& url, const std::string& page) {
  std::size_t position = 0;
  const auto heading = between(page, "<h1", "</h1>", position);
  const auto title = heading.substr(heading.find('>') + 1);
  const auto action = between(page, "action=\"", "\"", position);
  tell_("The user reads \"" + title + "\" and presses Confirm");

  ZLVURLRequest request;
  request.URL = ZLVURL::URLWithString(action.starts_with('/') ? origin(url) + action : action);
  request.HTTPMethod = "POST";
  request.allHTTPHeaderFields = {{"Content-Type", "application/x-www-form-urlencoded"}};
  request.HTTPBody = "decision=confirm";
  send(std::move(request), [this](const ZLVURLAnswer& answer) {
    // The wallet redirects to the application's own scheme, which no HTTP session can follow.
    if (answer.error) {
      const auto& target = answer.error->userInfo()[NSURLErrorFailingURLStringErrorKey];
      if (const auto callback = ZLVURL::URLWithString(target.description())) openURL(*callback);
    }
    if (root_->presentedViewController() == nullptr) return;
    tell_("The wallet did not send the user back, who closes the page");
    root_->dismissViewControllerAnimated(true);
  });
}

void DemoUser::send(ZLVURLRequest request, Answered answered) {
  session_->dataTask(std::move(request),
                     [queue = queue_, answered = std::move(answered)](ZLVURLAnswer answer) mutable {
                       queue->dispatch([answered = std::move(answered),
                                        answer = std::move(answer)] { answered(answer); });
                     });
}
