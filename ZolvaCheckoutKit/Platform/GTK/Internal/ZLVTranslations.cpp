#include <filesystem>
#include <system_error>

#include <dlfcn.h>
#include <libintl.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVTranslations.h>

namespace {

/// The file that this code was loaded from: a library, or the program that it is linked into.
const char* ownFile() {
  static const char here = 0;
  Dl_info info = {};
  const bool isKnown = dladdr(&here, &info) != 0;
  return isKnown && info.dli_fname != nullptr ? info.dli_fname : "";
}

/// The catalogues beside `file`, or an empty path.
std::filesystem::path beside(const char* file, const char* relative) {
  std::error_code error;
  auto place = std::filesystem::canonical(file, error);
  if (!error) place = std::filesystem::canonical(place.parent_path() / relative, error);
  const auto catalogue = place / ZLV_ANY_LANGUAGE / "LC_MESSAGES" / GETTEXT_PACKAGE ".mo";
  return !error && std::filesystem::exists(catalogue, error) ? place : std::filesystem::path();
}

}  // namespace

void ZLVTranslations::bind() {
  auto locales = beside(ownFile(), ZLV_LOCALES_FROM_LIBRARY);
  if (locales.empty()) locales = beside("/proc/self/exe", ZLV_LOCALES_FROM_PROGRAM);
  bindtextdomain(ZLVTextDomain, locales.empty() ? ZLV_LOCALES : locales.c_str());
  bind_textdomain_codeset(ZLVTextDomain, "UTF-8");
}
