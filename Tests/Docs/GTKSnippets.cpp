// The same for hosts with windows.

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>

void host(GtkApplication* application, GtkWindow* gtkWindow) {
  // clang-format off: as wide as in the README
  ZLVPlatform::install(ZLVGTKPlatform::platformWithApplication(
      application, {.applicationName = "Shop", .applicationVersion = "2.1"}));
  auto window = ZLVGTKPlatform::viewControllerForWindow(gtkWindow);
  ZLVGTKPlatform::runUntilIdle(std::chrono::seconds(2));  // after g_application_run
  // clang-format on
}
