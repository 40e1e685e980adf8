#pragma once

#include <functional>
#include <initializer_list>
#include <string>

#include <gtk/gtk.h>

// Small things that every page is made of.

/// Calls `handler` for each emission of a signal that wants no answer, as long as `object` lives.
void onSignal(gpointer object, const char* signal, std::function<void()> handler);

/// Texts a page shows; several style classes are given as one text, with spaces between.
GtkWidget* makeLabel(const std::string& text, const char* classes = "");
/// A label that stays in one line, and is cut in its middle where there is no room.
GtkWidget* makeWord(const std::string& text, const char* classes = "");
/// As a heading for screen readers, too.
GtkWidget* makeTitle(const std::string& text);
void setText(GtkWidget* label, const std::string& text);

GtkWidget* makeButton(const std::string& text, const char* classes, std::function<void()> clicked);
GtkWidget* makeIconButton(const char* icon, const char* name, std::function<void()> clicked);
/// What a screen reader says for a widget that shows no text of its own.
void setAccessibleName(GtkWidget* widget, const std::string& name);
void addClasses(GtkWidget* widget, const char* classes);

GtkWidget* makeBox(GtkOrientation orientation, int spacing,
                   std::initializer_list<GtkWidget*> children, const char* classes = "");
/// A row with its first widget at the start and its second at the end.
GtkWidget* makeRow(GtkWidget* start, GtkWidget* end, const char* classes = "");
void removeChildren(GtkWidget* box);

void setVisible(GtkWidget* widget, bool isVisible);
void setSensitive(GtkWidget* widget, bool isSensitive);

/// `child`, centred and no wider than text should be.
GtkWidget* makeColumn(GtkWidget* child);
/// `child` in what scrolls up and down.
GtkWidget* makeScroller(GtkWidget* child);
/// A column of widgets that scrolls.
GtkWidget* makePage(std::initializer_list<GtkWidget*> children);

/// The picture of something on the menu.
GtkWidget* makePicture(const std::string& item, int height);
