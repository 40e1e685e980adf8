#include "Apps/Shop/Interface/Style.h"

#include <string>

#include <gtk/gtk.h>

#include "Apps/Shop/Interface/Widgets.h"

namespace {

constexpr const char* PrefersDark = "gtk-application-prefer-dark-theme";

bool isDark() {
  gboolean dark = FALSE;
  g_object_get(gtk_settings_get_default(), PrefersDark, &dark, nullptr);
  return dark == TRUE;
}

GtkCssProvider* addProvider() {
  GtkCssProvider* const provider = gtk_css_provider_new();
  gtk_style_context_add_provider_for_display(gdk_display_get_default(),
                                             GTK_STYLE_PROVIDER(provider),
                                             GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  g_object_unref(provider);
  return provider;
}

void load(GtkCssProvider* provider, const char* sheet) {
  gtk_css_provider_load_from_resource(provider, (std::string(ShopResources) + sheet).c_str());
}

}  // namespace

void installStyle() {
  load(addProvider(), "style.css");
  // The colours' names are the same, so that one set of rules does for both.
  GtkCssProvider* const palette = addProvider();
  const auto loadPalette = [palette] { load(palette, isDark() ? "dark.css" : "light.css"); };
  loadPalette();
  onSignal(gtk_settings_get_default(), "notify::gtk-application-prefer-dark-theme", loadPalette);
}

void toggleDarkStyle() {
  g_object_set(gtk_settings_get_default(), PrefersDark, static_cast<gboolean>(!isDark()), nullptr);
}
