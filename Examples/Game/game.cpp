// A game without an event loop and without windows that the library knows: it draws sixty frames a
// second, here in text, serves the library once a frame, and hands the wallet's page over itself.
//
//     game SERVER
//
// Each line on standard input is a URL that the game is opened with; an empty line is the Escape
// key.

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include <poll.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/EventLoops/ZLVFrameMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

namespace {

/// What is drawn: the coins, a message, and over both the page that is handed over, if there is
/// one.
struct Scene {
  int coins = 0;
  std::string message = "linking";
  std::string page = {};
  ZLVOnce<void()> closed = {};
  bool isOver = false;

  [[nodiscard]] std::string text() const {
    // A game with pictures draws a code for the telephone's camera.
    if (!page.empty()) return "[ Confirm on your telephone: " + page + "   Esc: not now ]";
    return "coins " + std::to_string(coins) + "   " + message;
  }
};

const auto queue = std::make_shared<ZLVFrameMainQueue>();
Scene scene;

/// A page of the wallet is a picture over the game.
struct Page final : ZLVBrowser {
  explicit Page(std::string address) : url(std::move(address)) {}
  ~Page() override { hide(false); }
  void setDismissButtonStyle(ZLVDismissButtonStyle) override {}
  void show(ZLVViewController&, bool, ZLVOnce<void()> closed) override {
    scene.page = url;
    scene.closed = std::move(closed);
  }
  void hide(bool) override {
    if (scene.page == url) scene.page.clear();
  }
  const std::string url;
};

struct Screen final : ZLVUserInterface {
  std::shared_ptr<ZLVViewController> keyWindowRootViewController() override { return root; }
  std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override {
    return std::make_unique<Page>(url.absoluteString());
  }
  bool openURL(const ZLVURL&) override { return false; }
  const std::shared_ptr<ZLVViewController> root = std::make_shared<ZLVViewController>();
};

void buyCoins() {
  ZLVClient::linkAccountWithPaymentType(
      "zolva", ZLVPartnerDetails::initWithPhoneNumber("7700900123", "44"),
      ZLVPlatform::installed().userInterface->keyWindowRootViewController(),
      [](const auto& link, const auto& error) {
        if (error) {
          scene.message = error->localizedDescription();
          scene.isOver = true;
          return;
        }
        scene.message = "asking what became of it";
        ZLVClient::enquireAccountWithAccountID(
            link->accountID().description(), [](const auto& account, const auto& failure) {
              const bool isLinked = !failure && account->accountStatus().text() == "ENABLED";
              scene.coins += isLinked ? 100 : 0;  // a present for the link
              scene.message = isLinked ? "linked" : "not linked";
              scene.isOver = true;
            });
      });
}

void readInput() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  if (poll(&input, 1, 0) != 1) return;
  char bytes[1024];
  const auto size = read(STDIN_FILENO, bytes, sizeof bytes);
  if (size <= 0) return;
  const std::string line(bytes, static_cast<std::size_t>(size) - 1);
  if (line.empty()) return std::move(scene.closed)();
  if (const auto url = ZLVURL::URLWithString(line)) ZLVClient::handleCallbackUrl(*url);
}

void frame() {
  static std::string drawn;
  readInput();
  queue->drain();
  if (const auto text = scene.text(); text != drawn) std::puts((drawn = text).c_str());
  std::fflush(stdout);
  std::this_thread::sleep_for(std::chrono::milliseconds(16));  // stands for waiting for the screen
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: game SERVER\n");
    return 2;
  }
  auto platform = ZLVLinuxPlatform::platformWithOptions(
      {.applicationName = "Coins",
       .applicationVersion = "2.1",
       .analyticsRootURL = std::string(argv[1]) + '/'});  // the sandbox takes the usage events, too
  platform.mainQueue = queue;
  platform.userInterface = std::make_shared<Screen>();
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL(argv[1], "M-1001", "coins://done", false);

  buyCoins();
  while (!scene.isOver) frame();
  // The last usage events are still on the way; the game goes on drawing.
  return ZLVActivity::runUntilIdle(std::chrono::seconds(2), [](auto) { frame(); }) ? 0 : 1;
}
