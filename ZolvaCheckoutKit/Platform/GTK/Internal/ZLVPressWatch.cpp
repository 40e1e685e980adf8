#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVPressWatch.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebView.h>

namespace {

constexpr const char* message = "press";

/// One press makes several events, each of a higher rank than the one before, and a click on a
/// label makes one more, of the same moment, on what the label is for.
constexpr const char* source = R"js((() => {
  const ranks = {touchstart: 0, mousedown: 1, keydown: 1, click: 2};
  let last = 2, moment;
  for (const type in ranks) {
    addEventListener(type, event => {
      if (!event.isTrusted || event.repeat || event.timeStamp === moment) return;
      const isNew = ranks[type] <= last;
      last = ranks[type];
      moment = event.timeStamp;
      if (isNew) webkit.messageHandlers.press.postMessage(%s);
    }, true);
  }
})())js";

bool isPress(GdkEvent* event) {
  switch (gdk_event_get_event_type(event)) {
    case GDK_BUTTON_PRESS:
    case GDK_KEY_PRESS:
    case GDK_TOUCH_BEGIN:
      return true;
    default:
      return false;
  }
}

}  // namespace

ZLVPressWatch::ZLVPressWatch(WebKitWebView* view, Events events) {
  auto* const manager = webkit_web_view_get_user_content_manager(view);
  const ZLVGText text(g_strdup_printf(source, ZLVWebView::isOwnFrame));
  WebKitUserScript* const script = webkit_user_script_new_for_world(
      text.get(), WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES,
      WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, ZLVWebView::scriptWorld, nullptr, nullptr);
  webkit_user_content_manager_add_script(manager, script);
  webkit_user_script_unref(script);
  signals_.connect(
      manager, "script-message-received::press",
      [arrived = std::move(events.arrived)](WebKitUserContentManager*, JSCValue* value) {
        arrived(jsc_value_to_boolean(value) != FALSE);
      });
  webkit_user_content_manager_register_script_message_handler(manager, message,
                                                              ZLVWebView::scriptWorld);

  GtkEventController* const controller = gtk_event_controller_legacy_new();
  gtk_event_controller_set_propagation_phase(controller, GTK_PHASE_CAPTURE);
  signals_.connect(
      controller, "event",
      [this, began = std::move(events.began)](GtkEventController*, GdkEvent* event) -> gboolean {
        if (isPress(event) && isNew(event)) began();
        return FALSE;
      });
  gtk_widget_add_controller(GTK_WIDGET(view), controller);
}

bool ZLVPressWatch::isNew(GdkEvent* event) {
  const auto time = gdk_event_get_time(event);
  return std::exchange(lastTime_, time) != time;
}
