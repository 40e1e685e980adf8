#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/Platform/ZLVDeviceWrapper.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVVendor.h>

/// @file
/// A platform whose every port is in a test's hands, for tests of an application's checkout: the
/// main queue runs when it is told to, the session answers what the test says, the browser only
/// remembers what it was asked. All of it is for one thread, the test's.

/// A main queue that runs when it is told to.
struct ZLVFakeMainQueue : ZLVMainQueue {
  void dispatch(ZLVOnce<void()> block) override { blocks.push_back(std::move(block)); }
  /// Runs blocks until there is none.
  void drain() {
    while (!blocks.empty()) {
      auto block = std::move(blocks.front());
      blocks.pop_front();
      std::move(block)();
    }
  }
  std::deque<ZLVOnce<void()>> blocks;  ///< What waits, in order.
};

/// A log that keeps the lines.
struct ZLVFakeLog : ZLVSystemLog {
  void log(std::string_view line) override { lines.emplace_back(line); }
  std::vector<std::string> lines;  ///< In order.
};

/// A device that says what the fields hold; absent is what the system does not know.
struct ZLVFakeDevice : ZLVDevice {
  std::optional<ZLVSize> screen = ZLVSize{390, 844};         ///< `mainScreenSize`
  std::optional<std::string> displayName = "Corner Coffee";  ///< `bundleDisplayName`
  std::optional<std::string> version = "2.5";                ///< `bundleShortVersion`
  std::optional<std::string> model = "model9,9";             ///< `machine`
  std::optional<std::string> deviceName = "A phone";         ///< `name`
  std::optional<std::string> system = "17.0";                ///< `systemVersion`
  std::vector<std::string> localizations;                    ///< `preferredLocalizations`
  std::vector<std::string> languages;                        ///< `preferredLanguages`
  std::optional<Threads> usage = Threads{};                  ///< `threads`

  std::optional<std::string> identifierForVendor() const override { return std::nullopt; }
  std::optional<ZLVSize> mainScreenSize() const override { return screen; }
  std::optional<std::string> bundleDisplayName() const override { return displayName; }
  std::optional<std::string> bundleShortVersion() const override { return version; }
  std::vector<std::string> preferredLocalizations() const override { return localizations; }
  std::vector<std::string> preferredLanguages() const override { return languages; }
  std::optional<std::string> machine() const override { return model; }
  std::optional<std::string> name() const override { return deviceName; }
  std::optional<std::string> systemVersion() const override { return system; }
  std::optional<Threads> threads() const override { return usage; }
};

/// A user interface that shows nothing and remembers it.
struct ZLVFakeUserInterface : ZLVUserInterface {
  /// A page of it. The user closes it by `closed`, which the page's end takes along.
  struct Browser : ZLVBrowser {
    /// Not yet shown.
    Browser(ZLVFakeUserInterface& screen, std::string page) : owner(screen), url(std::move(page)) {}
    ~Browser() override {
      if (owner.browser == this) owner.browser = nullptr;
    }
    void setDismissButtonStyle(ZLVDismissButtonStyle value) override { style = value; }
    void show(ZLVViewController&, bool, ZLVOnce<void()> whenClosed) override {
      owner.journal.push_back("show " + url);
      closed = std::move(whenClosed);
    }
    void hide(bool) override { owner.journal.push_back("hide " + url); }

    ZLVFakeUserInterface& owner;                 ///< Outlives it.
    std::string url;                             ///< The page.
    ZLVOnce<void()> closed;                      ///< Set once it is shown.
    std::optional<ZLVDismissButtonStyle> style;  ///< Absent until it is asked for.
  };

  std::shared_ptr<ZLVViewController> keyWindowRootViewController() override { return root; }
  std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override {
    auto made = std::make_unique<Browser>(*this, url.absoluteString());
    browser = made.get();
    return made;
  }
  bool openURL(const ZLVURL&) override { return false; }
  void prepareBrowser() override { ++preparations; }

  /// The window.
  std::shared_ptr<ZLVViewController> root = std::make_shared<ZLVViewController>();
  /// The last one made, as long as it is there.
  Browser* browser = nullptr;
  /// "show URL" and "hide URL", in order.
  std::vector<std::string> journal;
  /// How often it was told that a page may follow.
  int preparations = 0;
};

/// A request that the test is to answer.
struct ZLVFakeTask {
  ZLVURLRequest request;                     ///< What is sent.
  ZLVURLSession::CompletionHandler handler;  ///< Who waits; let go of it and the call is lost.

  /// Answers it; what becomes of that waits in the main queue.
  void answer(int status, std::string body) {
    std::move(handler)({.data = std::move(body), .statusCode = status, .error = {}});
  }
  /// Answers with an error of `NSURLErrorDomain` in place of an answer.
  void fail(std::int64_t code) {
    std::move(handler)({.data = {},
                        .statusCode = 0,
                        .error = ZLVError::errorWithDomain(NSURLErrorDomain, code, {})});
  }
};

/// The fakes as the platform of one test case: make one at the beginning of each.
///
/// The library keeps one platform for the life of a process. The first of these installs one that
/// hands everything to the fakes of the case that runs; the end of each lets go of its calls
/// without an answer, closes its page, which answers there and then, and clears the configuration.
/// One at a time, and the last to go of what a case has.
class ZLVFakePlatform {
 public:
  /// The main queue.
  std::shared_ptr<ZLVFakeMainQueue> queue = std::make_shared<ZLVFakeMainQueue>();
  std::shared_ptr<ZLVFakeLog> log = std::make_shared<ZLVFakeLog>();           ///< The log.
  std::shared_ptr<ZLVFakeDevice> device = std::make_shared<ZLVFakeDevice>();  ///< The device.
  /// The user interface.
  std::shared_ptr<ZLVFakeUserInterface> ui = std::make_shared<ZLVFakeUserInterface>();
  /// What was asked of the session, in order: of the merchant's server and of the analytics
  /// service.
  struct Session {
    std::vector<ZLVFakeTask> merchant;   ///< Calls.
    std::vector<ZLVFakeTask> analytics;  ///< Uploads of usage events; nobody waits for them.
  };
  Session session;  ///< What waits for an answer.

  /// `analyticsRootURL` counts for the first of the process.
  explicit ZLVFakePlatform(
      std::optional<std::string> analyticsRootURL = "https://analytics.test/") {
    if (current() != nullptr) throw ZLVProgrammingFault("ZLVFakePlatform: there is one already");
    if (!ZLVPlatform::isInstalled()) install(std::move(analyticsRootURL));
    current() = this;
  }
  ZLVFakePlatform(const ZLVFakePlatform&) = delete;
  ZLVFakePlatform& operator=(const ZLVFakePlatform&) = delete;
  virtual ~ZLVFakePlatform() {
    const auto forget = [this] {
      // What is let go of answers by way of the queue, which runs nothing any more.
      while (!queue->blocks.empty() || !session.merchant.empty() || !session.analytics.empty()) {
        std::exchange(session, {});
        std::exchange(queue->blocks, {});
      }
    };
    forget();
    ui->root.reset();
    forget();
    auto& vendor = ZLVVendor::shared();
    vendor.setMerchantSeverURL({});
    vendor.setMerchantId({});
    vendor.setCallbackUrl({});
    vendor.setClientKey({});
    vendor.setIsLoggingEnabled(false);
    current() = nullptr;
  }

 protected:
  /// A request has come in; the default keeps it for the test to answer.
  virtual void receive(ZLVFakeTask task) {
    const bool isUpload = task.request.URL->absoluteString().ends_with("/1/upload");
    (isUpload ? session.analytics : session.merchant).push_back(std::move(task));
  }

 private:
  static ZLVFakePlatform*& current() {
    static ZLVFakePlatform* platform = nullptr;
    return platform;
  }

  static void install(std::optional<std::string> analyticsRootURL) {
    struct Queue : ZLVMainQueue {
      void dispatch(ZLVOnce<void()> block) override {
        if (current() != nullptr) current()->queue->dispatch(std::move(block));
      }
    };
    struct Log : ZLVSystemLog {
      void log(std::string_view line) override {
        if (current() != nullptr) current()->log->log(line);
      }
    };
    struct UserInterface : ZLVUserInterface {
      std::shared_ptr<ZLVViewController> keyWindowRootViewController() override {
        return current()->ui->keyWindowRootViewController();
      }
      std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override {
        return current()->ui->makeBrowser(url);
      }
      bool openURL(const ZLVURL& url) override { return current()->ui->openURL(url); }
      void prepareBrowser() override { current()->ui->prepareBrowser(); }
    };
    struct Network : ZLVURLSession {
      void dataTask(ZLVURLRequest request, CompletionHandler handler) override {
        if (current() != nullptr) current()->receive({std::move(request), std::move(handler)});
      }
    };
    struct Device : ZLVDevice {
      static const ZLVDevice& now() { return *current()->device; }
      std::optional<std::string> identifierForVendor() const override {
        return now().identifierForVendor();
      }
      std::optional<ZLVSize> mainScreenSize() const override { return now().mainScreenSize(); }
      std::optional<std::string> bundleDisplayName() const override {
        return now().bundleDisplayName();
      }
      std::optional<std::string> bundleShortVersion() const override {
        return now().bundleShortVersion();
      }
      std::vector<std::string> preferredLocalizations() const override {
        return now().preferredLocalizations();
      }
      std::vector<std::string> preferredLanguages() const override {
        return now().preferredLanguages();
      }
      std::optional<std::string> machine() const override { return now().machine(); }
      std::optional<std::string> name() const override { return now().name(); }
      std::optional<std::string> systemVersion() const override { return now().systemVersion(); }
      std::optional<Threads> threads() const override { return now().threads(); }
    };
    ZLVPlatform::install({.makeURLSession = [] { return std::make_unique<Network>(); },
                          .mainQueue = std::make_shared<Queue>(),
                          .systemLog = std::make_shared<Log>(),
                          .device = std::make_shared<ZLVDeviceWrapper>(std::make_shared<Device>()),
                          .userInterface = std::make_shared<UserInterface>(),
                          .analyticsRootURL = std::move(analyticsRootURL)});
  }
};
