#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVDialogWatch.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebView.h>

namespace {

constexpr const char* message = "dialog";

/// In the page's world, where its scripts call: an event before each dialog.
constexpr const char* announcement = R"js((() => {
  const {Event, dispatchEvent} = window;
  for (const name of ['alert', 'confirm', 'prompt']) {
    const open = window[name];
    window[name] = (...words) => {
      dispatchEvent.call(window, new Event('zlvdialog'));
      return open(...words);
    };
  }
})())js";

/// In our own, which alone can pass it on. It arrives before the dialog; a frame that a frame has
/// made to find the functions as they were has nobody to announce it.
constexpr const char* passing = R"js(addEventListener('zlvdialog', () => {
  if (%s) webkit.messageHandlers.dialog.postMessage(null);
}, true))js";

void add(WebKitUserContentManager* manager, WebKitUserScript* script) {
  webkit_user_content_manager_add_script(manager, script);
  webkit_user_script_unref(script);
}

}  // namespace

ZLVDialogWatch::ZLVDialogWatch(WebKitWebView* view) {
  auto* const manager = webkit_web_view_get_user_content_manager(view);
  const ZLVGText text(g_strdup_printf(passing, ZLVWebView::isOwnFrame));
  constexpr auto frames = WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES;
  constexpr auto time = WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START;
  add(manager, webkit_user_script_new(announcement, frames, time, nullptr, nullptr));
  add(manager, webkit_user_script_new_for_world(text.get(), frames, time, ZLVWebView::scriptWorld,
                                                nullptr, nullptr));
  signals_.connect(manager, "script-message-received::dialog",
                   [this](WebKitUserContentManager*, JSCValue*) { isAnnounced_ = true; });
  webkit_user_content_manager_register_script_message_handler(manager, message,
                                                              ZLVWebView::scriptWorld);
}

bool ZLVDialogWatch::isOwn(WebKitScriptDialog* dialog) {
  // It has no words of the page's, and leads where the user wanted.
  const bool isOurs =
      webkit_script_dialog_get_dialog_type(dialog) == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM;
  return isOurs || std::exchange(isAnnounced_, false);
}
