#include "Apps/Shop/Interface/ShopWindow.h"

#include <algorithm>
#include <string>
#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>

#include "Apps/Shop/Interface/Style.h"
#include "Apps/Shop/Interface/Widgets.h"

namespace {

/// From this width on the basket fits beside the menu.
constexpr int WideWindow = 760;

/// A comfortable size, and on a phone all there is.
void setDefaultSize(GtkWindow* window) {
  GdkRectangle room{0, 0, 1000, 720};
  GListModel* const monitors = gdk_display_get_monitors(gdk_display_get_default());
  if (auto* const monitor = static_cast<GdkMonitor*>(g_list_model_get_item(monitors, 0))) {
    GdkRectangle screen;
    gdk_monitor_get_geometry(monitor, &screen);
    room.width = std::min(room.width, screen.width);
    room.height = std::min(room.height, screen.height);
    g_object_unref(monitor);
  }
  gtk_window_set_default_size(window, room.width, room.height);
}

GtkWidget* makeBrandIcon() {
  constexpr int size = 24;
  GtkWidget* const icon = gtk_image_new_from_resource(
      (std::string(ShopResources) + "com.example.CornerCoffee.svg").c_str());
  gtk_image_set_pixel_size(GTK_IMAGE(icon), size);
  gtk_widget_set_margin_start(icon, 10);  // in line with the page
  return icon;
}

}  // namespace

ShopWindow::ShopWindow(GtkApplication* application, Basket& basket, Orders& orders,
                       Checkout& checkout, unsigned patience)
    : checkout_(checkout),
      window_(GTK_WINDOW(gtk_application_window_new(application))),
      patience_(patience),
      menuPage_(basket,
                {.showBasket = [this] { show(Page::Basket); }, .pay = [this] { showWallet(); }}),
      basketPage_(basket, [this] { showWallet(); }),
      linkPage_([this](const auto& phoneNumber, const auto& countryCode) {
        checkout_.link(phoneNumber, countryCode);
      }),
      walletPage_(basket, {.pay = [this](const PaymentOption& option) { checkout_.pay(option); },
                           .unlink =
                               [this] {
                                 showNotice(
                                     {"Unlink your wallet?", "You can link it again at any time."},
                                     "Unlink", [this] { checkout_.unlink(); });
                               }}),
      orderPage_({.backToMenu = [this] { show(Page::Menu); },
                  .backToBasket = [this] { show(isWide_ ? Page::Menu : Page::Basket); },
                  .check = [this](Order& order) { checkout_.check(order); },
                  .payAgain = [this](Order& order) { checkout_.payAgain(order); }}),
      ordersPage_(orders, [this](Order& order) { showOrder(order); }) {
  gtk_window_set_title(window_, "Corner Coffee");
  gtk_widget_add_css_class(GTK_WIDGET(window_), "shop");
  setDefaultSize(window_);
  // The header is part of the content, so that a page of the wallet covers it, too.
  GtkWidget* const noTitlebar = gtk_label_new(nullptr);
  setVisible(noTitlebar, false);
  gtk_window_set_titlebar(window_, noTitlebar);

  buildPages();
  buildHeader();
  buildNotice();
  buildBusyCard();
  GtkWidget* const content = gtk_overlay_new();
  gtk_overlay_set_child(GTK_OVERLAY(content), pageBox_);
  gtk_overlay_add_overlay(GTK_OVERLAY(content), busy_);
  gtk_window_set_child(window_, makeBox(GTK_ORIENTATION_VERTICAL, 0, {header_, notice_, content}));
  followWidth();
  listen();
  show(Page::Menu);
}

/// The hidden pages are hidden from screen readers, too, which a stack would not do.
void ShopWindow::buildPages() {
  pages_ = {menuPage_.widget(),   basketPage_.widget(), linkPage_.widget(),
            walletPage_.widget(), orderPage_.widget(),  ordersPage_.widget()};
  pageBox_ = makeBox(GTK_ORIENTATION_VERTICAL, 0, {});
  for (GtkWidget* page : pages_) {
    gtk_widget_set_vexpand(page, TRUE);
    gtk_box_append(GTK_BOX(pageBox_), page);
  }
}

void ShopWindow::buildHeader() {
  header_ = gtk_header_bar_new();
  auto* const header = GTK_HEADER_BAR(header_);
  gtk_header_bar_set_decoration_layout(header, ":close");
  brandIcon_ = makeBrandIcon();
  // In the middle there would be half as much room for it.
  gtk_header_bar_set_title_widget(header, makeWord(""));
  back_ = makeIconButton("go-previous-symbolic", "Back", [this] { show(Page::Menu); });
  gtk_header_bar_pack_start(header, back_);
  gtk_header_bar_pack_start(header, makeBox(GTK_ORIENTATION_HORIZONTAL, 8,
                                            {brandIcon_, makeWord("Corner Coffee", "brand")}));
  navigation_ =
      makeBox(GTK_ORIENTATION_HORIZONTAL, 2,
              {makeIconButton("document-open-recent-symbolic", "Orders",
                              [this] {
                                ordersPage_.update();
                                show(Page::Orders);
                              }),
               makeIconButton("avatar-default-symbolic", "Wallet", [this] { showWallet(); })});
  gtk_header_bar_pack_end(header, navigation_);
  gtk_header_bar_pack_end(header, makeIconButton("weather-clear-night-symbolic", "Light or dark",
                                                 [] { toggleDarkStyle(); }));
}

void ShopWindow::buildNotice() {
  noticeTitle_ = makeLabel("", "strong");
  noticeAdvice_ = makeLabel("", "text small");
  noticeButton_ = makeButton("", "outlined", [this] {
    setVisible(notice_, false);
    if (const auto action = std::exchange(noticeAction_, {})) action();
  });
  dismiss_ = makeIconButton("window-close-symbolic", "Dismiss", [this] {
    setVisible(notice_, false);
    focusPage();
  });
  addClasses(dismiss_, "flat");
  gtk_widget_set_valign(dismiss_, GTK_ALIGN_START);
  gtk_widget_set_halign(noticeButton_, GTK_ALIGN_START);
  GtkWidget* const text =
      makeBox(GTK_ORIENTATION_VERTICAL, 6, {noticeTitle_, noticeAdvice_, noticeButton_});
  gtk_widget_set_hexpand(text, TRUE);
  auto* const message =
      GTK_WIDGET(g_object_new(GTK_TYPE_BOX, "accessible-role", GTK_ACCESSIBLE_ROLE_ALERT, nullptr));
  addClasses(message, "notice bad");
  gtk_box_append(GTK_BOX(message), text);
  gtk_box_append(GTK_BOX(message), dismiss_);
  notice_ = makeColumn(message);
  setVisible(notice_, false);
}

void ShopWindow::buildBusyCard() {
  spinner_ = gtk_spinner_new();
  activity_ = makeWord("", "strong");
  gtk_widget_set_halign(activity_, GTK_ALIGN_CENTER);
  gtk_widget_set_size_request(spinner_, 32, 32);
  takesLonger_ =
      makeBox(GTK_ORIENTATION_VERTICAL, 12,
              {makeLabel("This takes longer than usual.", "quiet"),
               makeButton("Stop waiting", "outlined", [this] { checkout_.stopWaiting(); })});
  busy_ = makeBox(GTK_ORIENTATION_VERTICAL, 12, {spinner_, activity_, takesLonger_}, "card busy");
  gtk_widget_set_halign(busy_, GTK_ALIGN_CENTER);
  gtk_widget_set_valign(busy_, GTK_ALIGN_CENTER);
  setVisible(busy_, false);
}

void ShopWindow::followWidth() {
  gtk_widget_realize(GTK_WIDGET(window_));
  GdkSurface* const surface = gtk_native_get_surface(GTK_NATIVE(window_));
  onSignal(surface, "layout", [this, surface] {
    const bool isWide = gdk_surface_get_width(surface) >= WideWindow;
    if (isWide == std::exchange(isWide_, isWide)) return;
    menuPage_.setWide(isWide);
    if (isWide && page_ == Page::Basket) show(Page::Menu);
  });
}

void ShopWindow::listen() {
  checkout_.setViewController(ZLVGTKPlatform::viewControllerForWindow(window_));
  checkout_.setEvents(
      {.busy = [this](const char* activity) { setBusy(activity); },
       .accountChanged =
           [this] {
             if (const auto& account = checkout_.account()) {
               walletPage_.setAccount(*account);
               if (page_ == Page::Link) show(Page::Wallet);
             } else if (page_ == Page::Wallet) {
               show(Page::Link);
             }
           },
       .orderChanged = [this](Order& order) { showOrder(order); },
       .failed = [this](const Problem& problem,
                        auto retry) { showNotice(problem, "Retry", std::move(retry)); }});
  onSignal(window_, "destroy", [this] {
    checkout_.setEvents({});
    stopTimer();
  });
}

void ShopWindow::show(Page page) {
  page_ = page;
  for (std::size_t index = 0; index < pages_.size(); ++index) {
    setVisible(pages_[index], index == static_cast<std::size_t>(page));
  }
  setVisible(back_, page != Page::Menu);
  setVisible(brandIcon_, page == Page::Menu || isWide_);
  setVisible(notice_, false);
  focusPage();
}

void ShopWindow::showWallet() {
  show(checkout_.account() ? Page::Wallet : Page::Link);
  checkout_.refresh();
}

void ShopWindow::showOrder(Order& order) {
  orderPage_.setOrder(order);
  show(Page::Order);
}

void ShopWindow::setBusy(const char* activity) {
  const bool isBusy = activity != nullptr;
  setText(activity_, isBusy ? activity : "");
  gtk_spinner_set_spinning(GTK_SPINNER(spinner_), static_cast<gboolean>(isBusy));
  setVisible(busy_, isBusy);
  setVisible(takesLonger_, false);
  // What closes the window stays of use.
  for (GtkWidget* part : {pageBox_, back_, navigation_}) setSensitive(part, !isBusy);
  stopTimer();
  if (!isBusy) return focusPage();
  setVisible(notice_, false);
  const auto offer = [](gpointer self) -> gboolean {
    static_cast<ShopWindow*>(self)->offerToStop();
    return G_SOURCE_REMOVE;
  };
  timer_ = g_timeout_add_seconds(patience_, offer, this);
}

void ShopWindow::offerToStop() {
  timer_ = 0;
  setVisible(takesLonger_, true);
  gtk_widget_child_focus(takesLonger_, GTK_DIR_TAB_FORWARD);
}

void ShopWindow::stopTimer() {
  if (timer_ != 0) g_source_remove(std::exchange(timer_, 0));
}

void ShopWindow::showNotice(const Problem& problem, const char* label,
                            std::function<void()> action) {
  setText(noticeTitle_, problem.title);
  setText(noticeAdvice_, problem.advice);
  gtk_button_set_label(GTK_BUTTON(noticeButton_), label);
  noticeAction_ = std::move(action);
  setVisible(noticeButton_, noticeAction_ != nullptr);
  setVisible(notice_, true);
  // To its dismissal, so that a key pressed twice does nothing that cannot be undone.
  gtk_widget_grab_focus(dismiss_);
}

void ShopWindow::focusPage() {
  gtk_widget_child_focus(pages_[static_cast<std::size_t>(page_)], GTK_DIR_TAB_FORWARD);
}
