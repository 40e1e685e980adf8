#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

template <class Signature>
class ZLVOnce;

/// A callable that may be null, such as a `std::function` or a pointer to a function. A lambda
/// without captures compares with null too, but cannot be made of it.
template <class Function>
concept ZLVNullableFunction = std::constructible_from<Function, std::nullptr_t> &&
    requires(const Function& function) {
  { function == nullptr } -> std::convertible_to<bool>;
};

/// A move-only function that is called at most once: calling it uses it up. It may hold move-only
/// things, which go with the call or with the last owner. Made of a null function it is empty.
///
/// ```cpp
/// ZLVOnce<void(int)> answer = [owner = std::move(owner)](int value) { owner->accept(value); };
/// std::move(answer)(42);
/// ```
template <class... Arguments>
class ZLVOnce<void(Arguments...)> {
 public:
  /// Makes an empty one.
  ZLVOnce() noexcept = default;
  /// Keeps the function, of its own type, until the call.
  template <class Function>
  requires(!std::same_as<std::remove_cvref_t<Function>, ZLVOnce> &&
           std::invocable<std::remove_cvref_t<Function>, Arguments...>)
      ZLVOnce(Function&& function) {
    using Kept = std::remove_cvref_t<Function>;
    if constexpr (ZLVNullableFunction<Kept>) {
      if (function == nullptr) return;
    }
    target_.reset(std::make_unique<Target<Kept>>(std::forward<Function>(function)).release());
  }

  /// Whether there is still something to call.
  explicit operator bool() const noexcept { return target_ != nullptr; }

  /// Calls the function and lets it go; does nothing when empty. The function may destroy this
  /// object meanwhile. What it throws comes through.
  void operator()(Arguments... arguments) && {
    if (auto target = std::move(target_)) {
      target->call(*target, std::forward<Arguments>(arguments)...);
    }
  }

 private:
  /// Pointers in place of virtual functions: the name of each lambda's class would be kept, too.
  struct Callable {
    void (*call)(Callable& self, Arguments... arguments);
    void (*destroy)(Callable* self) noexcept;
  };
  template <class Function>
  struct Target final : Callable {
    template <class Source>
    explicit Target(Source&& source)
        : Callable{[](Callable& self, Arguments... arguments) {
                     std::move(static_cast<Target&>(self).function)(
                         std::forward<Arguments>(arguments)...);
                   },
                   [](Callable* self) noexcept {
                     const std::unique_ptr<Target> owner(static_cast<Target*>(self));
                   }},
          function(std::forward<Source>(source)) {}
    Function function;
  };
  struct Destroy {
    void operator()(Callable* target) const noexcept { target->destroy(target); }
  };

  std::unique_ptr<Callable, Destroy> target_;
};
