#pragma once

#include <memory>
#include <utility>

#include <glib-object.h>

/// A strong reference to a GObject.
template <class Object>
class ZLVGObject {
 public:
  ZLVGObject() noexcept = default;
  ZLVGObject(ZLVGObject&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ZLVGObject& operator=(ZLVGObject&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ZLVGObject() { reset(); }

  /// Takes over the caller's reference.
  static ZLVGObject take(Object* object) noexcept { return ZLVGObject(object); }
  /// Adds a reference, or takes over the floating one of a new widget.
  static ZLVGObject retain(gpointer object) noexcept {
    return ZLVGObject(
        static_cast<Object*>(object == nullptr ? nullptr : g_object_ref_sink(object)));
  }

  [[nodiscard]] Object* get() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  void reset() noexcept { g_clear_object(&object_); }

 private:
  explicit ZLVGObject(Object* object) noexcept : object_(object) {}

  Object* object_ = nullptr;
};

/// A reference that does not keep its object alive.
template <class Object>
class ZLVWeakGObject {
 public:
  explicit ZLVWeakGObject(gpointer object = nullptr) noexcept { g_weak_ref_init(&ref_, object); }
  ZLVWeakGObject(const ZLVWeakGObject&) = delete;
  ZLVWeakGObject& operator=(const ZLVWeakGObject&) = delete;
  ~ZLVWeakGObject() { g_weak_ref_clear(&ref_); }

  void set(gpointer object) noexcept { g_weak_ref_set(&ref_, object); }
  /// The object while it lives.
  [[nodiscard]] ZLVGObject<Object> lock() const noexcept {
    return ZLVGObject<Object>::take(static_cast<Object*>(g_weak_ref_get(&ref_)));
  }

 private:
  mutable GWeakRef ref_{};
};

/// What is freed with a function of its own.
template <class Object, auto free>
struct ZLVGFree {
  void operator()(Object* object) const noexcept { free(object); }
};
template <class Object, auto free>
using ZLVGOwned = std::unique_ptr<Object, ZLVGFree<Object, free>>;
using ZLVGText = ZLVGOwned<char, g_free>;
using ZLVGError = ZLVGOwned<GError, g_error_free>;

/// A value that C keeps: as user data together with the function that frees it.
template <class Value>
struct ZLVUserData {
  static gpointer make(Value value) { return std::make_unique<Value>(std::move(value)).release(); }
  static Value& of(gpointer data) noexcept { return *static_cast<Value*>(data); }
  static void free(gpointer data) noexcept {
    const std::unique_ptr<Value> end(static_cast<Value*>(data));
  }
};

constexpr gboolean ZLVGBoolean(bool value) noexcept { return value ? TRUE : FALSE; }
