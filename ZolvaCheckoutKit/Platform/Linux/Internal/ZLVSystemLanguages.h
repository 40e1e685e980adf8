#pragma once

#include <string>
#include <vector>

/// The user's languages.
class ZLVSystemLanguages {
 public:
  /// Locale identifiers such as "pt_BR", preferred first, from the environment as gettext reads it:
  /// LANGUAGE before LC_ALL, LC_MESSAGES or LANG, of which the first that is set says the locale.
  /// Empty in the locales C and POSIX, which are no language.
  static std::vector<std::string> preferred();
};
