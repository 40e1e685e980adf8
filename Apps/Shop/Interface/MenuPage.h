#pragma once

#include <functional>

#include <gtk/gtk.h>

#include "Apps/Shop/Interface/BasketPage.h"
#include "Apps/Shop/Model/Basket.h"

/// Everything that can be bought, with the basket beside it where there is room.
class MenuPage {
 public:
  struct Actions {
    std::function<void()> showBasket;
    std::function<void()> pay;
  };

  MenuPage(Basket& basket, Actions actions);

  [[nodiscard]] GtkWidget* widget() const { return widget_; }
  /// Whether there is room for the basket.
  void setWide(bool isWide);

 private:
  GtkWidget* makeCard(std::size_t item);
  void update();

  Basket& basket_;
  GtkWidget* cards_;
  BasketPage sidebar_;
  GtkWidget* widget_;
  GtkWidget* sidebarBox_;
  GtkWidget* basketBar_;
  GtkWidget* basketButton_;
  bool isWide_ = false;
};
