#include <utility>

#include <ZolvaCheckoutKit/C/Internal/ZLVHandles.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostUserInterface.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

struct ZLVHostUserInterface::Page {
  ZLVOnce<void()> closed;
  std::weak_ptr<ZLVViewController> controller;
  /// What it is shown over, which would take the page along when it goes.
  std::shared_ptr<ZLVViewController> presenter;
};

namespace {

/// More views than any host has one above the other.
constexpr int longestWay = 1000;

/// A view of the host's, over which pages are shown.
class HostView final : public ZLVViewController {
 public:
  using Release = void (*)(void*);

  explicit HostView(void* hostView) : hostView_(hostView) {}
  ~HostView() override {
    if (release_ != nullptr) release_(hostView_);
  }

  [[nodiscard]] void* hostView() const noexcept { return hostView_; }
  void setRelease(Release release) { release_ = release; }

 private:
  void* const hostView_;
  Release release_ = nullptr;
};

using Page = ZLVHostUserInterface::Page;

auto& pages() {
  static auto& pages =
      *new ZLVHandles<zlv_page, std::shared_ptr<Page>>(ZLVHandleKind::Page, "zlv_page");
  return pages;
}

auto& views() {
  static auto& views = *new ZLVHandles<zlv_view, std::shared_ptr<ZLVViewController>>(
      ZLVHandleKind::View, "zlv_view");
  return views;
}

/// What `look` finds behind a handle, or a null pointer when the handle is used up or none.
template <class Look>
std::shared_ptr<Page> found(Look look) {
  try {
    return look();
  } catch (const ZLVGone&) {
  } catch (const ZLVProgrammingFault&) {
  }
  return nullptr;
}

std::shared_ptr<Page> pageOf(zlv_page* handle) {
  return found([=] { return pages().get(handle); });
}

/// A page that is gone, on its way to the main thread. Dropped there unrun it is closed all the
/// same: its call has no other way to end.
class Closing {
 public:
  explicit Closing(std::shared_ptr<Page> page) : page_(std::move(page)) {}
  Closing(Closing&&) noexcept = default;
  Closing& operator=(Closing&&) = delete;
  ~Closing() {
    if (page_ != nullptr) ZLVRunReporting([this] { close(); });
  }

  void operator()() { close(); }

 private:
  void close() { std::move(std::exchange(page_, nullptr)->closed)(); }

  std::shared_ptr<Page> page_;
};

void closeLater(std::shared_ptr<Page> page) {
  ZLVPlatform::installed().mainQueue->dispatch(Closing(std::move(page)));
}

/// Stands for a page in the likeness of the host's views.
class PageLikeness final : public ZLVViewController {
 public:
  explicit PageLikeness(std::weak_ptr<ZLVViewController> page) : page_(std::move(page)) {}

  [[nodiscard]] ZLVExactClass exactClass() const noexcept override {
    return ZLVExactClass::WebViewController;
  }

 protected:
  void viewWillDisappear(bool animated) override {
    if (const auto page = page_.lock()) page->dismissViewControllerAnimated(animated);
  }

 private:
  std::weak_ptr<ZLVViewController> page_;
};

/// A root that presents the page, so that it can be dismissed wherever the host has it.
std::shared_ptr<ZLVViewController> likenessOf(const Page& page) {
  auto root = std::make_shared<ZLVViewController>();
  root->presentViewController(std::make_shared<PageLikeness>(page.controller), false);
  return root;
}

}  // namespace

class ZLVHostUserInterface::Browser final : public ZLVBrowser {
 public:
  Browser(ZLVHostUserInterface& interface, ZLVURL url)
      : interface_(interface), url_(std::move(url)) {}
  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;
  ~Browser() override { hide(false); }

  void setDismissButtonStyle(ZLVDismissButtonStyle style) override { style_ = style; }

  void show(ZLVViewController& presenter, bool animated, ZLVOnce<void()> closed) override {
    page_ = std::make_shared<Page>(
        Page{std::move(closed), presenter.presentedViewController(), presenter.shared_from_this()});
    handle_ = pages().add(page_);
    interface_.lastPage();
    interface_.shown_.push_back(handle_);
    const auto url = url_.absoluteString();  // the host may close the page inside its function
    zlv_page_request request{};
    request.size = sizeof request;
    request.page = handle_;
    // NOLINTNEXTLINE(*-static-cast-downcast): the operations take no other
    request.host_view = static_cast<HostView&>(presenter).hostView();
    request.url = url.c_str();
    request.animated = animated ? 1 : 0;
    request.dismiss_button_style = static_cast<std::int32_t>(style_);
    const auto& host = interface_.host_;
    if (host.show_page(host.context, &request) != 0) return;
    auto refused = found([&] { return pages().take(request.page); });
    if (refused != nullptr) closeLater(std::move(refused));
  }

  void hide(bool animated) override {
    if (const auto page = std::exchange(page_, nullptr)) {
      page->presenter.reset();
      const auto& host = interface_.host_;
      const auto shown = found([this] { return pages().take(handle_); });
      if (shown != nullptr) host.hide_page(host.context, handle_, animated ? 1 : 0);
    }
  }

 private:
  ZLVHostUserInterface& interface_;
  const ZLVURL url_;
  ZLVDismissButtonStyle style_ = ZLVDismissButtonStyle::Done;
  std::shared_ptr<Page> page_;
  zlv_page* handle_ = nullptr;
};

std::shared_ptr<ZLVViewController> ZLVHostUserInterface::keyWindowRootViewController() {
  if (host_.key_window_root != nullptr) {
    likeness_ = likenessOfViews();
  } else {
    const auto page = lastPage();
    likeness_ = page != nullptr ? likenessOf(*page) : nullptr;
  }
  return likeness_;
}

std::shared_ptr<ZLVViewController> ZLVHostUserInterface::likenessOfViews() const {
  std::shared_ptr<ZLVViewController> root;
  std::shared_ptr<ZLVViewController> last;
  std::shared_ptr<ZLVNavigationController> stack;  // the last one, where it is one
  int length = 0;
  for (auto* view = host_.key_window_root(host_.context); view != nullptr;) {
    if (++length > longestWay) {
      ZLVThrowFault("zlv_handle_callback_url", "the host's views go round");
    }
    zlv_page* handle = nullptr;
    const auto kind = host_.view_kind(host_.context, view, &handle);
    const bool isStack = kind == ZLV_VIEW_NAVIGATION_CONTROLLER;
    auto* const next = isStack ? host_.last_child_view(host_.context, view)
                               : host_.presented_view(host_.context, view);
    auto nextStack = isStack ? std::make_shared<ZLVNavigationController>() : nullptr;
    std::shared_ptr<ZLVViewController> likeness = nextStack;
    if (kind == ZLV_VIEW_PAGE && next == nullptr) {
      if (const auto page = pageOf(handle)) likeness = likenessOf(*page);
    }
    if (likeness == nullptr) likeness = std::make_shared<ZLVViewController>();

    if (stack != nullptr) {
      stack->pushViewController(likeness);
    } else if (last != nullptr) {
      last->presentViewController(likeness, false);
    } else {
      root = likeness;
    }
    last = std::move(likeness);
    stack = std::move(nextStack);
    view = next;
  }
  return root;
}

std::shared_ptr<ZLVHostUserInterface::Page> ZLVHostUserInterface::lastPage() {
  for (; !shown_.empty(); shown_.pop_back()) {
    if (auto page = pageOf(shown_.back())) return page;
  }
  return nullptr;
}

std::unique_ptr<ZLVBrowser> ZLVHostUserInterface::makeBrowser(const ZLVURL& url) {
  return std::make_unique<Browser>(*this, url);
}

bool ZLVHostUserInterface::openURL(const ZLVURL& url) {
  return host_.open_url != nullptr &&
         host_.open_url(host_.context, url.absoluteString().c_str()) != 0;
}

zlv_view* ZLVAddView(std::shared_ptr<ZLVViewController> view) {
  return views().add(std::move(view));
}

std::shared_ptr<ZLVViewController> ZLVViewOf(zlv_view* view) {
  return view == nullptr ? nullptr : views().get(view);
}

zlv_result zlv_page_closed(zlv_page* page) {
  return ZLVResultOf([&] { closeLater(pages().take(page)); });
}

zlv_view* zlv_view_create(void* host_view, void (*release)(void* host_view)) {
  zlv_view* handle = nullptr;
  ZLVResultOf([&] {
    if (host_view == nullptr) ZLVThrowFault("zlv_view_create", "no view");
    if (!ZLVPlatform::isInstalled()) ZLVThrowFault("zlv_view_create", "no platform is installed");
    if (ZLVHost::installed().show_page == nullptr) {
      ZLVThrowFault("zlv_view_create", "the host has no show_page (use zlv_console_view)");
    }
    auto view = std::make_shared<HostView>(host_view);
    handle = ZLVAddView(view);
    view->setRelease(release);
  });
  return handle;
}

zlv_result zlv_view_release(zlv_view* view) {
  return ZLVResultOf([&] { views().take(view); });
}
