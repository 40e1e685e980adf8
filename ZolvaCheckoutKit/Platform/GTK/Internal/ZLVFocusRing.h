#pragma once

#include <gtk/gtk.h>

/// A vertical box that the Tab key does not lead out of: after its last widget comes its first. A
/// key is only for the widget that had the focus when it was pressed.
namespace ZLVFocusRing {

/// A floating reference, as of any new widget.
GtkWidget* make(GtkAccessibleRole role);

}  // namespace ZLVFocusRing
