#pragma once

#include <functional>

#include <gtk/gtk.h>

#include "Apps/Shop/Checkout/Checkout.h"
#include "Apps/Shop/Model/Basket.h"

/// The linked wallet: what can be paid with, the payment itself, and unlinking.
class WalletPage {
 public:
  struct Actions {
    std::function<void(const PaymentOption& option)> pay;
    std::function<void()> unlink;
  };

  WalletPage(Basket& basket, Actions actions);

  [[nodiscard]] GtkWidget* widget() const { return widget_; }
  void setAccount(const LinkedAccount& account);

 private:
  GtkWidget* makeOption(const PaymentOption& option);
  void update();

  Basket& basket_;
  Actions actions_;
  std::vector<PaymentOption> options_;
  std::vector<GtkWidget*> buttons_;
  std::vector<GtkWidget*> shortages_;
  GtkWidget* phone_;
  GtkWidget* optionBox_;
  GtkWidget* payment_;
  GtkWidget* sum_;
  GtkWidget* pay_;
  GtkWidget* widget_;
};
