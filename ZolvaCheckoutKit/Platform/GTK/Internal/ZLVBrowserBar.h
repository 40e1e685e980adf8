#pragma once

#include <functional>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVConnectionPopover.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebPage.h>
#include <ZolvaCheckoutKit/Platform/ZLVUserInterface.h>

/// The bar above the page: whose page it is, and the buttons.
class ZLVBrowserBar {
 public:
  struct Actions {
    std::function<void()> close;
    std::function<void()> goBack;
    std::function<void()> reload;
  };

  ZLVBrowserBar(ZLVDismissButtonStyle style, Actions actions);

  [[nodiscard]] GtkWidget* widget() const { return bar_.get(); }
  [[nodiscard]] GtkWidget* progressBar() const { return progress_.get(); }

  void setState(ZLVWebPage::State state);
  void setCanReload(bool canReload);
  /// Closes what the bar has opened; false when there is nothing.
  bool closePopover();

 private:
  GtkWidget* makeTitle();
  GtkWidget* makeButton(const char* icon, const char* label, const char* shortcut,
                        std::function<void()> action);

  ZLVGObject<GtkWidget> bar_;
  ZLVGObject<GtkWidget> progress_;
  ZLVConnectionPopover connection_;
  ZLVWebPage::State state_;
  GtkWidget* title_ = nullptr;
  GtkWidget* lock_ = nullptr;
  GtkWidget* host_ = nullptr;
  GtkWidget* warning_ = nullptr;
  GtkWidget* back_ = nullptr;
  GtkWidget* reload_ = nullptr;
  ZLVSignals signals_;
};
