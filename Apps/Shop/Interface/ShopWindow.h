#pragma once

#include <array>
#include <functional>
#include <memory>

#include <gtk/gtk.h>

#include "Apps/Shop/Checkout/Checkout.h"
#include "Apps/Shop/Interface/BasketPage.h"
#include "Apps/Shop/Interface/LinkPage.h"
#include "Apps/Shop/Interface/MenuPage.h"
#include "Apps/Shop/Interface/OrderPage.h"
#include "Apps/Shop/Interface/OrdersPage.h"
#include "Apps/Shop/Interface/WalletPage.h"

/// The shop's window: shows one page at a time, a spinner while a call runs, and what went wrong.
class ShopWindow {
 public:
  /// Becomes the view of `checkout` until the window is closed. After `patience` seconds the
  /// customer need not wait for a call any longer.
  ShopWindow(GtkApplication* application, Basket& basket, Orders& orders, Checkout& checkout,
             unsigned patience);

  void present() { gtk_window_present(window_); }

 private:
  enum class Page { Menu, Basket, Link, Wallet, Order, Orders };

  void buildPages();
  void buildHeader();
  void buildNotice();
  void buildBusyCard();
  void followWidth();
  void listen();

  void show(Page page);
  /// The wallet, or what it takes to have one here.
  void showWallet();
  void showOrder(Order& order);
  void setBusy(const char* activity);
  void offerToStop();
  void stopTimer();
  /// Something to read above the page, with a button when there is something to do about it.
  void showNotice(const Problem& problem, const char* label, std::function<void()> action);
  /// Leads the keyboard into the page that is shown.
  void focusPage();

  Checkout& checkout_;
  GtkWindow* window_;
  GtkWidget* header_ = nullptr;
  GtkWidget* back_ = nullptr;
  GtkWidget* navigation_ = nullptr;
  GtkWidget* brandIcon_ = nullptr;
  GtkWidget* notice_ = nullptr;
  GtkWidget* noticeTitle_ = nullptr;
  GtkWidget* noticeAdvice_ = nullptr;
  GtkWidget* noticeButton_ = nullptr;
  GtkWidget* dismiss_ = nullptr;
  std::function<void()> noticeAction_;
  GtkWidget* pageBox_ = nullptr;
  std::array<GtkWidget*, 6> pages_{};
  GtkWidget* busy_ = nullptr;
  GtkWidget* spinner_ = nullptr;
  GtkWidget* activity_ = nullptr;
  GtkWidget* takesLonger_ = nullptr;
  unsigned patience_;
  unsigned timer_ = 0;
  bool isWide_ = false;
  Page page_ = Page::Menu;

  MenuPage menuPage_;
  BasketPage basketPage_;
  LinkPage linkPage_;
  WalletPage walletPage_;
  OrderPage orderPage_;
  OrdersPage ordersPage_;
};
