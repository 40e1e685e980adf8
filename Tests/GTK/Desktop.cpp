#include "Tests/GTK/Desktop.h"

#include <sstream>
#include <stdexcept>

#include <gdk/x11/gdkx.h>

namespace {

void xdotool(const std::string& arguments) {
  int status = 0;
  if (g_spawn_command_line_sync(("xdotool " + arguments).c_str(), nullptr, nullptr, &status,
                                nullptr) == FALSE ||
      status != 0) {
    throw std::runtime_error("xdotool " + arguments);
  }
}

}  // namespace

void pressKeys(const std::string& keys) { xdotool("key --delay 0 " + keys); }

void holdKey(const std::string& key, bool isDown) {
  xdotool((isDown ? "keydown " : "keyup ") + key);
}

void clickAt(GtkWindow* window, double x, double y) {
  double left = 0;
  double top = 0;
  gtk_native_get_surface_transform(GTK_NATIVE(window), &left, &top);
  const auto surface = gdk_x11_surface_get_xid(gtk_native_get_surface(GTK_NATIVE(window)));
  std::ostringstream arguments;
  arguments << "mousemove --window " << surface << ' ' << static_cast<int>(x + left) << ' '
            << static_cast<int>(y + top) << " click 1";
  xdotool(arguments.str());
}
