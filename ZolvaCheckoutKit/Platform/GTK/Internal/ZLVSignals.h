#pragma once

#include <utility>

#include <glib-object.h>

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
    connectAs(sender, signal, new Handler(std::move(handler)), &Handler::operator());
  }

  /// Ends all connections at once, also one whose handler runs right now.
  void disconnect() { g_object_run_dispose(owner_); }

 private:
  template <class Handler, class Result, class... Arguments>
  void connectAs(gpointer sender, const char* signal, Handler* handler,
                 Result (Handler::*)(Arguments...) const) {
    auto* const call = &Thunk<Handler, Result, Arguments...>::call;
    GClosure* closure = g_cclosure_new(
        reinterpret_cast<GCallback>(call), handler,
        [](gpointer data, GClosure* /*closure*/) { delete static_cast<Handler*>(data); });
    g_object_watch_closure(owner_, closure);
    g_signal_connect_closure(sender, signal, closure, FALSE);
  }

  template <class Handler, class Result, class... Arguments>
  struct Thunk {
    static Result call(Arguments... arguments, gpointer handler) noexcept {
      return (*static_cast<Handler*>(handler))(arguments...);
    }
  };

  GObject* owner_;
};
