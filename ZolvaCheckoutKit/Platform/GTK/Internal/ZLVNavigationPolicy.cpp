#include <algorithm>
#include <string_view>

#include <glib.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVNavigationPolicy.h>

namespace {

constexpr std::string_view loaded[] = {"http", "https"};
/// The empty page, which scripts start frames with.
constexpr std::string_view empty = "about";
/// Means something inside a browser only, or to this machine only.
constexpr std::string_view refused[] = {"blob",       "data",     "file",       "filesystem",
                                        "javascript", "resource", "view-source"};

bool contains(const auto& schemes, std::string_view scheme) {
  return std::find(std::begin(schemes), std::end(schemes), scheme) != std::end(schemes);
}

}  // namespace

ZLVNavigationPolicy::Verdict ZLVNavigationPolicy::decide(const Navigation& navigation) {
  const char* const scheme = g_uri_peek_scheme(navigation.URL);
  if (scheme == nullptr || contains(refused, scheme)) return Verdict::Refuse;
  if (contains(loaded, scheme)) return Verdict::Load;
  if (scheme == empty) return navigation.isNewWindow ? Verdict::Refuse : Verdict::Load;
  const bool isWanted = navigation.isUserGesture || navigation.isRedirect;
  return isWanted && !navigation.isNewWindow ? Verdict::HandOver : Verdict::Refuse;
}
