#pragma once

#include <string>
#include <vector>

/// The user's languages.
namespace ZLVSystemLanguages {

/// Locale identifiers such as "pt_BR", preferred first, from the environment as gettext reads it:
/// LANGUAGE before LC_ALL, LC_MESSAGES or LANG, of which the first that is set says the locale.
/// Empty in the locales C and POSIX, which are no language.
std::vector<std::string> preferred();

}  // namespace ZLVSystemLanguages
