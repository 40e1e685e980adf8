#pragma once

// A platform whose every port is in the test's hands: the main queue runs when it is told to, the
// session answers what the test says, the browser only remembers what it was asked.

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h"

struct FakeMainQueue : ZLVMainQueue {
  void dispatch(ZLVOnce<void()> block) override {
    if (target != nullptr) return target->dispatch(std::move(block));
    blocks.push_back(std::move(block));
  }
  void drain() {
    while (!blocks.empty()) {
      auto block = std::move(blocks.front());
      blocks.pop_front();
      std::move(block)();
    }
  }
  std::deque<ZLVOnce<void()>> blocks;
  std::shared_ptr<ZLVMainQueue> target;  // in place of this one
};

struct FakeLog : ZLVSystemLog {
  void log(std::string_view line) override { lines.emplace_back(line); }
  std::vector<std::string> lines;
};

struct FakeDevice : ZLVDevice {
  std::optional<ZLVSize> screen = ZLVSize{390, 844};
  std::optional<std::string> version = "2.5", model = "model9,9", deviceName = "Ad\xE9's phone",
                             system = "17.0";
  std::vector<std::string> localizations, languages;
  std::optional<Threads> usage = Threads{};

  std::optional<std::string> identifierForVendor() const override { return std::nullopt; }
  std::optional<ZLVSize> mainScreenSize() const override { return screen; }
  std::optional<std::string> bundleDisplayName() const override { return "Corner Coffee"; }
  std::optional<std::string> bundleShortVersion() const override { return version; }
  std::vector<std::string> preferredLocalizations() const override { return localizations; }
  std::vector<std::string> preferredLanguages() const override { return languages; }
  std::optional<std::string> machine() const override { return model; }
  std::optional<std::string> name() const override { return deviceName; }
  std::optional<std::string> systemVersion() const override { return system; }
  std::optional<Threads> threads() const override { return usage; }
};

/// What happened, in order: events, browser steps and completions.
using Journal = std::vector<std::string>;

struct FakeBrowser : ZLVBrowser {
  FakeBrowser(std::string page, Journal& notes) : url(std::move(page)), journal(notes) {}
  void setDismissButtonStyle(ZLVDismissButtonStyle value) override { style = value; }
  void show(ZLVViewController&, bool, ZLVOnce<void()> whenClosed) override {
    journal.push_back("show " + url);
    closed = std::move(whenClosed);
  }
  void hide(bool) override { journal.push_back("hide " + url); }

  std::string url;
  Journal& journal;
  ZLVOnce<void()> closed;
  std::optional<ZLVDismissButtonStyle> style;
};

struct FakeUserInterface : ZLVUserInterface {
  std::shared_ptr<ZLVViewController> keyWindowRootViewController() override { return root; }
  std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override {
    auto made = std::make_unique<FakeBrowser>(url.absoluteString(), journal);
    browser = made.get();
    return made;
  }
  bool openURL(const ZLVURL&) override { return false; }

  std::shared_ptr<ZLVViewController> root;
  FakeBrowser* browser = nullptr;  // the last one made
  Journal journal;
};

/// What the session was asked to send; the test answers it.
struct FakeTask {
  ZLVURLRequest request;
  ZLVURLSession::CompletionHandler handler;

  void answer(int status, std::string body) {
    std::move(handler)({.data = std::move(body), .statusCode = status, .error = {}});
  }
};
struct FakeSession {
  std::vector<FakeTask> merchant;   // to the merchant server
  std::vector<FakeTask> analytics;  // to the analytics service
};

/// The fakes as the one installed platform of the process.
struct FakePlatform {
  std::shared_ptr<FakeMainQueue> queue = std::make_shared<FakeMainQueue>();
  std::shared_ptr<FakeLog> log = std::make_shared<FakeLog>();
  std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
  std::shared_ptr<FakeUserInterface> ui = std::make_shared<FakeUserInterface>();
  FakeSession session;

  explicit FakePlatform(std::optional<std::string> root = "https://analytics.test/") {
    struct Session : ZLVURLSession {
      explicit Session(FakePlatform& owner) : platform(owner) {}
      void dataTask(ZLVURLRequest request, CompletionHandler handler) override {
        auto& [merchant, analytics] = platform.session;
        const bool isUpload = request.URL->absoluteString().ends_with("/1/upload");
        if (isUpload) platform.recordEvent(request);
        (isUpload ? analytics : merchant).push_back({std::move(request), std::move(handler)});
      }
      FakePlatform& platform;
    };
    ZLVPlatform::install({.makeURLSession = [this] { return std::make_unique<Session>(*this); },
                          .mainQueue = queue,
                          .systemLog = log,
                          .device = std::make_shared<ZLVDeviceWrapper>(device),
                          .userInterface = ui,
                          .analyticsRootURL = std::move(root)});
  }

  static void configure() {
    ZLVClient::initWithMerchantServerURL("https://shop.test/pay/", "M1", "app://done", false);
  }

  /// The records of an upload.
  static ZLVArray recordsOf(const ZLVURLRequest& upload) {
    const auto body =
        std::get<ZLVValue>(ZLVJSONSerialization::JSONObjectWithData(*upload.HTTPBody));
    return *(*body.dictionary())["d"].array();
  }
  [[nodiscard]] ZLVArray lastUpload() const { return recordsOf(session.analytics.back().request); }

 private:
  void recordEvent(const ZLVURLRequest& upload) {
    const auto records = recordsOf(upload);
    const auto& name = (*records[0].dictionary())["evtName"];
    if (!name.isAbsent()) ui->journal.push_back(name.description());
  }
};
