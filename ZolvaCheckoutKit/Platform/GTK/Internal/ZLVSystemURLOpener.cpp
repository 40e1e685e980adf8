#include <filesystem>
#include <system_error>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSystemURLOpener.h>

namespace {

/// In a sandboxed application the portal knows the handlers, and tells the user of a missing one.
bool hasPortal() {
  std::error_code error;
  const auto size = std::filesystem::file_size("/.flatpak-info", error);
  return (!error && size != 0) || g_getenv("SNAP") != nullptr;
}

}  // namespace

bool ZLVSystemURLOpener::openURL(const ZLVURL& url) {
  const auto handler =
      ZLVGObject<GAppInfo>::take(g_app_info_get_default_for_uri_scheme(url.scheme().c_str()));
  if (!handler && !hasPortal()) return false;
  const auto context = ZLVGObject<GdkAppLaunchContext>::take(
      gdk_display_get_app_launch_context(gdk_display_get_default()));
  g_app_info_launch_default_for_uri_async(
      url.absoluteString().c_str(), G_APP_LAUNCH_CONTEXT(context.get()), nullptr, nullptr, nullptr);
  return true;
}
