#pragma once

/// The sandbox that WebKit runs its processes in.
namespace ZLVWebSandbox {

/// Tries it out, and tells WebKit to do without, with a warning of GLib's, where it cannot work:
/// in a container that may not make namespaces WebKit would end this process instead. Before the
/// first web view; changes the environment, so best while the process has one thread.
void prepare();

}  // namespace ZLVWebSandbox
