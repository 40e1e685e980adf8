#pragma once

#include <functional>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVProblem.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>

/// Our own page for when there is none of the server's: says what is wrong and what one can do.
class ZLVProblemPage {
 public:
  struct Actions {
    std::function<void()> close;
    std::function<void()> reload;
  };

  explicit ZLVProblemPage(Actions actions);

  [[nodiscard]] GtkWidget* widget() const { return page_.get(); }

  /// Whether it makes sense to fetch the page again after that.
  static bool canReload(const ZLVProblem& problem);
  /// Whether the page that the problem came up on, if any, can still be used.
  static bool isPageKept(const ZLVProblem& problem);

  void setProblem(const ZLVProblem& problem);
  /// Gives the focus to the button that is most likely wanted.
  void grabFocus();

 private:
  ZLVGObject<GtkWidget> page_;
  GtkWidget* icon_;
  GtkWidget* title_;
  GtkWidget* text_;
  GtkWidget* detail_;
  GtkWidget* reload_;
  GtkWidget* close_;
  GtkWidget* usual_ = close_;
  ZLVSignals signals_;
};
