// What showing a page costs: the time from the presentation until the page has been painted, and
// the memory of the host and of the processes that draw the page.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtk/gtk.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Core/Checkout/ZLVWebViewController.h>
#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>

#include "Tests/Support/RawServer.h"

namespace {

using Clock = std::chrono::steady_clock;

/// The page tells when its first frame is out: the callback after the one before it was painted.
constexpr const char* page =
    "<!doctype html><meta name=viewport content='width=device-width'><title>Pay</title>"
    "<h1>Pay Rp 50.000</h1><p>to Corner Coffee</p><button>Confirm</button>"
    "<script>requestAnimationFrame(() => requestAnimationFrame(() => fetch('/painted')))</script>";

/// Memory of a process and all that it has started, with shared pages counted in proportion.
double megabytes(pid_t process) {
  const auto folder = "/proc/" + std::to_string(process);
  double kilobytes = 0;
  std::ifstream rollup(folder + "/smaps_rollup");
  for (std::string word; rollup >> word;) {
    if (word == "Pss:") rollup >> kilobytes;
  }
  double sum = kilobytes / 1024;
  for (const auto& task : std::filesystem::directory_iterator(folder + "/task")) {
    std::ifstream children(task.path() / "children");
    for (pid_t child = 0; children >> child;) sum += megabytes(child);
  }
  return sum;
}

void runUntil(const std::function<bool()>& condition) {
  const auto tick = g_timeout_add(1, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, {});
  while (!condition()) g_main_context_iteration(nullptr, TRUE);
  g_source_remove(tick);
}

void measure(GtkWindow* window, int rounds) {
  std::atomic<Clock::time_point> painted{};
  const RawServer server([&](const std::string& request) {
    const bool isPage = !request.starts_with("GET /painted");
    if (!isPage) painted = Clock::now();
    return RawServer::Reply{
        RawServer::response(isPage ? page : "", "200 OK", "Content-Type: text/html\r\n")};
  });
  const auto viewController = ZLVGTKPlatform::viewControllerForWindow(window);
  std::printf("host alone: %.0f MB\n", megabytes(getpid()));

  std::vector<double> milliseconds;
  double shown = 0;
  for (int round = 0; round < rounds; ++round) {
    painted = Clock::time_point{};
    bool isOver = false;
    const auto start = Clock::now();
    viewController->presentViewController(
        ZLVWebViewController::initWithURL(*ZLVURL::URLWithString(server.url()),
                                          [&isOver] { isOver = true; }),
        true);
    runUntil([&] { return painted.load() != Clock::time_point{}; });
    const std::chrono::duration<double, std::milli> taken = painted.load() - start;
    milliseconds.push_back(taken.count());
    shown = megabytes(getpid());
    viewController->dismissViewControllerAnimated(true);
    runUntil([&] { return isOver; });
  }
  std::printf("presentation to first painted page: %.0f ms the first time", milliseconds.front());
  std::sort(milliseconds.begin() + 1, milliseconds.end());
  std::printf(", then %.0f ms (median of %d)\n", milliseconds[(milliseconds.size() + 1) / 2],
              rounds - 1);
  std::printf("host and web processes with the page shown: %.0f MB\n", shown);
}

}  // namespace

/// browser [ROUNDS]
int main(int argc, char** argv) {
  int rounds = argc > 1 ? std::max(2, std::atoi(argv[1])) : 11;
  GtkApplication* application =
      gtk_application_new("com.example.BrowserCost", G_APPLICATION_NON_UNIQUE);
  ZLVPlatform::install(ZLVGTKPlatform::platformWithApplication(
      application, {.applicationName = "BrowserCost", .applicationVersion = "1"}));
  g_signal_connect(application, "activate", G_CALLBACK(+[](GtkApplication* self, const int* count) {
                     GtkWidget* window = gtk_application_window_new(self);
                     gtk_window_set_default_size(GTK_WINDOW(window), 360, 640);
                     gtk_window_set_child(GTK_WINDOW(window), gtk_button_new_with_label("Pay"));
                     gtk_window_present(GTK_WINDOW(window));
                     runUntil([&] { return gtk_widget_get_mapped(window) != FALSE; });
                     measure(GTK_WINDOW(window), *count);
                     g_application_quit(G_APPLICATION(self));
                   }),
                   &rounds);
  const int status = g_application_run(G_APPLICATION(application), 0, nullptr);
  g_object_unref(application);
  return status;
}
