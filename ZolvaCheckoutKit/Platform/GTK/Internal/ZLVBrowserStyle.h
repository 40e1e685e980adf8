#pragma once

/// The look of the browser's own widgets: their CSS classes and what these mean.
class ZLVBrowserStyle {
 public:
  static constexpr const char* browser = "zlv-browser";
  static constexpr const char* rising = "zlv-rising";
  static constexpr const char* host = "zlv-host";
  static constexpr const char* security = "zlv-security";
  static constexpr const char* notSecure = "zlv-not-secure";
  static constexpr const char* title = "zlv-title";
  static constexpr const char* connection = "zlv-connection";
  static constexpr const char* caption = "zlv-caption";
  static constexpr const char* explanation = "zlv-explanation";
  static constexpr const char* progress = "zlv-progress";
  static constexpr const char* problem = "zlv-problem";
  static constexpr const char* shade = "zlv-shade";
  static constexpr const char* dialog = "zlv-dialog";
  static constexpr const char* notice = "zlv-notice";

  /// Teaches the display the classes; again does nothing.
  static void install();
};
