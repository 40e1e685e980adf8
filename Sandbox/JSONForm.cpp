#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>

#include <Sandbox/JSONForm.h>
#include <boost/beast/core/string.hpp>

namespace json = boost::json;

namespace {

/// A scheme, a colon, and nothing that could not stand in a header; no script either.
bool isURL(std::string_view text) {
  const auto isVisible = [](unsigned char c) { return c > 0x20 && c < 0x7F; };
  const auto isSchemeCharacter = [](unsigned char c) {
    return (c < 0x80 && std::isalnum(c) != 0) || c == '+' || c == '-' || c == '.';
  };
  const auto scheme = text.substr(0, text.find(':'));
  const bool isScript = boost::beast::iequals(scheme, "javascript");
  return scheme.size() < text.size() && !scheme.empty() && !isScript &&
         std::ranges::all_of(scheme, isSchemeCharacter) && std::ranges::all_of(text, isVisible);
}

}  // namespace

std::string ZLVMoneyText(ZLVSandboxMoney amount) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.2f", static_cast<double>(amount) / 100);
  return text.data();
}

ZLVJSONForm::ZLVJSONForm(std::string_view text, std::vector<std::string> problems)
    : problems_(std::move(problems)) {
  json::error_code error;
  body_ = json::parse(text, error);
  require(!error && body_.is_object(), "the body must be a JSON object");
  isReadable_ = !error && body_.is_object();
}

std::string ZLVJSONForm::text(std::string_view path) {
  const auto* value = find(path);
  const bool isText = value != nullptr && value->is_string() && !value->get_string().empty();
  require(isText, std::string(path) + " must be a text");
  return isText ? json::value_to<std::string>(*value) : std::string();
}

std::string ZLVJSONForm::optionalText(std::string_view path) {
  const auto* value = find(path);
  const bool isEmpty = value == nullptr || (value->is_string() && value->get_string().empty());
  return isEmpty ? std::string() : text(path);
}

std::string ZLVJSONForm::URL(std::string_view path) {
  auto url = optionalText(path);
  require(url.empty() || isURL(url), std::string(path) + " must be a URL");
  return url;
}

bool ZLVJSONForm::flag(std::string_view path) {
  const auto* value = find(path);
  require(value == nullptr || value->is_bool(), std::string(path) + " must be true or false");
  return value != nullptr && value->is_bool() && value->get_bool();
}

double ZLVJSONForm::number(std::string_view path) {
  constexpr double Largest = 1e12;
  const auto* value = find(path);
  const bool isNumber =
      value != nullptr && value->is_number() && std::abs(value->to_number<double>()) < Largest;
  require(isNumber, std::string(path) + " must be a number");
  return isNumber ? value->to_number<double>() : 0;
}

double ZLVJSONForm::positive(std::string_view path) {
  constexpr double Least = 0.005;
  const auto before = problems_.size();
  const double value = number(path);
  require(value >= Least || problems_.size() > before, std::string(path) + " must be positive");
  return value;
}

std::size_t ZLVJSONForm::count(std::string_view path) {
  const auto* value = find(path);
  const bool isList = value != nullptr && value->is_array();
  require(isList, std::string(path) + " must be a list");
  return isList ? value->get_array().size() : 0;
}

void ZLVJSONForm::require(bool condition, std::string problem) {
  if (!condition && isReadable_) problems_.push_back(std::move(problem));
}

const json::value* ZLVJSONForm::find(std::string_view path) const {
  std::string pointer = "/" + std::string(path);
  std::ranges::replace(pointer, '.', '/');
  json::error_code error;
  return body_.find_pointer(pointer, error);
}
