#pragma once

// The mouse and the keyboard of the display that a test has to itself.

#include <string>

#include <gtk/gtk.h>

/// Types keys, named as xdotool does, such as "Escape" or "shift+Tab".
void pressKeys(const std::string& keys);

/// Clicks on a point of the window, given in its own coordinates.
void clickAt(GtkWindow* window, double x, double y);
