#pragma once

#include <functional>

#include <gtk/gtk.h>

#include "Apps/Shop/Model/Orders.h"

/// One order: its receipt, or what the customer can do about it.
class OrderPage {
 public:
  struct Actions {
    std::function<void()> backToMenu;
    std::function<void()> backToBasket;
    std::function<void(Order& order)> check;
    std::function<void(Order& order)> payAgain;
  };

  explicit OrderPage(Actions actions);

  [[nodiscard]] GtkWidget* widget() const { return widget_; }
  /// `order` outlives the page.
  void setOrder(Order& order);

 private:
  void addButtons(Order& order);

  Actions actions_;
  GtkWidget* content_;
  GtkWidget* widget_;
};

/// The style class of a state's colours.
const char* stateClass(Order::State state);
