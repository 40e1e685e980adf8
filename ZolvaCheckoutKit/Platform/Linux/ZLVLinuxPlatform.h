#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVExport.h>

/// What the Linux backend is told by the host.
struct ZLVLinuxOptions {
  /// The application's name as the user sees it.
  std::string applicationName = {};
  /// The application's version, such as "2.1"; required.
  std::string applicationVersion = {};
  /// Tells the application from every other one on the machine, such as "com.example.shop". The
  /// vendor identifier is made from it; the name stands in where it is absent.
  std::optional<std::string> applicationIdentifier = std::nullopt;
  /// Whether http is allowed to any host. Otherwise only to this machine itself (localhost,
  /// 127.0.0.0/8 and ::1).
  bool allowsCleartext = false;
  /// A PEM file of certificate authorities to trust beside the system's. It is read when a secure
  /// connection is made; https calls fail with `NSURLErrorSecureConnectionFailed` when it cannot be
  /// read.
  std::optional<std::string> CAFile = std::nullopt;
  /// The largest answer accepted, in bytes, decompressed; a larger one fails with
  /// `NSURLErrorDataLengthExceedsMaximum`. What it may take once it is decoded is
  /// `ZLVPlatform::maximumDecodedSize`.
  std::size_t maximumAnswerSize = std::size_t{8} * 1024 * 1024;
  /// Base URL of the analytics service, ending in "/", where it is not the usual one.
  std::optional<std::string> analyticsRootURL = std::nullopt;
  /// A URL of the server, usually the merchant's, to which a connection is opened as soon as the
  /// client is configured, so that the first call finds it there. Nothing is sent over it but what
  /// TLS asks for. When it cannot be made, or the server has closed it meanwhile, the first call
  /// connects as it would without it; so it does where libcurl itself, from 8.1 on, does not use a
  /// connection on which the server has said something.
  std::optional<std::string> connectsAheadTo = std::nullopt;
};

/// The backend for Linux: HTTP by libcurl, a queue that the host's main thread runs, the syslog
/// daemon, and a user interface for the console.
///
/// ```cpp
/// ZLVPlatform::install(ZLVLinuxPlatform::platformWithOptions(
///     {.applicationName = "Shop", .applicationVersion = "2.1"}));
/// // configure and use the library, then serve it
/// ZLVLinuxMainQueue::mainQueue()->run();
/// ```
///
/// HTTP behaves as `ZLVURLSession` says and, beyond that: proxies are taken from the environment
/// (`https_proxy`, `http_proxy`, `no_proxy`), calls to this machine itself excepted; no User-Agent
/// is sent; nothing is written to disk. Connecting takes a minute at most, what is sent and not
/// acknowledged for a minute is lost, and 64 calls to a server are under way at a time: the others
/// wait in order.
///
/// After fork(2) the library is the parent's: the child may call exec, _exit or exit, and nothing
/// of the library.
class ZLV_EXPORT ZLVLinuxPlatform {
 public:
  /// A platform whose parts the host may replace before it installs it. Its main queue is
  /// `ZLVLinuxMainQueue::mainQueue()`, its user interface a `ZLVConsoleUserInterface` that opens
  /// nothing by itself. Throws `ZLVProgrammingFault` when the application version is empty.
  [[nodiscard]] static ZLVPlatform platformWithOptions(ZLVLinuxOptions options);
};
