#include <algorithm>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKDevice.h>

ZLVGTKDevice::ZLVGTKDevice(GtkApplication* application, std::shared_ptr<const ZLVDevice> base)
    : ZLVDeviceWrapper(std::move(base)) {
  if (gtk_is_initialized() != FALSE) {
    watchMonitors();
  } else {
    signals_.connect(application, "startup", [this](GtkApplication*) { watchMonitors(); });
  }
}

void ZLVGTKDevice::watchMonitors() {
  signals_.connect(gdk_display_get_monitors(gdk_display_get_default()), "items-changed",
                   [this](GListModel*, guint, guint, guint) { watchMainMonitor(); });
  watchMainMonitor();
}

void ZLVGTKDevice::watchMainMonitor() {
  monitorSignals_.emplace();
  // GDK 4 knows no main monitor; it lists that one first.
  auto* const monitors = gdk_display_get_monitors(gdk_display_get_default());
  const auto monitor =
      ZLVGObject<GdkMonitor>::take(static_cast<GdkMonitor*>(g_list_model_get_item(monitors, 0)));
  if (monitor) {
    monitorSignals_->connect(
        monitor.get(), "notify::geometry",
        [this](GdkMonitor* changed, GParamSpec*) { readMainScreenSize(changed); });
  }
  readMainScreenSize(monitor.get());
}

void ZLVGTKDevice::readMainScreenSize(GdkMonitor* monitor) {
  std::optional<ZLVSize> size;
  if (monitor != nullptr) {
    GdkRectangle area{};
    gdk_monitor_get_geometry(monitor, &area);
    size = {static_cast<double>(area.width), static_cast<double>(area.height)};
  }
  const std::lock_guard lock(mutex_);
  mainScreenSize_ = size;
}

std::vector<std::string> ZLVGTKDevice::preferredLanguages() const {
  // GLib lists each language with and without its codeset, and ends with the C locale.
  std::vector<std::string> languages;
  for (const auto* name = g_get_language_names(); *name != nullptr; ++name) {
    const std::string_view language = *name;
    if (language == "C" || language == "POSIX" || language.find('.') != std::string_view::npos)
      continue;
    languages.emplace_back(language);
  }
  return languages;
}

std::optional<ZLVSize> ZLVGTKDevice::mainScreenSize() const {
  const std::lock_guard lock(mutex_);
  return mainScreenSize_;
}
