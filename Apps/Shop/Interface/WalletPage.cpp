#include "Apps/Shop/Interface/WalletPage.h"

#include <algorithm>
#include <string>

#include "Apps/Shop/Interface/Widgets.h"

namespace {

/// The server's "PAY_LATER" as "Pay later".
std::string readableName(std::string name) {
  std::ranges::replace(name, '_', ' ');
  std::transform(name.begin() + (name.empty() ? 0 : 1), name.end(), name.begin() + 1,
                 [](char letter) { return g_ascii_tolower(letter); });
  return name;
}

}  // namespace

WalletPage::WalletPage(Basket& basket, Actions actions)
    : basket_(basket),
      actions_(std::move(actions)),
      phone_(makeLabel("", "strong")),
      optionBox_(makeBox(GTK_ORIENTATION_VERTICAL, 10, {})),
      sum_(makeWord("", "sum")) {
  pay_ = makeButton("", "filled zolva", [this] {
    const auto chosen = std::ranges::find_if(buttons_, [](GtkWidget* button) {
      return gtk_check_button_get_active(GTK_CHECK_BUTTON(button)) == TRUE;
    });
    if (chosen == buttons_.end()) return;
    actions_.pay(options_[static_cast<std::size_t>(chosen - buttons_.begin())]);
  });
  payment_ =
      makeBox(GTK_ORIENTATION_VERTICAL, 14, {makeRow(makeLabel("To pay", "strong"), sum_), pay_});
  widget_ = makePage({makeTitle("Your wallet"),
                      makeRow(makeBox(GTK_ORIENTATION_VERTICAL, 0,
                                      {phone_, makeLabel("Zolva wallet", "quiet small")}),
                              makeWord("Linked", "pill good"), "card"),
                      makeLabel("Ways to pay", "strong"), optionBox_, payment_,
                      makeButton("Unlink wallet", "outlined", [this] { actions_.unlink(); })});
  basket.observe([this] { update(); });
}

void WalletPage::setAccount(const LinkedAccount& account) {
  setText(phone_, account.phone);
  removeChildren(optionBox_);
  buttons_.clear();
  shortages_.clear();
  options_ = account.options;
  for (const auto& option : options_) gtk_box_append(GTK_BOX(optionBox_), makeOption(option));
  if (options_.empty()) {
    gtk_box_append(GTK_BOX(optionBox_),
                   makeLabel("Your wallet has nothing to pay with here.", "quiet"));
  }
  update();
}

GtkWidget* WalletPage::makeOption(const PaymentOption& option) {
  const auto name = readableName(option.name);
  GtkWidget* const button = gtk_check_button_new();
  gtk_check_button_set_child(
      GTK_CHECK_BUTTON(button),
      makeRow(makeLabel(name, "strong"), makeWord(moneyText(option.balance), "figure")));
  setAccessibleName(button, name + ", " + moneyText(option.balance));
  if (!buttons_.empty()) {
    gtk_check_button_set_group(GTK_CHECK_BUTTON(button), GTK_CHECK_BUTTON(buttons_.front()));
  }
  onSignal(button, "toggled", [this] { update(); });
  buttons_.push_back(button);
  shortages_.push_back(makeLabel("", "wrong-text"));
  return makeBox(GTK_ORIENTATION_VERTICAL, 0, {button, shortages_.back()}, "card option");
}

/// Offers what the basket costs to the options that hold as much.
void WalletPage::update() {
  const auto total = basket_.total();
  setText(sum_, moneyText(total));
  gtk_button_set_label(GTK_BUTTON(pay_), ("Pay " + moneyText(total)).c_str());
  setVisible(payment_, !basket_.isEmpty());
  GtkWidget* chosen = nullptr;
  GtkWidget* first = nullptr;
  for (std::size_t index = 0; index < buttons_.size(); ++index) {
    GtkWidget* const button = buttons_[index];
    const auto missing = total - options_[index].balance;
    const bool isEnough = missing <= 0;
    setText(shortages_[index], "You need " + moneyText(missing) + " more");
    setVisible(shortages_[index], !isEnough);
    setSensitive(button, isEnough);
    if (!isEnough) continue;
    if (first == nullptr) first = button;
    if (gtk_check_button_get_active(GTK_CHECK_BUTTON(button)) == TRUE) chosen = button;
  }
  setSensitive(pay_, first != nullptr);
  if (chosen == nullptr && first != nullptr) {
    gtk_check_button_set_active(GTK_CHECK_BUTTON(first), TRUE);
  }
}
