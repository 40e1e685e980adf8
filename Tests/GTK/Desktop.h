#pragma once

// The mouse and the keyboard of the display that a test has to itself.

#include <string>

#include <gtk/gtk.h>

/// Types keys, named as xdotool does, such as "Escape" or "shift+Tab".
void pressKeys(const std::string& keys);

/// Keeps one key down, or no more, for others to be typed with it.
void holdKey(const std::string& key, bool isDown);

/// Clicks on a point of the window, given in its own coordinates.
void clickAt(GtkWindow* window, double x, double y);
