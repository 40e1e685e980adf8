#pragma once

#include <memory>

#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

/// A question of a page's script, which waits for the answer. Unless it is confirmed, its end
/// answers no.
class ZLVScriptDialog {
 public:
  explicit ZLVScriptDialog(WebKitScriptDialog* dialog)
      : dialog_(webkit_script_dialog_ref(dialog)) {}

  [[nodiscard]] WebKitScriptDialogType type() const {
    return webkit_script_dialog_get_dialog_type(dialog_.get());
  }
  [[nodiscard]] const char* message() const {
    return webkit_script_dialog_get_message(dialog_.get());
  }
  [[nodiscard]] const char* defaultText() const {
    return webkit_script_dialog_prompt_get_default_text(dialog_.get());
  }

  /// `text` answers a prompt.
  void confirm(const char* text) {
    if (type() == WEBKIT_SCRIPT_DIALOG_PROMPT) {
      webkit_script_dialog_prompt_set_text(dialog_.get(), text);
    } else if (type() != WEBKIT_SCRIPT_DIALOG_ALERT) {
      webkit_script_dialog_confirm_set_confirmed(dialog_.get(), TRUE);
    }
  }

 private:
  ZLVGOwned<WebKitScriptDialog, webkit_script_dialog_unref> dialog_;
};
