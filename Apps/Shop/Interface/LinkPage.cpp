#include "Apps/Shop/Interface/LinkPage.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Apps/Shop/Interface/Widgets.h"

namespace {

struct Country {
  const char* name;
  const char* code;
};
// By name.
constexpr std::array<Country, 11> countries{{{"Choose your country", ""},
                                             {"Australia (+61)", "61"},
                                             {"Brazil (+55)", "55"},
                                             {"France (+33)", "33"},
                                             {"Germany (+49)", "49"},
                                             {"Japan (+81)", "81"},
                                             {"Mexico (+52)", "52"},
                                             {"Nigeria (+234)", "234"},
                                             {"Singapore (+65)", "65"},
                                             {"United Kingdom (+44)", "44"},
                                             {"United States (+1)", "1"}}};

GtkWidget* makeCountries() {
  std::array<const char*, countries.size() + 1> names{};
  std::ranges::transform(countries, names.begin(), &Country::name);
  return gtk_drop_down_new_from_strings(names.data());
}

GtkWidget* makeField(const char* name, GtkWidget* field) {
  GtkWidget* const label = makeLabel(name, "strong small");
  gtk_label_set_mnemonic_widget(GTK_LABEL(label), field);
  return makeBox(GTK_ORIENTATION_VERTICAL, 6, {label, field});
}

}  // namespace

LinkPage::LinkPage(Link link)
    : link_(std::move(link)),
      country_(makeCountries()),
      phone_(gtk_entry_new()),
      problem_(makeLabel("Choose your country and enter 6 to 14 digits, without its code.",
                         "wrong-text")) {
  gtk_entry_set_input_purpose(GTK_ENTRY(phone_), GTK_INPUT_PURPOSE_PHONE);
  gtk_entry_set_placeholder_text(GTK_ENTRY(phone_), "555 0123");
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
       makeBox(GTK_ORIENTATION_VERTICAL, 14,
               {makeField("Country", country_), makeField("Phone number", phone_), problem_},
               "card"),
       makeButton("Link wallet", "filled zolva", [this] { submit(); })});
}

void LinkPage::submit() {
  std::string digits;
  bool isNumber = true;
  for (const char character : std::string_view(gtk_editable_get_text(GTK_EDITABLE(phone_)))) {
    if (g_ascii_isdigit(character)) digits += character;
    // People write numbers in groups.
    isNumber = isNumber && (g_ascii_isdigit(character) ||
                            std::string_view(" -/()").find(character) != std::string_view::npos);
  }
  constexpr std::size_t shortest = 6;
  constexpr std::size_t longest = 14;
  const std::string code = countries.at(gtk_drop_down_get_selected(GTK_DROP_DOWN(country_))).code;
  if (isNumber && !code.empty() && shortest <= digits.size() && digits.size() <= longest) {
    return link_(digits, code);
  }
  setVisible(problem_, true);
  gtk_widget_add_css_class(phone_, "wrong");
  gtk_widget_grab_focus(phone_);
}
