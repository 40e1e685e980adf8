#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVRefusals.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebView.h>

namespace {

/// A download that the page's end overtakes would leave the engine's network process behind, so no
/// link starts one: it leads to what it names, as any other.
void disableDownloadLinks(WebKitSettings* settings) {
#if WEBKIT_CHECK_VERSION(2, 42, 0)
  WebKitFeatureList* const features = webkit_settings_get_all_features();
  for (gsize i = 0; i < webkit_feature_list_get_length(features); ++i) {
    WebKitFeature* const feature = webkit_feature_list_get(features, i);
    if (g_str_equal(webkit_feature_get_identifier(feature), "DownloadAttribute") != FALSE) {
      webkit_settings_set_feature_enabled(settings, feature, FALSE);
    }
  }
  webkit_feature_list_unref(features);
#else
  static_cast<void>(settings);
#endif
}

}  // namespace

ZLVRefusals::ZLVRefusals(WebKitWebView* view, std::function<void()> downloadRefused) {
  disableDownloadLinks(webkit_web_view_get_settings(view));
  signals_.connect(
      webkit_web_view_get_network_session(view), "download-started",
      [refused = std::move(downloadRefused)](WebKitNetworkSession*, WebKitDownload* download) {
        webkit_download_cancel(download);
        refused();
      });
  signals_.connect(view, "permission-request",
                   [](WebKitWebView*, WebKitPermissionRequest* request) -> gboolean {
                     webkit_permission_request_deny(request);
                     return TRUE;
                   });
  signals_.connect(view, "query-permission-state",
                   [](WebKitWebView*, WebKitPermissionStateQuery* query) -> gboolean {
                     webkit_permission_state_query_finish(query, WEBKIT_PERMISSION_STATE_DENIED);
                     return TRUE;
                   });
  // The toolkit's print dialog would run a main loop of its own.
  signals_.connect(view, "print",
                   [](WebKitWebView*, WebKitPrintOperation*) -> gboolean { return TRUE; });
  signals_.connect(view, "context-menu",
                   [](WebKitWebView*, WebKitContextMenu* menu, WebKitHitTestResult*) -> gboolean {
                     ZLVWebView::restrictContextMenu(menu);
                     return ZLVGBoolean(webkit_context_menu_get_n_items(menu) == 0);
                   });
}
