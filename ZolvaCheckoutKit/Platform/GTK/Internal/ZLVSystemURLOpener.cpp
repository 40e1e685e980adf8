#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSystemURLOpener.h>

bool ZLVSystemURLOpener::openURL(const ZLVURL& url) {
  const auto handler =
      ZLVGObject<GAppInfo>::take(g_app_info_get_default_for_uri_scheme(url.scheme().c_str()));
  const auto context = ZLVGObject<GdkAppLaunchContext>::take(
      gdk_display_get_app_launch_context(gdk_display_get_default()));
  // Also without a known handler: in a sandboxed application the portal knows it.
  g_app_info_launch_default_for_uri_async(
      url.absoluteString().c_str(), G_APP_LAUNCH_CONTEXT(context.get()), nullptr, nullptr, nullptr);
  return static_cast<bool>(handler);
}
