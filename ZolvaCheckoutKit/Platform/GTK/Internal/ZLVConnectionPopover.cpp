#include <memory>

#include <openssl/x509.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserStyle.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVConnectionPopover.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>

namespace {

std::string nameEntry(const X509_NAME* name, int kind) {
  const int place = X509_NAME_get_index_by_NID(name, kind, -1);
  if (place < 0) return {};
  unsigned char* bytes = nullptr;
  const int size =
      ASN1_STRING_to_UTF8(&bytes, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(name, place)));
  if (size < 0) return {};
  const ZLVGText valid(
      g_utf8_make_valid(static_cast<const char*>(static_cast<void*>(bytes)), size));
  OPENSSL_free(bytes);
  return valid.get();
}

/// Who that is: the organisation, or what there is instead of it.
std::string displayed(const X509_NAME* name) {
  for (const int kind : {NID_organizationName, NID_commonName}) {
    if (auto text = nameEntry(name, kind); !text.empty()) return text;
  }
  return {};
}

struct Names {
  std::string owner;
  std::string issuer;
};

Names namesIn(GTlsCertificate* certificate) {
  GByteArray* encoded = nullptr;
  g_object_get(certificate, "certificate", &encoded, nullptr);
  if (encoded == nullptr) return {};
  const unsigned char* bytes = encoded->data;
  const ZLVGOwned<X509, X509_free> decoded(
      d2i_X509(nullptr, &bytes, static_cast<long>(encoded->len)));
  g_byte_array_unref(encoded);
  if (!decoded) return {};
  return {displayed(X509_get_subject_name(decoded.get())),
          displayed(X509_get_issuer_name(decoded.get()))};
}

/// The day, as it is written here.
std::string endOf(GTlsCertificate* certificate) {
  using Time = ZLVGOwned<GDateTime, g_date_time_unref>;
  const Time end(g_tls_certificate_get_not_valid_after(certificate));
  const Time local(end ? g_date_time_to_local(end.get()) : nullptr);
  const ZLVGText text(local ? g_date_time_format(local.get(), "%x") : nullptr);
  return text ? text.get() : "";
}

const char* titleFor(const ZLVWebPage::State& state) {
  if (state.security == ZLVSecurity::Secure) return ZLVLocalized("Secure connection");
  return state.certificate ? ZLVLocalized("Not secure") : ZLVLocalized("Not encrypted");
}

GtkWidget* makeLabel(const char* text, const char* style) {
  GtkWidget* const label = gtk_label_new(text);
  constexpr int readableWidth = 32;
  gtk_label_set_max_width_chars(GTK_LABEL(label), readableWidth);
  gtk_label_set_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  if (style != nullptr) gtk_widget_add_css_class(label, style);
  return label;
}

}  // namespace

ZLVConnectionPopover::ZLVConnectionPopover()
    : popover_(ZLVGObject<GtkWidget>::retain(gtk_popover_new())),
      box_(GTK_WIDGET(g_object_new(GTK_TYPE_BOX, "orientation", GTK_ORIENTATION_VERTICAL,
                                   "accessible-role", GTK_ACCESSIBLE_ROLE_GROUP, "focusable", TRUE,
                                   nullptr))) {
  gtk_widget_add_css_class(box_, ZLVBrowserStyle::connection);
  gtk_popover_set_child(GTK_POPOVER(popover_.get()), box_);
}

void ZLVConnectionPopover::setState(const ZLVWebPage::State& state) {
  while (GtkWidget* const child = gtk_widget_get_first_child(box_)) {
    gtk_box_remove(GTK_BOX(box_), child);
  }
  const auto add = [this](const std::string& text, const char* style) {
    gtk_box_append(GTK_BOX(box_), makeLabel(text.c_str(), style));
  };
  std::string spoken;
  const auto addRow = [&](const char* caption, const std::string& text) {
    if (text.empty()) return;
    add(caption, ZLVBrowserStyle::caption);
    add(text, nullptr);
    spoken.append(caption).append(": ").append(text).append("\n");
  };
  const char* const title = titleFor(state);
  add(title, ZLVBrowserStyle::host);
  addRow(ZLVLocalized("Site"), state.host);
  if (state.certificate) {
    const auto names = namesIn(state.certificate.get());
    addRow(ZLVLocalized("Owner"), names.owner);
    addRow(ZLVLocalized("Issued by"), names.issuer);
    addRow(ZLVLocalized("Valid until"), endOf(state.certificate.get()));
  } else {
    spoken.append(ZLVLocalized("Others can read and change what is sent."));
    add(ZLVLocalized("Others can read and change what is sent."), ZLVBrowserStyle::explanation);
  }
  gtk_accessible_update_property(GTK_ACCESSIBLE(box_), GTK_ACCESSIBLE_PROPERTY_LABEL, title,
                                 GTK_ACCESSIBLE_PROPERTY_DESCRIPTION, spoken.c_str(), -1);
}
