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
#include "Tests/Support/RawServer.h"

/// Runs the main loop until `condition` holds; false when it does not within half a minute.
bool waitFor(const std::function<bool()>& condition);

struct Host {
  static constexpr const char* callbackURL = "zolvatest://done";
  /// Of URLs that no application takes.
  static constexpr const char* unclaimedScheme = "unclaimed";

  /// Installs the platform; once in a process.
  explicit Host(ZLVLinuxOptions options = {});
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// Runs the application until `body`, called with the window on the screen, has returned, and
  /// then until it has quit.
  void run(const std::function<void()>& body);

  [[nodiscard]] std::shared_ptr<ZLVViewController> viewController() const;
  /// Shows a page in a browser, over the window's view controller or another.
  void present(const std::string& url, std::shared_ptr<ZLVViewController> presenter = nullptr);
  /// Shows a page, in an engine that a hint has started, and clicks an element of it.
  void visit(const std::string& url, const std::string& selector = "p");
  /// Waits until nothing is presented any more and the engine's processes are gone.
  [[nodiscard]] bool waitUntilClosed() const;
  /// Closes the browser by its button.
  void close() const;
  /// Ends every page over the window.
  static void callBack();

  /// The first visible widget of the window with this label, accessible label or tooltip; null when
  /// there is none.
  [[nodiscard]] GtkWidget* find(const std::string& text) const;
  /// Waits for such a widget.
  [[nodiscard]] bool sees(const std::string& text) const;
  /// Waits for such a widget and clicks it.
  void click(const std::string& text) const;
  /// Clicks the middle of the widget, or a point of it.
  void click(GtkWidget* widget, std::optional<graphene_point_t> point = {}) const;
  [[nodiscard]] bool hasFocusInside(GtkWidget* place) const;

  /// The page's view, or null.
  [[nodiscard]] WebKitWebView* webView() const;
  [[nodiscard]] bool hasElement(const std::string& selector) const;
  /// Waits for the element and clicks it.
  void clickElement(const std::string& selector) const;
  /// What a script in the page evaluates to, as text; nothing when it fails.
  std::optional<std::string> evaluate(const std::string& script) const;

  GtkApplication* application;
  GtkWindow* window = nullptr;
  /// The window's content: a field above a button.
  GtkWidget* entry = nullptr;
  GtkWidget* payButton = nullptr;
  GtkWidget* titlebarButton = nullptr;
  /// On either button.
  int clicks = 0;
  /// How many controllers of presented browsers were destroyed.
  int ended = 0;
  /// What was handed to other applications. The callback URL is handled as a host would.
  std::vector<std::string> openedURLs;

 private:
  void makeWindow();
};

/// The processes that this one has started and that still run.
std::vector<pid_t> childProcessIDs();
std::size_t childProcesses();

bool isSensitive(GtkWidget* widget);
/// Whether assistive technology is told this name.
bool hasLabel(GtkWidget* widget, const char* label);

RawServer::Reply page(const std::string& body, const std::string& headers = "");
/// Serves one page, whatever is asked for.
RawServer::Script pages(const std::string& body);

/// Runs `body` in a host, beside a server.
void browse(RawServer::Script script,
            const std::function<void(Host& host, const RawServer& server)>& body);
