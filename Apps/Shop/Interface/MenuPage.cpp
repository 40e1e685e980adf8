#include "Apps/Shop/Interface/MenuPage.h"

#include <string>

#include "Apps/Shop/Interface/Widgets.h"

MenuPage::MenuPage(Basket& basket, Actions actions)
    : basket_(basket), cards_(gtk_flow_box_new()), sidebar_(basket, std::move(actions.pay)) {
  auto* const flow = GTK_FLOW_BOX(cards_);
  gtk_flow_box_set_selection_mode(flow, GTK_SELECTION_NONE);
  gtk_flow_box_set_homogeneous(flow, TRUE);
  gtk_flow_box_set_row_spacing(flow, 12);
  gtk_flow_box_set_column_spacing(flow, 12);
  gtk_widget_set_valign(cards_, GTK_ALIGN_START);
  for (std::size_t item = 0; item < ShopMenu.size(); ++item) {
    gtk_flow_box_insert(flow, makeCard(item), -1);
    // The button in it takes the focus.
    gtk_widget_set_focusable(
        GTK_WIDGET(gtk_flow_box_get_child_at_index(flow, static_cast<int>(item))), FALSE);
  }
  GtkWidget* const scroller = makeScroller(
      makeBox(GTK_ORIENTATION_VERTICAL, 12, {makeTitle("What will it be today?"), cards_}, "menu"));

  basketButton_ = makeButton("", "filled", std::move(actions.showBasket));
  gtk_widget_set_hexpand(basketButton_, TRUE);
  basketBar_ = makeBox(GTK_ORIENTATION_HORIZONTAL, 0, {basketButton_}, "basket-bar");

  GtkWidget* const menu = makeBox(GTK_ORIENTATION_VERTICAL, 0, {scroller, basketBar_});
  gtk_widget_set_hexpand(menu, TRUE);
  constexpr int sidebarWidth = 340;
  sidebarBox_ = makeBox(GTK_ORIENTATION_VERTICAL, 0, {sidebar_.widget()}, "beside");
  gtk_widget_set_size_request(sidebarBox_, sidebarWidth, -1);
  gtk_widget_set_hexpand(sidebarBox_, FALSE);
  widget_ = makeBox(GTK_ORIENTATION_HORIZONTAL, 0, {menu, sidebarBox_});

  basket.observe([this] { update(); });
  setWide(false);
}

GtkWidget* MenuPage::makeCard(std::size_t item) {
  const auto& [id, name, description, category, price] = ShopMenu[item];
  constexpr int pictureHeight = 104;
  GtkWidget* const badge = makeWord("", "badge");
  gtk_label_set_xalign(GTK_LABEL(badge), 0.5F);
  gtk_widget_set_halign(badge, GTK_ALIGN_END);
  gtk_widget_set_valign(badge, GTK_ALIGN_START);
  GtkWidget* const picture = gtk_overlay_new();
  gtk_overlay_set_child(GTK_OVERLAY(picture), makePicture(id, pictureHeight));
  gtk_overlay_add_overlay(GTK_OVERLAY(picture), badge);

  GtkWidget* const text =
      makeBox(GTK_ORIENTATION_VERTICAL, 2,
              {makeLabel(name, "strong"), makeLabel(description, "quiet small")}, "text");
  gtk_widget_set_vexpand(text, TRUE);
  GtkWidget* const add = makeIconButton("list-add-symbolic", (std::string("Add ") + name).c_str(),
                                        [this, item] { basket_.add(item, 1); });
  addClasses(add, "round add");

  const auto showCount = [this, item, badge] {
    const int count = basket_.quantity(item);
    setText(badge, std::to_string(count));
    setVisible(badge, count > 0);
  };
  basket_.observe(showCount);
  showCount();
  return makeBox(GTK_ORIENTATION_VERTICAL, 0,
                 {picture, text, makeRow(makeWord(moneyText(price), "figure"), add, "foot")},
                 "card item");
}

void MenuPage::setWide(bool isWide) {
  isWide_ = isWide;
  const unsigned columns = isWide ? 4 : 2;
  gtk_flow_box_set_min_children_per_line(GTK_FLOW_BOX(cards_), columns);
  gtk_flow_box_set_max_children_per_line(GTK_FLOW_BOX(cards_), columns);
  update();
}

void MenuPage::update() {
  setVisible(sidebarBox_, isWide_);
  setVisible(basketBar_, !isWide_ && !basket_.isEmpty());
  gtk_button_set_label(
      GTK_BUTTON(basketButton_),
      ("Basket (" + std::to_string(basket_.count()) + "), " + moneyText(basket_.total())).c_str());
}
