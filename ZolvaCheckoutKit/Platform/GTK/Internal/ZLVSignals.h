#pragma once

#include <utility>

#include <glib-object.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

/// Connects signals to functions, which are called until this object ends or the sender does.
///
/// A handler takes the signal's arguments, the sender first. No exception may leave it: its caller
/// is C.
class ZLVSignals {
 public:
  ZLVSignals() : owner_(G_OBJECT(g_object_new(G_TYPE_OBJECT, nullptr))) {}
  ZLVSignals(const ZLVSignals&) = delete;
  ZLVSignals& operator=(const ZLVSignals&) = delete;
  ~ZLVSignals() {
    disconnect();
    g_object_unref(owner_);
  }

  template <class Handler>
  void connect(gpointer sender, const char* signal, Handler handler) {
    connectAs(sender, signal, std::move(handler), &Handler::operator());
  }

  /// Ends all connections at once, also one whose handler runs right now.
  void disconnect() { g_object_run_dispose(owner_); }

 private:
  template <class Handler, class Result, class... Arguments>
  void connectAs(gpointer sender, const char* signal, Handler handler,
                 Result (Handler::*)(Arguments...) const) {
    using Data = ZLVUserData<Handler>;
    constexpr auto call = [](Arguments... arguments, gpointer data) noexcept -> Result {
      return Data::of(data)(arguments...);
    };
    GClosure* const closure =
        g_cclosure_new(G_CALLBACK(+call), Data::make(std::move(handler)),
                       [](gpointer data, GClosure* /*closure*/) { Data::free(data); });
    g_object_watch_closure(owner_, closure);
    g_signal_connect_closure(sender, signal, closure, FALSE);
  }

  GObject* owner_;
};
