// The web engine that a hint starts before there is a page for it.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKUserInterface.h>

#include "Tests/GTK/Host.h"

namespace {

/// Whether `process` or one below it has a thread by which the engine's processes receive: a page's
/// process that dies before takes its host along, as the engine has it.
bool receives(const std::string& process) {
  std::error_code gone;
  for (const auto& task : std::filesystem::directory_iterator("/proc/" + process + "/task", gone)) {
    std::string name;
    std::getline(std::ifstream(task.path() / "comm"), name);
    if (name == "ReceiveQueue") return true;
    std::ifstream children(task.path() / "children");
    for (std::string child; children >> child;) {
      if (receives(child)) return true;
    }
  }
  return false;
}

/// A user interface beside the installed one, whose engine is at hand.
class Engine : public testing::Test {
 protected:
  void startByHint() {
    // One, however often.
    for (int hint = 0; hint < 1000; ++hint) ui_.prepareBrowser();
    EXPECT_EQ(childProcesses(), 0U);
    ASSERT_TRUE(waitFor([] { return childProcesses() > 0; }));
  }
  [[nodiscard]] std::unique_ptr<ZLVBrowser> browse(const RawServer& server) {
    auto browser = ui_.makeBrowser(*ZLVURL::URLWithString(server.url()));
    browser->show(*host_.viewController(), false, [] { ADD_FAILURE() << "closed"; });
    return browser;
  }
  /// The one source of the engine's: the end of its patience. Null when nothing is under way.
  GSource* end() { return g_main_context_find_source_by_user_data(nullptr, engine_.get()); }

  Host host_;
  std::shared_ptr<ZLVWebEngine> engine_ = std::make_shared<ZLVWebEngine>(host_.application);
  ZLVGTKUserInterface ui_{
      std::shared_ptr<const ZLVGTKBrowser::Environment>(new ZLVGTKBrowser::Environment{
          ZLVWeakGObject<GtkApplication>(host_.application), ZLVPlatform::installed().mainQueue,
          std::make_shared<ZLVCertificateAuthorities>(std::nullopt), engine_}),
      {}};
};

TEST_F(Engine, ServesTheNextPageAndNoOther) {
  const RawServer server(pages("<p>page"));
  host_.run([&] {
    startByHint();
    const auto browser = browse(server);
    EXPECT_EQ(end(), nullptr);
    WebKitWebView* const first = host_.webView();
    host_.clickElement("p");
    EXPECT_EQ(webkit_web_view_can_go_back(first), FALSE);

    // Nothing of the first is in the second, nor of the one that is started for a third.
    ui_.prepareBrowser();
    const auto second = engine_->take();
    EXPECT_NE(second.get(), first);
    EXPECT_NE(webkit_web_view_get_network_session(second.get()),
              webkit_web_view_get_network_session(first));
    EXPECT_NE(webkit_web_view_get_context(second.get()), webkit_web_view_get_context(first));
    browser->hide(false);
  });
  // Had the page had another engine, the first would still wait for one.
  EXPECT_TRUE(waitFor([] { return childProcesses() == 0; }));
}

TEST_F(Engine, IsLetGoOfWhenNoPageComes) {
  ui_.prepareBrowser();
  EXPECT_EQ(end(), nullptr);  // no application runs, no window could show a page
  host_.run([&] {
    // The engine would end this process for want of descriptors.
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit few{.rlim_cur = static_cast<rlim_t>(dup(STDOUT_FILENO)) + 20,
                     .rlim_max = limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    ui_.prepareBrowser();
    EXPECT_TRUE(waitFor([&] { return end() == nullptr; }));
    EXPECT_EQ(childProcesses(), 0U);
    setrlimit(RLIMIT_NOFILE, &limit);

    startByHint();
    const auto now = g_get_monotonic_time();
    const auto due = g_source_get_ready_time(end());
    EXPECT_LE(due, now + 60 * G_USEC_PER_SEC);
    ui_.prepareBrowser();
    EXPECT_GE(g_source_get_ready_time(end()), now + 60 * G_USEC_PER_SEC);
    g_source_set_ready_time(end(), 0);
    EXPECT_TRUE(waitFor([] { return childProcesses() == 0; }));
    EXPECT_EQ(end(), nullptr);
    startByHint();
  });
  ui_.prepareBrowser();
  EXPECT_EQ(end(), nullptr);  // the application has quit
  EXPECT_TRUE(waitFor([] { return childProcesses() == 0; }));
}

TEST_F(Engine, MayCrashBeforeItIsUsed) {
  const RawServer server(pages("<p>page"));
  host_.run([&] {
    startByHint();
    const auto hasStarted = [](pid_t child) { return receives(std::to_string(child)); };
    ASSERT_TRUE(waitFor([&] {
      const auto all = childProcessIDs();
      return std::ranges::count_if(all, hasStarted) == 2;  // the network's and the page's
    }));
    // The page's alone: it would have the engine start another for the network.
    auto killed = childProcessIDs();
    std::erase_if(killed, [](pid_t child) {
      std::string name;
      std::getline(std::ifstream("/proc/" + std::to_string(child) + "/comm"), name);
      return name.starts_with("WebKitNetwork");
    });
    ASSERT_FALSE(killed.empty());
    for (const auto process : killed) kill(process, SIGKILL);
    ASSERT_TRUE(waitFor([&] {
      const auto alive = childProcessIDs();
      return std::ranges::find_first_of(alive, killed) == alive.end();
    }));
    const auto browser = browse(server);
    host_.clickElement("p");
    browser->hide(false);
    EXPECT_TRUE(waitFor([] { return childProcesses() == 0; }));
    startByHint();
  });
}

}  // namespace
