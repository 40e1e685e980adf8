#pragma once

#include <array>
#include <functional>

#include <gtk/gtk.h>

#include "Apps/Shop/Model/Basket.h"

/// What is in the basket, and the way to pay for it.
class BasketPage {
 public:
  BasketPage(Basket& basket, std::function<void()> pay);

  [[nodiscard]] GtkWidget* widget() const { return widget_; }

 private:
  struct Line {
    GtkWidget* row;
    GtkWidget* quantity;
    GtkWidget* price;
  };

  Line makeLine(std::size_t item);
  void update();

  Basket& basket_;
  std::array<Line, ShopMenu.size()> lines_{};
  GtkWidget* widget_;
  GtkWidget* empty_;
  GtkWidget* total_;
  GtkWidget* sum_;
  GtkWidget* pay_;
};
