#include <ZolvaCheckoutKit/ZLVVendor.h>

ZLVVendor& ZLVVendor::shared() {
  static auto& vendor = *new ZLVVendor;  // outlives every thread that may still read it
  return vendor;
}
