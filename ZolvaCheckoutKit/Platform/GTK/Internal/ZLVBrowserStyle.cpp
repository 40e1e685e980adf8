#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserStyle.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

namespace {

// Colours are the theme's, so the dark style and high contrast need nothing of their own.
constexpr auto rules = R"css(
.zlv-browser { background-color: @theme_bg_color; color: @theme_fg_color; }
.zlv-browser headerbar { padding: 0 6px; }
@keyframes zlv-rise {
  from { opacity: 0; transform: translateY(48px); }
  to { opacity: 1; transform: translateY(0); }
}
.zlv-rising { animation: zlv-rise 220ms cubic-bezier(0.2, 0.8, 0.2, 1); }
.zlv-host { font-weight: bold; }
.zlv-security { font-size: 0.8em; }
.zlv-not-secure { color: @warning_color; }
.zlv-browser headerbar .zlv-title > button { padding: 2px 6px; }
.zlv-browser headerbar .zlv-title > button:disabled { color: inherit; }
.zlv-connection { padding: 6px; }
.zlv-explanation { margin-top: 6px; }
.zlv-caption { margin-top: 6px; font-size: 0.8em; opacity: 0.7; }
.zlv-progress trough, .zlv-progress progress {
  min-height: 3px; margin: 0; border: none; border-radius: 0;
}
.zlv-progress trough { background: transparent; box-shadow: none; }
.zlv-problem { padding: 24px; }
.zlv-problem image { opacity: 0.7; }
.zlv-problem .title { font-size: 1.5em; font-weight: bold; }
.zlv-problem button { min-width: 200px; min-height: 32px; }
.zlv-shade { background-color: alpha(black, 0.5); }
.zlv-dialog, .zlv-notice {
  background-color: @theme_bg_color; border: 1px solid @borders; border-radius: 8px;
}
.zlv-dialog { margin: 16px; padding: 18px; }
.zlv-dialog button { min-height: 32px; }
.zlv-notice { margin: 12px; padding: 8px 8px 8px 14px; }
)css";

}  // namespace

void ZLVBrowserStyle::install() {
  static const auto provider = [] {
    auto made = ZLVGObject<GtkCssProvider>::take(gtk_css_provider_new());
    gtk_css_provider_load_from_data(made.get(), rules, -1);
    return made;
  }();
  // Below what the application sets, so that a host can change it.
  constexpr guint priority = GTK_STYLE_PROVIDER_PRIORITY_APPLICATION - 1;
  gtk_style_context_add_provider_for_display(gdk_display_get_default(),
                                             GTK_STYLE_PROVIDER(provider.get()), priority);
}
