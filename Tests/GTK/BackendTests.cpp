// The ports that have no window: the main queue, the device's facts, the sandbox of the web engine.

#include <clocale>
#include <filesystem>
#include <fstream>
#include <future>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKMainQueue.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebSandbox.h>

#include "Tests/GTK/Host.h"

namespace {

TEST(MainQueue, RunsBlocksLaterInOrderOnTheMainThread) {
  ZLVGTKMainQueue queue;
  std::vector<int> order;
  const auto mainThread = std::this_thread::get_id();
  const auto add = [&](int number) {
    queue.dispatch([&, number] {
      EXPECT_EQ(std::this_thread::get_id(), mainThread);
      order.push_back(number);
    });
  };
  add(1);
  queue.dispatch([&] {
    add(4);
    EXPECT_EQ(order.size(), 1U);
    // A block that runs a loop of its own, as a dialog does, holds no other up.
    EXPECT_TRUE(waitFor([&] { return order.size() == 4; }));
  });
  std::thread([&] {
    add(2);
    add(3);
  }).join();
  EXPECT_TRUE(order.empty());
  ASSERT_TRUE(waitFor([&] { return order.size() == 4; }));
  EXPECT_EQ(order, (std::vector{1, 2, 3, 4}));
}

TEST(MainQueue, PassesExceptionsOnAndDestroysWhatNeverRan) {
  std::string caught;
  const auto held = std::make_shared<int>();
  {
    ZLVGTKMainQueue queue([&](std::exception_ptr exception) {
      try {
        std::rethrow_exception(std::move(exception));
      } catch (const std::exception& error) {
        caught += error.what();
      }
    });
    for (const char* text : {"a", "b"}) {
      queue.dispatch([text] { throw std::runtime_error(text); });
    }
    ASSERT_TRUE(waitFor([&] { return caught == "ab"; }));
    queue.dispatch([held] { FAIL(); });
  }
  EXPECT_EQ(held.use_count(), 1);
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
  }
  EXPECT_DEATH(
      {
        ZLVGTKMainQueue queue;
        queue.dispatch([] { throw std::runtime_error("nobody catches this"); });
        waitFor([] { return false; });
      },
      "nobody catches this");
}

TEST(MainQueue, RunsUntilNothingIsUnderWay) {
  using std::chrono::milliseconds;
  const Host host;
  EXPECT_TRUE(ZLVGTKPlatform::runUntilIdle(milliseconds(0)));
  ZLVActivity activity;
  EXPECT_FALSE(ZLVGTKPlatform::runUntilIdle(milliseconds(1)));
  // The last one ends on another thread while this one sleeps in the loop.
  std::promise<void> isRunning;
  std::thread other([&] {
    isRunning.get_future().wait();
    activity.end();
  });
  ZLVPlatform::installed().mainQueue->dispatch([&] { isRunning.set_value(); });
  EXPECT_TRUE(ZLVGTKPlatform::runUntilIdle(milliseconds::max()));
  other.join();
}

TEST(Device, KnowsScreenAndLanguages) {
  g_setenv("LANGUAGE", "de_CH:fr", TRUE);
  Host host;
  const auto& device = *ZLVPlatform::installed().device;
  EXPECT_EQ(device.mainScreenSize(), std::nullopt);
  host.run([&] {
    std::thread([&] { EXPECT_EQ(device.mainScreenSize(), (ZLVSize{1280, 800})); }).join();
    EXPECT_EQ(device.preferredLanguages(), (std::vector<std::string>{"de_CH", "de", "fr"}));
    EXPECT_EQ(device.bundleShortVersion(), "1");
  });
}

TEST(Translations, AreFoundByLanguage) {
  // What the bar says, and the beginning of what an error says.
  const std::string english = "Could not connect to 127.0.0.1.";
  const std::tuple<const char*, const char*, std::string> texts[] = {
      {"ar_EG", "إغلاق", "تعذّر الاتصال بـ \u2066127.0.0.1\u2069."},
      {"de_AT", "Schließen", "Zu 127.0.0.1 konnte keine Verbindung hergestellt werden."},
      {"es_MX", "Cerrar", "No se pudo conectar con 127.0.0.1."},
      {"fr_CA", "Fermer", "Impossible de se connecter à 127.0.0.1."},
      {"ja_JP", "閉じる", "127.0.0.1 に接続できませんでした。"},
      {"pt_BR", "Fechar", "Não foi possível ligar a 127.0.0.1."},
      {"zh_CN", "关闭", "无法连接到 127.0.0.1。"},
      {"xx", "Close", english}};
  Host host;
  ZLVURLRequest request;
  request.URL = ZLVURL::URLWithString("http://127.0.0.1:1/");
  request.HTTPMethod = "GET";
  std::promise<ZLVError> failed;
  const auto session = ZLVPlatform::installed().makeURLSession();
  session->dataTask(std::move(request),
                    [&](const ZLVURLAnswer& answer) { failed.set_value(answer.error.value()); });
  const auto error = failed.get_future().get();
  for (const auto& [language, close, refused] : texts) {
    g_setenv("LANGUAGE", language, TRUE);
    std::setlocale(LC_ALL, "");  // forgets what was found before
    EXPECT_STREQ(g_dgettext("ZolvaCheckoutKit", "Close"), close) << language;
    EXPECT_TRUE(error.localizedDescription().starts_with(refused)) << error.localizedDescription();
    EXPECT_NE(error.debugDescription().find('"' + english), std::string::npos) << language;
    EXPECT_TRUE(error.userInfo()[NSLocalizedDescriptionKey].text()->starts_with(english));
  }
}

TEST(ViewControllers, AreTheWindowsOwnAndFormATree) {
  Host host;
  const auto root = [] {
    return ZLVPlatform::installed().userInterface->keyWindowRootViewController();
  };
  std::weak_ptr<ZLVViewController> gone;
  host.run([&] {
    EXPECT_EQ(root(), nullptr);
    const auto page = host.viewController();
    EXPECT_EQ(host.viewController(), page);
    EXPECT_EQ(root(), page);
    {
      const auto navigation = std::make_shared<ZLVNavigationController>();
      navigation->pushViewController(page);
      EXPECT_EQ(root(), navigation);
      // A page of the host's own making in the same tree belongs to the window, too.
      const auto detail = std::make_shared<ZLVViewController>();
      navigation->pushViewController(detail);
      host.present("http://127.0.0.1/", detail);
      EXPECT_NE(host.webView(), nullptr);
      ZLVClient::initWithMerchantServerURL("http://127.0.0.1", "M-1", Host::callbackURL, false);
      Host::callBack();
      EXPECT_EQ(host.ended, 1);
    }
    EXPECT_EQ(root(), page);
    gone = page;
  });
  gtk_window_destroy(host.window);
  EXPECT_TRUE(gone.expired());
}

constexpr const char* sandboxSwitch = "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS";

TEST(WebSandbox, IsGivenUpWithOneWarningWhereItCannotWork) {
  g_unsetenv(sandboxSwitch);
  const auto directory = std::filesystem::path(g_get_home_dir()) / "bin";
  const auto program = directory / "bwrap";
  create_directory(directory);
  std::ofstream(program) << "#!/bin/sh\necho 'No permissions to create\na namespace' >&2\nexit 1\n";
  permissions(program, std::filesystem::perms::owner_all);
  g_setenv("PATH", (directory.string() + ':' + g_getenv("PATH")).c_str(), TRUE);
  g_test_expect_message("ZolvaCheckoutKit", G_LOG_LEVEL_WARNING,
                        "*No permissions to create a namespace");
  ZLVWebSandbox::prepare();
  ZLVWebSandbox::prepare();
  g_test_assert_expected_messages();
  EXPECT_STREQ(g_getenv(sandboxSwitch), "1");
}

TEST(WebSandbox, StaysWhereItWorks) {
  if (std::system("bwrap --ro-bind / / true") != 0) {
    GTEST_SKIP() << "bubblewrap does not work here";
  }
  g_unsetenv(sandboxSwitch);
  ZLVWebSandbox::prepare();
  EXPECT_EQ(g_getenv(sandboxSwitch), nullptr);
}

}  // namespace
