#pragma once

#include <glib/gi18n-lib.h>

/// The gettext domain of the backend's texts.
inline constexpr const char* ZLVTextDomain = "ZolvaCheckoutKit";

/// The text in the user's language.
[[gnu::format_arg(1)]] inline const char* ZLVLocalized(const char* text) {
  return g_dgettext(ZLVTextDomain, text);
}
