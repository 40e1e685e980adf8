#pragma once

#include <chrono>
#include <string>
#include <string_view>

// What a session asks of its system where POSIX has no word for it. The session declares this, and
// the backend that it is part of defines it: a system without one of these does not link.

namespace ZLVCurlSystem {

/// Names the calling thread for debuggers and the like, with 15 characters at most.
void nameThread(const char* name);

/// As socket(2), but programs that this process starts do not inherit the socket, not even those
/// that are being started. What is sent over TCP and not acknowledged for `acknowledgement` is
/// lost, where the system can be told so. -1 and errno when there is no socket to be had.
int openSocket(int family, int type, int protocol, std::chrono::milliseconds acknowledgement);

}  // namespace ZLVCurlSystem

/// Ends the sleep of a thread that waits in poll(2). Its descriptors are not inherited either, and
/// none of its operations blocks.
class ZLVWakeSignal {
 public:
  ZLVWakeSignal() = default;
  ZLVWakeSignal(const ZLVWakeSignal&) = delete;
  ZLVWakeSignal& operator=(const ZLVWakeSignal&) = delete;
  ~ZLVWakeSignal();

  /// Gets its descriptors, unless it has them or there are none to be had.
  void open();
  [[nodiscard]] bool isOpen() const { return readEnd_ >= 0; }

  /// Readable from `set` until `clear`; -1 while it is not open.
  [[nodiscard]] int descriptor() const { return readEnd_; }

  /// Once it is open, on any thread, also on several at once.
  void set() const;
  void clear() const;

 private:
  int readEnd_ = -1;
  int writeEnd_ = -1;  // may be the same
};

/// A file that never is on a disk, and is gone with this object.
class ZLVMemoryFile {
 public:
  explicit ZLVMemoryFile(std::string_view contents);
  ZLVMemoryFile(const ZLVMemoryFile&) = delete;
  ZLVMemoryFile& operator=(const ZLVMemoryFile&) = delete;
  ~ZLVMemoryFile();

  /// The name by which this process can open it, any number of times; empty when there was no
  /// descriptor or no memory for it.
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  int descriptor_ = -1;
  std::string path_;
};
