#include <ZolvaCheckoutKit/Core/Helpers/encode.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>

std::optional<std::string> encode::ZLVURLEncodedString(std::string_view string) {
  std::string decoded;
  decoded.reserve(string.size());
  for (std::size_t i = 0; i < string.size(); ++i) {
    if (string[i] != '%') {
      decoded += string[i];
      continue;
    }
    if (i + 2 >= string.size()) return std::nullopt;
    const int high = ZLVHexDigit(string[i + 1]);
    const int low = ZLVHexDigit(string[i + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    decoded += static_cast<char>(high * 16 + low);
    i += 2;
  }
  if (!ZLVIsUTF8(decoded)) return std::nullopt;
  return decoded;
}
