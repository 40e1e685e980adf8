// Compiled behind all public headers: what a host in Objective-C++ writes.
static_assert(ZLVFoundation::NSURLErrorTimedOut == -1001);

bool hasDescription(const ZLVError& error) {
  return error.userInfo().contains(ZLVFoundation::NSLocalizedDescriptionKey);
}

#ifdef WITH_FOUNDATION
bool isTimeout(const ZLVError& error) { return error.code() == NSURLErrorTimedOut; }

NSString* keyOfDescription() { return NSLocalizedDescriptionKey; }
#endif
