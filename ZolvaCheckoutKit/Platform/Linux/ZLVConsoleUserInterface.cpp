#include <iostream>
#include <utility>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVProcess.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>

namespace {

void open(const ZLVURL& url, const std::optional<std::string>& command) {
  std::cerr << "open " + url.absoluteString() + '\n';
  if (!command) return;
  if (const auto error = ZLVProcess::start(*command, url.absoluteString())) {
    std::cerr << "cannot start " + *command + ": " + error.message() + '\n';
  }
}

}  // namespace

/// A page on the "screen"; closed by the user through the interface, by the library through the
/// browser that owns it.
struct ZLVConsoleUserInterface::Page {
  ZLVOnce<void()> closed;
};

class ZLVConsoleUserInterface::Browser final : public ZLVBrowser {
 public:
  Browser(ZLVConsoleUserInterface& interface, ZLVURL url)
      : interface_(interface), url_(std::move(url)) {}

  void setDismissButtonStyle(ZLVDismissButtonStyle /*style*/) override {}

  void show(ZLVViewController& /*presenter*/, bool /*animated*/, ZLVOnce<void()> closed) override {
    page_ = std::make_shared<Page>(Page{std::move(closed)});
    interface_.pages_.push_back(page_);
    open(url_, interface_.openWithCommand_);
  }

  void hide(bool /*animated*/) override { page_.reset(); }

 private:
  ZLVConsoleUserInterface& interface_;
  ZLVURL url_;
  std::shared_ptr<Page> page_;
};

ZLVConsoleUserInterface::ZLVConsoleUserInterface(std::shared_ptr<ZLVMainQueue> mainQueue,
                                                 std::optional<std::string> openWithCommand)
    : mainQueue_(std::move(mainQueue)),
      openWithCommand_(std::move(openWithCommand)),
      root_(std::make_shared<ZLVViewController>()) {}

ZLVConsoleUserInterface::~ZLVConsoleUserInterface() = default;

std::shared_ptr<ZLVViewController> ZLVConsoleUserInterface::keyWindowRootViewController() {
  return root_;
}

std::unique_ptr<ZLVBrowser> ZLVConsoleUserInterface::makeBrowser(const ZLVURL& url) {
  return std::make_unique<Browser>(*this, url);
}

bool ZLVConsoleUserInterface::openURL(const ZLVURL& url) {
  open(url, openWithCommand_);
  return true;
}

bool ZLVConsoleUserInterface::closeBrowser() {
  while (!pages_.empty()) {
    const std::weak_ptr<Page> page = std::move(pages_.back());
    pages_.pop_back();
    if (page.expired()) continue;
    // Whoever hides or destroys the browser first leaves nothing to call.
    mainQueue_->dispatch([page] {
      if (const auto shown = page.lock()) std::move(shown->closed)();
    });
    return true;
  }
  return false;
}
