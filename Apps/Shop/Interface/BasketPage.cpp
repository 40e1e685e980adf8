#include "Apps/Shop/Interface/BasketPage.h"

#include <string>

#include "Apps/Shop/Interface/Widgets.h"

BasketPage::BasketPage(Basket& basket, std::function<void()> pay)
    : basket_(basket),
      empty_(makeLabel("Nothing in it yet. What will it be?", "quiet")),
      sum_(makeWord("", "sum")),
      pay_(makeButton("Pay with Zolva", "filled zolva", std::move(pay))) {
  GtkWidget* const lines = makeBox(GTK_ORIENTATION_VERTICAL, 0, {}, "lines");
  for (std::size_t item = 0; item < ShopMenu.size(); ++item) {
    lines_[item] = makeLine(item);
    gtk_box_append(GTK_BOX(lines), lines_[item].row);
  }
  total_ = makeRow(makeLabel("Total", "strong"), sum_, "total");
  widget_ = makePage({makeTitle("Your basket"), empty_, lines, total_, pay_});
  basket.observe([this] { update(); });
  update();
}

BasketPage::Line BasketPage::makeLine(std::size_t item) {
  const std::string name = ShopMenu[item].name;
  const auto stepper = [&](const char* icon, const std::string& label, int change) {
    GtkWidget* const button =
        makeIconButton(icon, label.c_str(), [this, item, change] { basket_.add(item, change); });
    addClasses(button, "round");
    gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
    return button;
  };
  Line line{};
  line.quantity = makeWord("", "figure");
  gtk_label_set_xalign(GTK_LABEL(line.quantity), 0.5F);
  gtk_label_set_width_chars(GTK_LABEL(line.quantity), 2);
  line.price = makeLabel("", "quiet small");
  line.row =
      makeRow(makeBox(GTK_ORIENTATION_VERTICAL, 0, {makeLabel(name, "strong"), line.price}),
              makeBox(GTK_ORIENTATION_HORIZONTAL, 4,
                      {stepper("list-remove-symbolic", "One " + name + " less", -1), line.quantity,
                       stepper("list-add-symbolic", "One " + name + " more", 1)}));
  return line;
}

void BasketPage::update() {
  for (std::size_t item = 0; item < ShopMenu.size(); ++item) {
    const auto& line = lines_[item];
    const int quantity = basket_.quantity(item);
    setVisible(line.row, quantity > 0);
    setText(line.quantity, std::to_string(quantity));
    setText(line.price, moneyText(ShopMenu[item].price * quantity));
  }
  setText(sum_, moneyText(basket_.total()));
  setVisible(empty_, basket_.isEmpty());
  setVisible(total_, !basket_.isEmpty());
  setVisible(pay_, !basket_.isEmpty());
}
