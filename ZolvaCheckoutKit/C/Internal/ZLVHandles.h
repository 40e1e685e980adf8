#pragma once

#include <bit>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <ZolvaCheckoutKit/C/Internal/ZLVBoundary.h>

/// What one of the interface's handles is told from the others by.
enum class ZLVHandleKind : std::uint8_t { Block, Task, Page, View };

/// The handles of one kind and what they stand for. A handle is a number that counts up, so that
/// one which is used up, or never was one, is known as such and nothing behind it is touched.
template <class Handle, class Thing>
class ZLVHandles {
 public:
  /// `name` is the handle's type.
  ZLVHandles(ZLVHandleKind kind, std::string_view name)
      : kind_(static_cast<std::uintptr_t>(kind)), name_(name) {}

  Handle* add(Thing thing) {
    const std::lock_guard lock(mutex_);
    const auto number = (count_ + 1) * kinds + kind_;
    things_.emplace(number, std::move(thing));
    ++count_;
    return std::bit_cast<Handle*>(number);
  }

  /// Uses the handle up. Throws `ZLVGone` when it is, and a fault when it never was one.
  Thing take(Handle* handle) {
    const std::lock_guard lock(mutex_);
    auto node = things_.extract(numberOf(handle));
    if (node.empty()) throw ZLVGone();
    return std::move(node.mapped());
  }

  /// Another owner of the thing; fails as `take` does.
  Thing get(Handle* handle) {
    const std::lock_guard lock(mutex_);
    const auto place = things_.find(numberOf(handle));
    if (place == things_.end()) throw ZLVGone();
    return place->second;
  }

 private:
  static constexpr std::uintptr_t kinds = 4;

  [[nodiscard]] std::uintptr_t numberOf(Handle* handle) const {
    const auto number = std::bit_cast<std::uintptr_t>(handle);
    if (number < kinds || number % kinds != kind_ || number / kinds > count_) {
      ZLVThrowFault(name_, "this is no handle of the kind");
    }
    return number;
  }

  const std::uintptr_t kind_;
  const std::string_view name_;
  std::mutex mutex_;
  std::uintptr_t count_ = 0;
  std::unordered_map<std::uintptr_t, Thing> things_;
};
