#pragma once

// A small application with a window of its own, used as a person uses it: by mouse and keyboard.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "Tests/GTK/Desktop.h"

/// Runs the main loop until `condition` holds; false when it does not within half a minute.
bool waitFor(const std::function<bool()>& condition);

class Host {
 public:
  static constexpr const char* callbackURL = "zolvatest://done";
  /// Of URLs that no application takes.
  static constexpr const char* unclaimedScheme = "unclaimed";

  /// Installs the platform; once in a process.
  explicit Host(ZLVLinuxOptions options = {});
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// Runs the application until `body`, called in its main loop with the window on the screen, has
  /// returned, and then until it has quit.
  void run(std::function<void()> body);

  [[nodiscard]] GtkApplication* application() const { return application_; }
  [[nodiscard]] GtkWindow* window() const { return window_; }
  [[nodiscard]] GtkWidget* entry() const { return entry_; }
  /// The entry's window has this beside it; counts its clicks.
  [[nodiscard]] GtkWidget* payButton() const { return payButton_; }
  [[nodiscard]] GtkWidget* titlebarButton() const { return titlebarButton_; }
  [[nodiscard]] int clicks() const { return clicks_; }
  [[nodiscard]] std::shared_ptr<ZLVViewController> viewController() const;

  /// The URLs handed to other applications so far. The callback URL is handled as a host would.
  [[nodiscard]] const std::vector<std::string>& openedURLs() const { return openedURLs_; }

  /// Shows a page in a browser, over the window's view controller or another; `ended` counts how
  /// often the browser's controller was destroyed.
  void present(const std::string& url, int* ended = nullptr) const;
  static void present(const std::shared_ptr<ZLVViewController>& presenter, const std::string& url,
                      int* ended);
  /// Waits until nothing is presented any more and the engine's processes are gone.
  [[nodiscard]] bool waitUntilClosed() const;

  /// The first visible widget of the window with this label, accessible label or tooltip; null when
  /// there is none.
  [[nodiscard]] GtkWidget* find(const std::string& text) const;
  /// Waits for such a widget and clicks it.
  void click(const std::string& text) const;
  void click(GtkWidget* widget) const;

  /// The page's view, or null.
  [[nodiscard]] WebKitWebView* webView() const;
  [[nodiscard]] bool hasElement(const std::string& selector) const;
  /// Waits for the element and clicks it.
  void clickElement(const std::string& selector) const;
  /// What a script in the page evaluates to, as text; nothing when it fails.
  std::optional<std::string> evaluate(const std::string& script) const;

 private:
  void makeWindow();
  /// Until then a widget may not be where it will be.
  void waitForFrame() const;

  GtkApplication* application_;
  GtkWindow* window_ = nullptr;
  GtkWidget* entry_ = nullptr;
  GtkWidget* payButton_ = nullptr;
  GtkWidget* titlebarButton_ = nullptr;
  int clicks_ = 0;
  std::vector<std::string> openedURLs_;
  std::function<void()> body_;
};

/// How many processes this one has started that still run.
std::size_t childProcesses();
