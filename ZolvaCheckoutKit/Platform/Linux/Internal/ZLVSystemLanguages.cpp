#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string_view>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSystemLanguages.h>

namespace {

std::string_view environmentVariable(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(*-mt-unsafe): as the C library itself
  return value == nullptr ? std::string_view() : value;
}

std::string_view localeName() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const auto value = environmentVariable(name); !value.empty()) return value;
  }
  return {};
}

/// "pt_BR" of "pt_BR.UTF-8@latin".
std::string_view identifier(std::string_view locale) {
  return locale.substr(0, locale.find_first_of(".@"));
}

bool isLanguage(std::string_view identifier) {
  return !identifier.empty() && identifier != "C" && identifier != "POSIX";
}

}  // namespace

std::vector<std::string> ZLVSystemLanguages::preferred() {
  const std::string_view locale = localeName();
  if (!isLanguage(identifier(locale))) return {};

  std::vector<std::string> languages;
  std::istringstream list(std::string(environmentVariable("LANGUAGE")).append(":").append(locale));
  for (std::string entry; std::getline(list, entry, ':');) {
    const std::string_view language = identifier(entry);
    if (isLanguage(language) && std::ranges::find(languages, language) == languages.end()) {
      languages.emplace_back(language);
    }
  }
  return languages;
}
