#include <utility>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKDevice.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKMainQueue.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKUserInterface.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVTranslations.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebSandbox.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWindowViewController.h>
#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>
#include <ZolvaCheckoutKit/ZLVError.h>

ZLVPlatform ZLVGTKPlatform::platformWithApplication(GtkApplication* application,
                                                    ZLVLinuxOptions options,
                                                    ZLVGTKHandlers handlers) {
  if (application == nullptr) {
    throw ZLVProgrammingFault("ZLVGTKPlatform::platformWithApplication: no application");
  }
  ZLVTranslations::bind();

  auto authorities = std::make_shared<ZLVCertificateAuthorities>(options.CAFile);
  auto platform = ZLVLinuxPlatform::platformWithOptions(std::move(options));
  ZLVWebSandbox::prepare();
  platform.mainQueue = std::make_shared<ZLVGTKMainQueue>(std::move(handlers.uncaughtException));
  platform.device = std::make_shared<ZLVGTKDevice>(application, platform.device);
  platform.userInterface = std::make_shared<ZLVGTKUserInterface>(
      std::shared_ptr<const ZLVGTKBrowser::Environment>(new ZLVGTKBrowser::Environment{
          ZLVWeakGObject<GtkApplication>(application), platform.mainQueue, std::move(authorities),
          std::make_shared<ZLVWebEngine>(application)}),
      std::move(handlers.openURL));
  platform.localizedText = [](const char* text) { return std::string(ZLVLocalized(text)); };
  return platform;
}

bool ZLVGTKPlatform::runUntilIdle(std::chrono::milliseconds limit) {
  return ZLVGTKMainQueue::runUntilIdle(limit);
}

std::shared_ptr<ZLVViewController> ZLVGTKPlatform::viewControllerForWindow(GtkWindow* window) {
  if (window == nullptr) {
    throw ZLVProgrammingFault("ZLVGTKPlatform::viewControllerForWindow: no window");
  }
  return ZLVWindowViewController::ofWindow(window);
}
