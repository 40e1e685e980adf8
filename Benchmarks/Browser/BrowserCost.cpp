// What a buyer waits for once the server has answered that there is a page to show: the time until
// the page is on the screen, and what showing it costs in memory.
//
// The library charges as a host does; the server takes as long for its answer as a round trip of
// 100 ms makes it. What counts begins when the answer is sent and ends when a pixel of the screen
// has the page's colour.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <gtk/gtk.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "Tests/Support/RawServer.h"

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr auto roundTrip = std::chrono::milliseconds(100);
/// Of a first call: TCP, TLS and the request itself.
constexpr int firstRoundTrips = 3;

constexpr const char* page =
    "<!doctype html><meta name=viewport content='width=device-width'><title>Pay</title>"
    "<body style='background: #ff0080'>"
    "<h1>Pay Rp 50.000</h1><p>to Corner Coffee</p><button>Confirm</button>";

/// Red, and not green as any grey is; the page may still be half transparent.
bool isOfPage(unsigned long pixel) {
  return static_cast<int>(pixel >> 16 & 0xff) - static_cast<int>(pixel >> 8 & 0xff) > 128;
}

/// Looks at the screen, as often as it can without being in the way.
class Eye {
 public:
  Eye() : thread_([this] { watch(); }) {}
  Eye(const Eye&) = delete;
  Eye& operator=(const Eye&) = delete;
  ~Eye() {
    isOver_ = true;
    thread_.join();
  }

  [[nodiscard]] bool seesPage() const { return seen_.load() != Clock::time_point{}; }
  /// Since when.
  [[nodiscard]] Clock::time_point seen() const { return seen_; }

 private:
  void watch() {
    Display* const display = XOpenDisplay(nullptr);
    while (!isOver_) {
      // Inside the window, which has no manager that would move it, and below the page's text.
      XImage* const image =
          XGetImage(display, DefaultRootWindow(display), 180, 500, 1, 1, AllPlanes, ZPixmap);
      const bool isThere = isOfPage(XGetPixel(image, 0, 0));
      XDestroyImage(image);
      if (!isThere) {
        seen_ = Clock::time_point{};
      } else if (!seesPage()) {
        seen_ = Clock::now();
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    XCloseDisplay(display);
  }

  std::atomic<bool> isOver_ = false;
  std::atomic<Clock::time_point> seen_{};
  std::thread thread_;
};

/// Memory of a process and all that it has started, with shared pages counted in proportion.
struct Memory {
  double megabytes = 0;
  int processes = 0;

  explicit Memory(pid_t process = getpid()) { add(process); }

  void add(pid_t process) {
    const auto folder = "/proc/" + std::to_string(process);
    double kilobytes = 0;
    std::ifstream rollup(folder + "/smaps_rollup");
    for (std::string word; rollup >> word;) {
      if (word == "Pss:") rollup >> kilobytes;
    }
    megabytes += kilobytes / 1024;
    ++processes;
    for (const auto& task : std::filesystem::directory_iterator(folder + "/task")) {
      std::ifstream children(task.path() / "children");
      for (pid_t child = 0; children >> child;) add(child);
    }
  }
};

/// Returns the longest turn of the main loop meanwhile.
Milliseconds runUntil(const std::function<bool()>& condition) {
  const auto tick = g_timeout_add(1, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, {});
  Milliseconds longest{0};
  while (!condition()) {
    const auto start = Clock::now();
    g_main_context_iteration(nullptr, TRUE);
    longest = std::max<Milliseconds>(longest, Clock::now() - start);
  }
  g_source_remove(tick);
  return longest;
}

Milliseconds runFor(std::chrono::milliseconds time) {
  return runUntil([end = Clock::now() + time] { return Clock::now() >= end; });
}

/// The user interface without its hints.
struct Unhinted : ZLVUserInterface {
  explicit Unhinted(std::shared_ptr<ZLVUserInterface> whole) : rest(std::move(whole)) {}
  std::shared_ptr<ZLVViewController> keyWindowRootViewController() override {
    return rest->keyWindowRootViewController();
  }
  std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override {
    return rest->makeBrowser(url);
  }
  bool openURL(const ZLVURL& url) override { return rest->openURL(url); }

  std::shared_ptr<ZLVUserInterface> rest;
};

class Shop {
 public:
  explicit Shop(GtkWindow* window)
      : viewController_(ZLVGTKPlatform::viewControllerForWindow(window)) {
    ZLVClient::initWithMerchantServerURL(server_.url(), "M-1", "shop://done", false);
    // A buyer has looked at the shop for a while.
    runFor(std::chrono::seconds(2));
  }

  struct Times {
    /// From the answer to the page on the screen.
    Milliseconds shown;
    /// The longest turn of the main loop while the call was on its way.
    Milliseconds longestTurn;
  };

  Times charge() {
    bool isOver = false;
    isAnswered_ = false;
    ZLVClient::createTransactionWithPaymentType(
        "zolva", viewController_, ZLVZolvaDetails::initWithAccountID("acc", "tok"),
        ZLVTransactionDetails::initWithGrossAmount(50000, "O-1", "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("15550123", "Ada", "L", "ada@example.com"),
        std::nullopt, [&isOver](const auto&, const auto&) { isOver = true; });
    const auto longest = runUntil([this] { return isAnswered_.load(); });
    runUntil([this] { return eye_.seesPage(); });
    const Milliseconds shown = eye_.seen() - answered_.load();
    shown_ = Memory();
    viewController_->dismissViewControllerAnimated(true);
    runUntil([&] { return isOver && !eye_.seesPage(); });
    runFor(std::chrono::milliseconds(500));
    return {shown, longest};
  }

  [[nodiscard]] Memory shown() const { return shown_; }

 private:
  RawServer::Reply serve(const std::string& request) {
    if (request.starts_with("POST /v2/charge")) {
      std::this_thread::sleep_for(roundTrip * std::exchange(roundTrips_, 1));
      answered_ = Clock::now();
      isAnswered_ = true;
      return {RawServer::response(R"({"status_code":"201","actions":[{"name":"user-verification",)"
                                  R"("method":"GET","url":")" +
                                  server_.url("/page") + "\"}]}")};
    }
    const bool isPage = request.starts_with("GET /page");
    return {RawServer::response(isPage ? page : "{}", "200 OK", "Content-Type: text/html\r\n")};
  }

  int roundTrips_ = firstRoundTrips;
  std::atomic<Clock::time_point> answered_{};
  std::atomic<bool> isAnswered_ = false;
  Memory shown_;
  RawServer server_{[this](const std::string& request) { return serve(request); }};
  std::shared_ptr<ZLVViewController> viewController_;
  Eye eye_;
};

void printMemory(const char* when, const Memory& memory) {
  std::printf("| %s | %.0f MB in %d processes |\n", when, memory.megabytes, memory.processes);
}

/// What a hint keeps, and for how long.
void weigh(GtkWindow* window) {
  Shop shop(window);
  const Memory alone;
  std::printf("\n| memory, shared pages in proportion | |\n|---|---|\n");
  printMemory("host before any page", alone);
  ZLVPlatform::installed().userInterface->prepareBrowser();
  runFor(std::chrono::seconds(2));
  printMemory("a hint was given", Memory());
  runFor(std::chrono::seconds(60));
  printMemory("no page has come within a minute", Memory());
  shop.charge();
  printMemory("a page is shown", shop.shown());
}

using Body = std::function<void(GtkWindow* window)>;

/// Runs `body` in a host with a window.
int runHost(bool isHinted, Body body) {
  GtkApplication* const application =
      gtk_application_new("com.example.BrowserCost", G_APPLICATION_NON_UNIQUE);
  auto platform = ZLVGTKPlatform::platformWithApplication(
      application, {.applicationName = "BrowserCost", .applicationVersion = "1"});
  platform.analyticsRootURL = "http://127.0.0.1:9/";
  if (!isHinted) platform.userInterface = std::make_shared<Unhinted>(platform.userInterface);
  ZLVPlatform::install(std::move(platform));
  g_signal_connect(application, "activate", G_CALLBACK(+[](GtkApplication* self, Body* call) {
                     GtkWidget* window = gtk_application_window_new(self);
                     gtk_window_set_default_size(GTK_WINDOW(window), 360, 640);
                     gtk_window_set_child(GTK_WINDOW(window), gtk_button_new_with_label("Pay"));
                     gtk_window_present(GTK_WINDOW(window));
                     (*call)(GTK_WINDOW(window));
                     g_application_quit(G_APPLICATION(self));
                   }),
                   &body);
  const int status = g_application_run(G_APPLICATION(application), 0, nullptr);
  g_object_unref(application);
  return status;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? 0 : values[values.size() / 2];
}

struct Samples {
  std::vector<double> first, later, longestTurns;

  /// Those of one more process.
  void take(const std::string& command) {
    FILE* const process = popen(command.c_str(), "r");
    double shown = 0;
    double turn = 0;
    for (bool isFirst = true; std::fscanf(process, "%lf %lf", &shown, &turn) == 2;
         isFirst = false) {
      (isFirst ? first : later).push_back(shown);
      longestTurns.push_back(turn);
    }
    pclose(process);
  }
};

/// `processes` one after the other, each of which shows some pages.
void compare(const std::string& self, int processes) {
  std::printf(
      "| answer in hand → page on the screen | no hint | hint | reach |\n|---|---|---|---|\n");
  Samples cold[2];
  Samples warm[2];
  for (const int hint : {0, 1}) {
    const auto child = self + (hint == 0 ? " --unhinted 6" : " --hinted 6");
    const std::string folder = std::string(std::getenv("HOME")) + "/shaders" + std::to_string(hint);
    cold[hint].take("XDG_CACHE_HOME=" + folder + " " + child);
    // The shader cache is full now.
    for (int i = 0; i < processes; ++i) warm[hint].take("XDG_CACHE_HOME=" + folder + " " + child);
  }
  const auto row = [](const char* name, const auto& of, const char* reach) {
    std::printf("| %s | %.0f ms | %.0f ms | %s |\n", name, of(0), of(1), reach);
  };
  row(
      "the first of this user: nothing in the driver's shader cache",
      [&](int hint) { return median(cold[hint].first); }, "");
  row(
      "the first of a process", [&](int hint) { return median(warm[hint].first); }, "≤ 500 ms");
  row(
      "later ones", [&](int hint) { return median(warm[hint].later); }, "≤ 300 ms");
  row(
      "longest turn of the main loop while the call is on its way: median",
      [&](int hint) { return median(warm[hint].longestTurns); }, "");
  std::fflush(stdout);
}

}  // namespace

/// browser [PROCESSES]
/// browser --hinted|--unhinted CHARGES
/// browser --memory
int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "5";
  if (mode == "--memory") return runHost(true, weigh);
  if (mode.starts_with("--")) {
    const int charges = argc > 2 ? std::atoi(argv[2]) : 1;
    return runHost(mode == "--hinted", [charges](GtkWindow* window) {
      Shop shop(window);
      for (int i = 0; i < charges; ++i) {
        const auto times = shop.charge();
        std::printf("%.1f %.1f\n", times.shown.count(), times.longestTurn.count());
      }
    });
  }
  const std::string self = argv[0];
  compare(self, std::atoi(mode.c_str()));
  return std::system((self + " --memory").c_str());
}
