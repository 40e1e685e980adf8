#include <algorithm>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVNavigationPolicy.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebView.h>

namespace {

constexpr WebKitContextMenuAction editingActions[] = {
    WEBKIT_CONTEXT_MENU_ACTION_COPY,          WEBKIT_CONTEXT_MENU_ACTION_CUT,
    WEBKIT_CONTEXT_MENU_ACTION_PASTE,         WEBKIT_CONTEXT_MENU_ACTION_PASTE_AS_PLAIN_TEXT,
    WEBKIT_CONTEXT_MENU_ACTION_DELETE,        WEBKIT_CONTEXT_MENU_ACTION_SELECT_ALL,
    WEBKIT_CONTEXT_MENU_ACTION_INPUT_METHODS,
};

/// Without the graphics processor a page is there sooner, most of all where its driver is a
/// program, takes a third less memory, and keeps its hands off that driver.
ZLVGObject<WebKitSettings> makeSettings() {
  return ZLVGObject<WebKitSettings>::take(
      webkit_settings_new_with_settings("enable-developer-extras", FALSE,                    //
                                        "enable-fullscreen", FALSE,                          //
                                        "enable-media-stream", FALSE,                        //
                                        "enable-webrtc", FALSE,                              //
                                        "enable-page-cache", FALSE,                          //
                                        "javascript-can-open-windows-automatically", FALSE,  //
                                        "media-playback-requires-user-gesture", TRUE,        //
                                        "hardware-acceleration-policy",
                                        WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER,  //
                                        nullptr));
}

/// Puts `frameSecurityPolicy` into every document before any of its own content. It holds from then
/// on, so what carried it is removed again.
ZLVGObject<WebKitUserContentManager> makeUserContent() {
  constexpr auto source = R"js((() => {
    const head = document.createElementNS('http://www.w3.org/1999/xhtml', 'head');
    const meta = document.createElementNS('http://www.w3.org/1999/xhtml', 'meta');
    meta.setAttribute('http-equiv', 'Content-Security-Policy');
    meta.setAttribute('content', '%s');
    head.append(meta);
    document.documentElement.prepend(head);
    head.remove();
  })())js";
  const ZLVGText text(g_strdup_printf(source, ZLVNavigationPolicy::frameSecurityPolicy));
  WebKitUserScript* const script = webkit_user_script_new_for_world(
      text.get(), WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES,
      WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, ZLVWebView::scriptWorld, nullptr, nullptr);
  auto manager = ZLVGObject<WebKitUserContentManager>::take(webkit_user_content_manager_new());
  webkit_user_content_manager_add_script(manager.get(), script);
  webkit_user_script_unref(script);
  return manager;
}

}  // namespace

ZLVGObject<WebKitWebView> ZLVWebView::make() {
  const auto session =
      ZLVGObject<WebKitNetworkSession>::take(webkit_network_session_new_ephemeral());
  webkit_network_session_set_persistent_credential_storage_enabled(session.get(), FALSE);
  const auto context = ZLVGObject<WebKitWebContext>::take(webkit_web_context_new());
  webkit_web_context_set_cache_model(context.get(), WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
  const auto policies = ZLVGObject<WebKitWebsitePolicies>::take(
      webkit_website_policies_new_with_policies("autoplay", WEBKIT_AUTOPLAY_DENY, nullptr));
  const auto settings = makeSettings();
  const auto content = makeUserContent();

  auto view = ZLVGObject<WebKitWebView>::retain(g_object_new(
      WEBKIT_TYPE_WEB_VIEW, "web-context", context.get(), "network-session", session.get(),
      "website-policies", policies.get(), "settings", settings.get(), "user-content-manager",
      content.get(), "hexpand", TRUE, "vexpand", TRUE, nullptr));
  // The view has a hidden child for its key bindings, which would take the focus and not give it
  // back.
  for (auto* child = gtk_widget_get_first_child(GTK_WIDGET(view.get())); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    gtk_widget_set_can_focus(child, FALSE);
  }
  return view;
}

void ZLVWebView::restrictContextMenu(WebKitContextMenu* menu) {
  const ZLVGOwned<GList, g_list_free> items(g_list_copy(webkit_context_menu_get_items(menu)));
  for (auto* item = items.get(); item != nullptr; item = item->next) {
    auto* const entry = static_cast<WebKitContextMenuItem*>(item->data);
    const auto action = webkit_context_menu_item_get_stock_action(entry);
    if (std::find(std::begin(editingActions), std::end(editingActions), action) ==
        std::end(editingActions)) {
      webkit_context_menu_remove(menu, entry);
    }
  }
}
