#include <utility>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlSession.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVLinuxDevice.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSyslog.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

ZLVPlatform ZLVLinuxPlatform::platformWithOptions(ZLVLinuxOptions options) {
  if (options.applicationVersion.empty()) {
    throw ZLVProgrammingFault(
        "ZLVLinuxPlatform platformWithOptions: the application version is missing");
  }
  ZLVPlatform platform;
  platform.makeURLSession = [configuration =
                                 ZLVCurlConfiguration{
                                     .allowsCleartext = options.allowsCleartext,
                                     .maximumAnswerSize = options.maximumAnswerSize,
                                 },
                             CAFile = options.CAFile] {
    return std::make_unique<ZLVCurlSession>(configuration, CAFile);
  };
  platform.mainQueue = ZLVLinuxMainQueue::mainQueue();
  platform.systemLog = std::make_shared<ZLVSyslog>();
  platform.device = std::make_shared<ZLVLinuxDevice>(ZLVLinuxApplication{
      .identifier = options.applicationIdentifier.value_or(options.applicationName),
      .displayName = options.applicationName,
      .shortVersion = options.applicationVersion,
  });
  platform.userInterface = std::make_shared<ZLVConsoleUserInterface>(platform.mainQueue);
  platform.analyticsRootURL = std::move(options.analyticsRootURL);
  return platform;
}
