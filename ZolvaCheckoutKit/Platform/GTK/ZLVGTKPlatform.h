#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/Platform/ZLVViewController.h>
#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

using GtkApplication = struct _GtkApplication;
using GtkWindow = struct _GtkWindow;

/// What the host does itself instead of leaving it to the backend. Called on the main thread, from
/// the main loop.
struct ZLVGTKHandlers {
  /// Opens a URL that is not http or https and that a page led to; false when it was not taken.
  /// Absent: the system's handler of the scheme is started. Must not throw.
  std::function<bool(const ZLVURL& url)> openURL = {};
  /// Receives what a completion of the host throws: GTK's main loop is C, which no exception can
  /// pass through. Absent: the process ends as after any exception that nobody catches. Must not
  /// throw.
  std::function<void(std::exception_ptr exception)> uncaughtException = {};
};

/// The backend for GTK 4: pages are shown by WebKitGTK inside the host's own window, completions
/// run in the GLib main loop; HTTP, log and device facts are those of `ZLVLinuxPlatform`.
///
/// ```cpp
/// ZLVPlatform::install(ZLVGTKPlatform::platformWithApplication(
///     application, {.applicationName = "Shop", .applicationVersion = "2.1"}));
/// auto viewController = ZLVGTKPlatform::viewControllerForWindow(window);
/// ```
///
/// The browser covers the content of the window until it is closed, keeps nothing on disk, and
/// trusts `ZLVLinuxOptions::CAFile` as the HTTP calls do. Its texts and what the library says of
/// errors (`ZLVError::localizedDescription`) are translated: the catalogues of the gettext domain
/// "ZolvaCheckoutKit" are looked for in the prefix that the library is in by now, in the program's
/// own, and where the library was to be installed; a host that ships them elsewhere calls
/// bindtextdomain(3) after `platformWithApplication`. Several pages over one window, and what the
/// host itself puts over a page, may end in any order.
///
/// The engine starts while a link or a charge is on its way, and is let go of when no page has come
/// within a minute. Pages are drawn without the graphics processor: they have no WebGL, and
/// transforms in three dimensions are flat.
///
/// Screen readers find the bar and whatever the browser says itself, but not what the page holds
/// before GTK 4.14 and a WebKitGTK (2.44 or later) built with that: an older GTK has no place for
/// the tree of another process, and the page is an empty panel to them.
namespace ZLVGTKPlatform {

/// A platform whose parts the host may replace before it installs it. Main thread, once, before
/// or after `application` has started, best before other threads are: where the web engine's
/// sandbox cannot work, the environment is changed. `application` is not kept alive.
/// Throws `ZLVProgrammingFault` when there is no application or no application version.
[[nodiscard]] ZLV_EXPORT ZLVPlatform platformWithApplication(GtkApplication* application,
                                                             ZLVLinuxOptions options,
                                                             ZLVGTKHandlers handlers = {});

/// Runs the main loop until nothing of the library's is under way: every call has completed, the
/// page that it showed is gone, and every usage event was sent or has failed. What a completion
/// starts is waited for too. Returns false when something is still under way after `limit`. Call
/// it after g_application_run(), or the last events are lost with the process. Main thread.
ZLV_EXPORT bool runUntilIdle(std::chrono::milliseconds limit);

/// The view controller of a window, made on the first call and kept until the window goes, which
/// also ends what it presents. The window's own widgets stay as they are. It is the window's root
/// view controller, or, once it is pushed on a `ZLVNavigationController`, that one is. Main
/// thread, after GTK's start. Throws `ZLVProgrammingFault` when there is no window.
[[nodiscard]] ZLV_EXPORT std::shared_ptr<ZLVViewController> viewControllerForWindow(
    GtkWindow* window);

}  // namespace ZLVGTKPlatform
