#pragma once

#include <functional>
#include <string>

#include <gtk/gtk.h>

/// Asks for the phone number of the wallet to link.
class LinkPage {
 public:
  using Link = std::function<void(const std::string& phoneNumber, const std::string& countryCode)>;

  explicit LinkPage(Link link);

  [[nodiscard]] GtkWidget* widget() const { return widget_; }

 private:
  void submit();

  Link link_;
  GtkWidget* phone_;
  GtkWidget* problem_;
  GtkWidget* widget_;
};
