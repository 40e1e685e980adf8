#pragma once

#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

/// How the engine is set up for a page that one pays on.
namespace ZLVWebView {

/// Of our own scripts: a page's neither see what is in it nor can send its messages.
inline constexpr const char* scriptWorld = "ZolvaCheckoutKit";

/// For our own scripts: whether the frame, and each that it is in, is of the page's own origin. One
/// that hides its origin ("null") is of nobody's.
inline constexpr const char* isOwnFrame =
    "Array.from(location.ancestorOrigins).every(each => each === origin && origin !== 'null')";

/// A view with processes and a session of its own, which keeps nothing, and with everything off
/// that such a page has no need of.
ZLVGObject<WebKitWebView> make();

/// Leaves only the menu's items for editing text: the others lead out of the view.
void restrictContextMenu(WebKitContextMenu* menu);

}  // namespace ZLVWebView
