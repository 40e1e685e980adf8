#include <ZolvaCheckoutKit/C/Internal/ZLVBoundary.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHost.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVVersion.h>

namespace {

/// A text that finds no memory is a literal.
struct Fault {
  std::string text;
  const char* shown = "";

  void set(const char* what) noexcept {
    try {
      text = what;
      shown = text.c_str();
    } catch (...) {
      shown = "There is no memory.";
    }
  }
};

/// Of this thread.
Fault& lastFault() {
  thread_local Fault fault;
  return fault;
}

/// Reads the exception being handled.
zlv_result read(Fault& fault) noexcept {
  try {
    throw;
  } catch (const ZLVGone&) {
    fault.set("The handle is used up.");
    return ZLV_GONE;
  } catch (const ZLVProgrammingFault& thrown) {
    fault.set(thrown.what());
    return ZLV_FAULT;
  } catch (const std::exception& thrown) {
    fault.set(thrown.what());
  } catch (...) {
    fault.set("A failure of an unknown kind.");
  }
  return ZLV_NO_RESOURCES;
}

}  // namespace

zlv_result ZLVResultOfException() noexcept { return read(lastFault()); }

void ZLVReportException() noexcept {
  Fault fault;
  read(fault);
  const auto& host = ZLVHost::installed();
  if (host.fault != nullptr) return host.fault(host.context, fault.shown);
  ZLVPlatform::installed().systemLog->log(fault.shown);
}

const char* ZLVRequired(const char* text, std::string_view call, std::string_view what) {
  if (text == nullptr) ZLVThrowFault(call, std::string("no ").append(what));
  return text;
}

void ZLVThrowFault(std::string_view call, std::string_view what) {
  throw ZLVProgrammingFault(std::string(call).append(": ").append(what));
}

const char* zlv_version(void) { return ZLV_VERSION; }

const char* zlv_last_fault(void) { return lastFault().shown; }
