#include <utility>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSession.h>
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
  const ZLVCurlOptions forSession{
      .allowsCleartext = options.allowsCleartext,
      .CAFile = options.CAFile,
      .maximumAnswerSize = options.maximumAnswerSize,
      .connectsAheadTo = options.connectsAheadTo,
  };
  platform.makeURLSession = [forSession] { return std::make_unique<ZLVCurlSession>(forSession); };
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
