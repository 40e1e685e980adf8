#pragma once

#include <functional>
#include <memory>
#include <string>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserBar.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVCertificateAuthorities.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVFileChooser.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVNotice.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVProblemPage.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVScriptDialogView.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebPage.h>
#include <ZolvaCheckoutKit/Platform/ZLVUserInterface.h>

/// What one sees of a browser: the bar and below it the page, a spinner until there is one, or what
/// went wrong.
class ZLVBrowserScreen {
 public:
  struct Events {
    /// The user or the page wants the browser closed. Called from inside GTK or WebKit, which must
    /// not lose the screen there.
    std::function<void()> closed;
    std::function<void(const ZLVURL& url)> ledOut;
  };

  ZLVBrowserScreen(ZLVDismissButtonStyle style, ZLVGObject<WebKitWebView> view,
                   std::shared_ptr<ZLVCertificateAuthorities> authorities, Events events);

  [[nodiscard]] GtkWidget* widget() const { return root_.get(); }

  void load(const std::string& url);
  void grabFocus();
  /// Nothing opens the URL that the page has led to.
  void openingFailed();

 private:
  enum class Content { Loading, Page, Problem };

  void addShortcuts();
  void setContent(Content content);
  void showProblem(const ZLVProblem& problem);
  void openDialog(ZLVScriptDialog dialog);
  /// What the page wanted in vain.
  void tell(const char* text);
  /// Asks whether to open a URL that only the page wants opened.
  void offer(const ZLVURL& url);
  void escape();
  void goBack();
  void reload();
  [[nodiscard]] bool canReload() const;
  /// Whether the page that the problem came up on can still be used.
  [[nodiscard]] bool canReturn() const;
  void updateBar();
  void zoom(std::size_t level);

  Events events_;
  ZLVWebPage page_;
  ZLVFileChooser fileChooser_;
  ZLVBrowserBar bar_;
  ZLVProblemPage problemPage_;
  ZLVScriptDialogView dialog_;
  ZLVNotice notice_;
  ZLVGObject<GtkWidget> root_;
  GtkWidget* spinner_ = nullptr;
  Content content_ = Content::Loading;
  ZLVProblem problem_;
  std::size_t zoomLevel_;
};
