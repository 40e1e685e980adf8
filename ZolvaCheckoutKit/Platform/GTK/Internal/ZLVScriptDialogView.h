#pragma once

#include <optional>
#include <string>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVScriptDialog.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>

/// Puts the questions of a page's scripts to the user, over the page and under the name of its
/// host, one at a time; those that come in a row can be stopped.
class ZLVScriptDialogView {
 public:
  /// `page` takes no input while there is a dialog, and has the focus afterwards.
  explicit ZLVScriptDialogView(GtkWidget* page);

  [[nodiscard]] GtkWidget* widget() const { return root_.get(); }
  [[nodiscard]] bool isOpen() const { return dialog_.has_value(); }

  void open(const std::string& host, ZLVScriptDialog dialog);
  /// Answers no; of dialogs in a row it stops the rest, so that this always leads out.
  void cancel();
  /// Answers no, as the page goes.
  void dismiss();
  /// What comes next comes of what the user does, and is in no row.
  void endRow();

 private:
  void makeCard();
  GtkWidget* makeButton(GtkWidget* parent, void (ZLVScriptDialogView::*action)());
  void confirm();
  void stop();
  [[nodiscard]] bool isInRow() const { return shownInRow_ > 1; }

  ZLVGObject<GtkWidget> root_;
  ZLVGObject<GtkWidget> page_;
  GtkWidget* card_ = nullptr;
  GtkWidget* host_ = nullptr;
  GtkWidget* message_ = nullptr;
  GtkWidget* entry_ = nullptr;
  GtkWidget* cancel_ = nullptr;
  GtkWidget* confirm_ = nullptr;
  GtkWidget* stop_ = nullptr;
  int shownInRow_ = 0;
  bool isStopped_ = false;
  std::optional<ZLVScriptDialog> dialog_;
  ZLVSignals signals_;
};
