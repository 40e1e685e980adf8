#include "Apps/Console/DoctorExpectation.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

#include <boost/json.hpp>
#include <strings.h>

#include <ZolvaCheckoutKit/ZLVURL.h>

#include "Apps/Console/Host.h"

namespace json = boost::json;

namespace {

constexpr std::string_view jsonType = "application/json";
constexpr std::array<std::string_view, 3> messages{"error_message", "status_message",
                                                   "error_messages"};

bool isUnreserved(unsigned char c) {
  constexpr std::string_view marks = "-._~";
  return std::isalnum(c) != 0 || marks.find(static_cast<char>(c)) != std::string_view::npos;
}

bool fits(const json::value* value, Member::Kind kind) {
  if (value == nullptr) return false;
  if (kind == Member::Amount && value->is_number()) return true;
  if (!value->is_string() || value->get_string().empty()) return false;
  return kind != Member::Identifier || std::ranges::all_of(value->get_string(), isUnreserved);
}

std::string shown(const json::value* value) {
  return value == nullptr ? "nothing" : json::serialize(*value);
}

bool isJSON(std::string_view type) {
  return strncasecmp(type.data(), jsonType.data(), jsonType.size()) == 0 &&
         (type.size() == jsonType.size() || type[jsonType.size()] == ';' ||
          type[jsonType.size()] == ' ');
}

/// The number that a member is, as a number or in digits.
std::optional<std::int64_t> integer(const json::value& value) {
  if (value.is_int64()) return value.get_int64();
  if (!value.is_string() || value.get_string().size() != 3) return std::nullopt;
  std::int64_t number = 0;
  for (const char digit : value.get_string()) {
    if (digit < '0' || digit > '9') return std::nullopt;
    number = number * 10 + (digit - '0');
  }
  return number;
}

/// The library takes the last action of the name, whatever its URL.
std::string pageOf(const json::object& answer, std::string_view name) {
  std::string url;
  const auto* actions = answer.if_contains("actions");
  if (actions == nullptr || !actions->is_array()) return url;
  for (const auto& action : actions->get_array()) {
    const auto* object = action.if_object();
    if (object == nullptr || !object->contains("name") ||
        object->at("name") != json::string_view(name))
      continue;
    const auto* text = object->if_contains("url");
    url = text != nullptr && text->is_string() ? json::value_to<std::string>(*text) : "";
  }
  return url;
}

bool isSafePage(const std::string& text) {
  const auto url = ZLVURL::URLWithString(text);
  return url && !url->host().empty() &&
         (url->scheme() == "https" || (url->scheme() == "http" && isThisMachine(url->host())));
}

}  // namespace

Finding missingMember(const json::value& value, std::span<const Member> members,
                      const std::string& place) {
  constexpr std::array<std::string_view, 3> kinds{
      "a text", "a text of letters, digits, and - . _ ~", "a text or a number"};
  for (const auto& [pointer, kind] : members) {
    boost::system::error_code error;
    const auto* found = value.find_pointer(pointer, error);
    if (fits(found, kind)) continue;
    return {place + std::string(pointer), std::string(kinds.at(kind)), shown(found)};
  }
  return {};
}

Finding Expectation::examine(const Exchange& exchange, const Judgement& made,
                             json::value& answer) const {
  const auto& [status, contentType, body, fault, wasDropped, isLast] = exchange;
  if (!fault.empty()) return {"answer", "an answer in time", fault};
  if (staysOpen && wasDropped) {
    return {"connection", "the connection to stay open, or \"Connection: close\"",
            "its end, unannounced"};
  }
  if (status < lowest || status > highest) {
    return {"status", std::string(statuses), std::to_string(status)};
  }
  if (contentType && !isJSON(*contentType)) {
    return {"Content-Type", std::string(jsonType), contentType->empty() ? "nothing" : *contentType};
  }
  boost::system::error_code error;
  answer = json::parse(body, error);
  const auto* object = answer.if_object();
  if (error || object == nullptr) return {"body", "a JSON object", body.empty() ? "nothing" : body};
  const auto* code = object->if_contains("status_code");
  if (code == nullptr || integer(*code) != status) {
    return {"/status_code", "\"" + std::to_string(status) + "\", the HTTP status", shown(code)};
  }
  if (made.kind != judgement) {
    return {"library", judgement == Judgement::Record ? "a record" : "a refusal", made.text};
  }
  if (judgement == Judgement::Refusal) {
    const auto* const key =
        std::ranges::find_if(messages, [&](const auto name) { return object->contains(name); });
    if (key != messages.end() && fits(object->if_contains(*key), Member::Text)) return {};
    return {"/status_message", "a text for the user",
            key == messages.end() ? "nothing" : shown(object->if_contains(*key))};
  }
  if (status == 201 && !action.empty()) {
    const auto page = pageOf(*object, action);
    if (!isSafePage(page)) {
      return {"/actions", "\"" + std::string(action) + "\" with an https URL",
              page.empty() ? "none" : page};
    }
  }
  return missingMember(answer, members);
}
