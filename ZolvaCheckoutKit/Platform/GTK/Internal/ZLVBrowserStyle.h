#pragma once

/// The look of the browser's own widgets: their CSS classes and what these mean.
namespace ZLVBrowserStyle {

inline constexpr const char* browser = "zlv-browser";
inline constexpr const char* rising = "zlv-rising";
inline constexpr const char* host = "zlv-host";
inline constexpr const char* security = "zlv-security";
inline constexpr const char* notSecure = "zlv-not-secure";
inline constexpr const char* title = "zlv-title";
inline constexpr const char* connection = "zlv-connection";
inline constexpr const char* caption = "zlv-caption";
inline constexpr const char* explanation = "zlv-explanation";
inline constexpr const char* progress = "zlv-progress";
inline constexpr const char* problem = "zlv-problem";
inline constexpr const char* shade = "zlv-shade";
inline constexpr const char* dialog = "zlv-dialog";
inline constexpr const char* notice = "zlv-notice";

/// Teaches the display the classes; again does nothing.
void install();

}  // namespace ZLVBrowserStyle
