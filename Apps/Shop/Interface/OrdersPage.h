#pragma once

#include <functional>

#include <gtk/gtk.h>

#include "Apps/Shop/Model/Orders.h"

/// The orders of this session.
class OrdersPage {
 public:
  OrdersPage(Orders& orders, std::function<void(Order& order)> show);

  [[nodiscard]] GtkWidget* widget() const { return widget_; }
  void update();

 private:
  GtkWidget* makeOrder(Order& order);

  Orders& orders_;
  std::function<void(Order& order)> show_;
  GtkWidget* list_;
  GtkWidget* widget_;
};
