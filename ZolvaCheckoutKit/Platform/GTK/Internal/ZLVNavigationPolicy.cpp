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

void ZLVNavigationPolicy::pageCommitted() {
  if (wish_ == Wish::Page) wish_ = Wish::None;
}

void ZLVNavigationPolicy::pressBegan() {
  if (wish_ == Wish::Press) wish_ = Wish::None;
}

ZLVNavigationPolicy::Verdict ZLVNavigationPolicy::decide(const Navigation& navigation) {
  const char* const scheme = g_uri_peek_scheme(navigation.URL);
  if (scheme == nullptr || contains(refused, scheme)) return Verdict::Refuse;
  if (contains(loaded, scheme)) return Verdict::Load;
  if (scheme == empty) return navigation.isNewWindow ? Verdict::Refuse : Verdict::Load;
  if (navigation.isNewWindow) return Verdict::Refuse;

  const bool isWanted = navigation.isRedirect ? wish_ != Wish::None
                                              : wish_ == Wish::Press && navigation.isUserGesture;
  if (isWanted) {
    wish_ = Wish::None;
    return Verdict::HandOver;
  }
  // A page that nobody has touched may have waited for what the user does elsewhere.
  const bool mayAsk = navigation.isRedirect && !navigation.isUserGesture;
  return mayAsk ? Verdict::Ask : Verdict::Refuse;
}
