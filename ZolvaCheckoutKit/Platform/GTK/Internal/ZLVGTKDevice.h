#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>
#include <ZolvaCheckoutKit/Platform/ZLVDeviceWrapper.h>

/// Another device's facts, save those that GLib and GDK know better. Made on the main thread.
class ZLVGTKDevice final : public ZLVDeviceWrapper {
 public:
  /// Screens are looked at once `application` has started.
  ZLVGTKDevice(GtkApplication* application, std::shared_ptr<const ZLVDevice> base);

  [[nodiscard]] std::vector<std::string> preferredLanguages() const override;
  [[nodiscard]] std::optional<ZLVSize> mainScreenSize() const override;

 private:
  void watchMonitors();
  void watchMainMonitor();
  void readMainScreenSize(GdkMonitor* monitor);

  // GDK answers on the main thread only, so what it says is kept for the others.
  mutable std::mutex mutex_;
  std::optional<ZLVSize> mainScreenSize_;
  ZLVSignals signals_;
  std::optional<ZLVSignals> monitorSignals_;
};
