#include "Apps/Shop/Interface/LinkPage.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Apps/Shop/Interface/Widgets.h"

namespace {

/// The length of the country's code at the beginning of an international number.
std::size_t codeLength(std::string_view digits) {
  constexpr std::string_view twoDigits =
      "20 27 30 31 32 33 34 36 39 40 41 43 44 45 46 47 48 49 51 52 53 54 55 56 57 58 60 61 62 63 "
      "64 65 66 81 82 84 86 90 91 92 93 94 95 98";
  if (digits.starts_with('1') || digits.starts_with('7')) return 1;
  return twoDigits.find(digits.substr(0, 2)) == std::string_view::npos ? 3 : 2;
}

}  // namespace

LinkPage::LinkPage(Link link)
    : link_(std::move(link)),
      phone_(gtk_entry_new()),
      problem_(makeLabel("Begin with the country's code, as in +1 555 0123.", "wrong-text")) {
  gtk_entry_set_input_purpose(GTK_ENTRY(phone_), GTK_INPUT_PURPOSE_PHONE);
  gtk_entry_set_placeholder_text(GTK_ENTRY(phone_), "+1 555 0123");
  GtkWidget* const label = makeLabel("Phone number", "strong small");
  gtk_label_set_mnemonic_widget(GTK_LABEL(label), phone_);
  setVisible(problem_, false);
  onSignal(phone_, "activate", [this] { submit(); });
  onSignal(phone_, "changed", [this] {
    setVisible(problem_, false);
    gtk_widget_remove_css_class(phone_, "wrong");
  });
  widget_ = makePage(
      {makeTitle("Link your Zolva wallet"),
       makeLabel(
           "Once, then you pay here with a tap. You confirm the link on a page of your wallet.",
           "lead"),
       makeBox(GTK_ORIENTATION_VERTICAL, 6, {label, phone_, problem_}, "card"),
       makeButton("Link wallet", "filled zolva", [this] { submit(); })});
}

void LinkPage::submit() {
  const std::string_view text = gtk_editable_get_text(GTK_EDITABLE(phone_));
  std::string digits;
  std::ranges::copy_if(text, std::back_inserter(digits),
                       [](char character) { return g_ascii_isdigit(character); });
  constexpr std::size_t shortest = 7;
  constexpr std::size_t longest = 15;
  // People write numbers in groups.
  if (text.starts_with('+') &&
      text.find_first_not_of("0123456789 -/()", 1) == std::string_view::npos &&
      shortest <= digits.size() && digits.size() <= longest) {
    const auto length = codeLength(digits);
    return link_(digits.substr(length), digits.substr(0, length));
  }
  setVisible(problem_, true);
  gtk_widget_add_css_class(phone_, "wrong");
  gtk_widget_grab_focus(phone_);
}
