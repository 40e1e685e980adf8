#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a session asks of its system where POSIX has no word for it. The session declares this, and
// the backend that it is part of defines it: a system without one of these does not link.

namespace ZLVCurlSystem {

/// Names the calling thread for debuggers and the like, with 15 characters at most.
void nameThread(const char* name);

/// As socket(2), but programs that this process starts do not inherit the socket, not even those
/// that are being started. What is sent over TCP and not acknowledged for `acknowledgement` is
/// lost, where the system can be told so. -1 and errno when there is no socket to be had.
int openSocket(int family, int type, int protocol, std::chrono::milliseconds acknowledgement);

/// Whether the other side of a connection has ended it, also behind what it has sent before.
bool hasEnded(int socket);

}  // namespace ZLVCurlSystem

/// Tells which of many descriptors are ready, at a cost that does not grow with those that are not.
/// Used on one thread.
class ZLVReadiness {
 public:
  /// With `Once` an event is told when it comes, and not again while it lasts.
  enum Event : unsigned { Read = 1, Write = 2, Once = 4 };
  struct Ready {
    int descriptor;
    unsigned events;  ///< None where that is not known: it has to be tried.
  };

  ZLVReadiness() = default;
  ZLVReadiness(const ZLVReadiness&) = delete;
  ZLVReadiness& operator=(const ZLVReadiness&) = delete;
  ~ZLVReadiness();

  /// From now on these events of `descriptor` are told, and no others. What the system cannot
  /// watch, for lack of a descriptor or of memory, is said to be ready ten times a second.
  void watch(int descriptor, unsigned events);

  /// Nothing is told of it until it is watched again. That is cheaper than forgetting it, which
  /// still has to be done before it is closed.
  void rest(int descriptor);

  /// It is not watched any more, and may be closed; another descriptor may get its number.
  void forget(int descriptor);

  /// Waits until one is ready, for `limit` at most. What was ready before is dropped.
  void wait(std::chrono::milliseconds limit);

  /// The next one that `wait` has found and that is still watched for it.
  std::optional<Ready> next();

 private:
  struct Watch {
    unsigned generation = 0;  ///< Tells a descriptor from an earlier one with its number.
    unsigned wanted = 0, registered = 0;
  };
  struct Found {
    Ready ready;
    unsigned generation;
  };

  void update(int descriptor);
  [[nodiscard]] Watch& at(int descriptor) { return watches_[static_cast<std::size_t>(descriptor)]; }

  int descriptor_ = -1;
  std::vector<Watch> watches_;  // by descriptor
  std::vector<int> unwatched_;  // which the system should watch, and does not
  std::vector<Found> found_;    // the last one first
};

/// Ends the sleep of a thread that waits for its descriptor. Its descriptors are not inherited
/// either, and none of its operations blocks.
class ZLVWakeSignal {
 public:
  ZLVWakeSignal() = default;
  ZLVWakeSignal(const ZLVWakeSignal&) = delete;
  ZLVWakeSignal& operator=(const ZLVWakeSignal&) = delete;
  ~ZLVWakeSignal();

  /// Gets its descriptors, unless it has them. False when there are none to be had.
  bool open();
  [[nodiscard]] bool isOpen() const { return readEnd_ >= 0; }

  /// Becomes readable, again, with each `set`, for who watches it for `Once`; -1 while it is not
  /// open.
  [[nodiscard]] int descriptor() const { return readEnd_; }

  /// Once it is open, on any thread, also on several at once.
  void set() const;

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
