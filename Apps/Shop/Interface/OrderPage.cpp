#include "Apps/Shop/Interface/OrderPage.h"

#include <string>
#include <utility>

#include "Apps/Shop/Interface/Widgets.h"

namespace {

struct Appearance {
  Order::State state;
  const char* icon;
  const char* style;
  const char* title;
};
constexpr Appearance appearances[] = {
    {Order::State::Sent, "content-loading-symbolic", "wait", "On its way"},
    {Order::State::Paid, "object-select-symbolic", "good", "Thank you!"},
    {Order::State::NotPaid, "process-stop-symbolic", "wait", "Not paid"},
    {Order::State::Uncertain, "dialog-question-symbolic", "wait",
     "We don't know yet whether you paid"},
};

const Appearance& appearance(Order::State state) {
  return appearances[static_cast<std::size_t>(state)];
}

GtkWidget* makeMark(Order::State state) {
  GtkWidget* const mark = gtk_image_new_from_icon_name(appearance(state).icon);
  gtk_image_set_pixel_size(GTK_IMAGE(mark), 32);
  gtk_widget_set_halign(mark, GTK_ALIGN_CENTER);
  addClasses(mark, "mark");
  addClasses(mark, appearance(state).style);
  return mark;
}

GtkWidget* centred(GtkWidget* label) {
  gtk_label_set_xalign(GTK_LABEL(label), 0.5F);
  gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
  return label;
}

GtkWidget* makeFact(const char* name, const std::string& value) {
  GtkWidget* const text = makeWord(value, "small");
  gtk_label_set_xalign(GTK_LABEL(text), 1);
  gtk_widget_set_hexpand(text, TRUE);
  return makeBox(GTK_ORIENTATION_HORIZONTAL, 12, {makeLabel(name, "quiet small"), text});
}

std::string leadText(const Order& order) {
  if (order.state == Order::State::Paid) return "Your order is paid. It is ready at the counter.";
  if (order.state != Order::State::Uncertain) return order.reason;
  return order.reason +
         " Check again in a moment, or pay again: the order keeps its number, so it is paid only "
         "once. Your basket is kept until we know.";
}

}  // namespace

const char* stateClass(Order::State state) { return appearance(state).style; }

OrderPage::OrderPage(Actions actions)
    : actions_(std::move(actions)),
      content_(makeBox(GTK_ORIENTATION_VERTICAL, 14, {})),
      widget_(makePage({content_})) {}

void OrderPage::setOrder(Order& order) {
  removeChildren(content_);
  GtkWidget* const receipt = makeBox(GTK_ORIENTATION_VERTICAL, 0, {}, "lines");
  for (const auto& line : order.lines) {
    gtk_box_append(GTK_BOX(receipt),
                   makeRow(makeLabel(std::to_string(line.quantity) + " × " + line.item->name),
                           makeWord(moneyText(line.price()), "figure")));
  }
  gtk_box_append(GTK_BOX(receipt),
                 makeRow(makeLabel("Total", "strong"), makeWord(moneyText(order.total()), "sum")));
  GtkWidget* const facts =
      makeBox(GTK_ORIENTATION_VERTICAL, 6,
              {makeFact("Order", order.id), makeFact("Time", order.time)}, "total");
  if (!order.transactionID.empty()) {
    gtk_box_append(GTK_BOX(facts), makeFact("Transaction", order.transactionID));
  }
  for (GtkWidget* part : {makeMark(order.state), centred(makeTitle(appearance(order.state).title)),
                          centred(makeLabel(leadText(order), "lead")),
                          makeBox(GTK_ORIENTATION_VERTICAL, 8, {receipt, facts}, "card")}) {
    gtk_box_append(GTK_BOX(content_), part);
  }
  addButtons(order);
}

void OrderPage::addButtons(Order& order) {
  const char* style = "filled";
  const auto add = [&](const char* text, std::function<void()> action) {
    gtk_box_append(GTK_BOX(content_), makeButton(text, style, std::move(action)));
    style = "outlined";
  };
  switch (order.state) {
    case Order::State::Paid:
      add("Back to the menu", actions_.backToMenu);
      break;
    case Order::State::Sent:
      break;
    case Order::State::NotPaid:
      add("Back to the basket", actions_.backToBasket);
      add("Check again", [this, &order] { actions_.check(order); });
      break;
    case Order::State::Uncertain:
      add("Check again", [this, &order] { actions_.check(order); });
      add("Pay again", [this, &order] { actions_.payAgain(order); });
      break;
  }
}
