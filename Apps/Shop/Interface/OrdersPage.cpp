#include "Apps/Shop/Interface/OrdersPage.h"

#include <string>
#include <utility>

#include "Apps/Shop/Interface/OrderPage.h"
#include "Apps/Shop/Interface/Widgets.h"

OrdersPage::OrdersPage(Orders& orders, std::function<void(Order& order)> show)
    : orders_(orders),
      show_(std::move(show)),
      list_(makeBox(GTK_ORIENTATION_VERTICAL, 10, {})),
      widget_(makePage({makeTitle("Your orders"), list_})) {}

void OrdersPage::update() {
  removeChildren(list_);
  for (auto& order : orders_.all()) gtk_box_append(GTK_BOX(list_), makeOrder(order));
  if (orders_.all().empty()) {
    gtk_box_append(GTK_BOX(list_), makeLabel("You have not ordered anything yet.", "quiet"));
  }
}

GtkWidget* OrdersPage::makeOrder(Order& order) {
  std::string things;
  for (const auto& [item, quantity] : order.lines) {
    if (!things.empty()) things += ", ";
    things += (quantity > 1 ? std::to_string(quantity) + " × " : "") + item->name;
  }
  GtkWidget* const pill = makeWord(stateName(order.state), "pill");
  addClasses(pill, stateClass(order.state));
  gtk_widget_set_halign(pill, GTK_ALIGN_END);
  GtkWidget* const sum = makeWord(moneyText(order.total()), "figure");
  gtk_widget_set_halign(sum, GTK_ALIGN_END);

  GtkWidget* const button = gtk_button_new();
  gtk_button_set_child(GTK_BUTTON(button),
                       makeRow(makeBox(GTK_ORIENTATION_VERTICAL, 2,
                                       {makeLabel(things, "strong"),
                                        makeLabel(order.id + ", " + order.time, "quiet small")}),
                               makeBox(GTK_ORIENTATION_VERTICAL, 4, {sum, pill})));
  addClasses(button, "card order");
  setAccessibleName(button,
                    things + ", " + moneyText(order.total()) + ", " + stateName(order.state));
  onSignal(button, "clicked", [this, &order] { show_(order); });
  return button;
}
