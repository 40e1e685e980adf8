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

/// What the aspects look at.
struct Case {
  const Expectation& expected;
  const Exchange& exchange;
  const Judgement& made;
  json::value& answer;

  [[nodiscard]] const json::value* member(std::string_view name) const {
    return answer.get_object().if_contains(name);
  }
};

Finding answered(const Case& seen) {
  const auto& [status, contentType, body, fault, wasDropped] = seen.exchange;
  if (fault.empty() && status != 0) return {};
  return {"answer", "an answer in time", fault.empty() ? seen.made.text : fault};
}

Finding keptOpen(const Case& seen) {
  if (!seen.expected.staysOpen || !seen.exchange.wasDropped) return {};
  return {"connection", "the connection to stay open, or \"Connection: close\"",
          "its end, unannounced"};
}

Finding hasStatus(const Case& seen) {
  const int status = seen.exchange.status;
  if (status >= seen.expected.lowest && status <= seen.expected.highest) return {};
  return {"status", std::string(seen.expected.statuses), std::to_string(status)};
}

Finding hasType(const Case& seen) {
  const auto& type = seen.exchange.contentType;
  if (!type || isJSON(*type)) return {};
  return {"Content-Type", std::string(jsonType), type->empty() ? "nothing" : *type};
}

Finding isObject(const Case& seen) {
  boost::system::error_code error;
  const auto& body = seen.exchange.body;
  seen.answer = json::parse(body, error);
  if (!error && seen.answer.is_object()) return {};
  return {"body", "a JSON object", body.empty() ? "nothing" : body};
}

Finding hasStatusCode(const Case& seen) {
  const auto* code = seen.member("status_code");
  if (code != nullptr && integer(*code) == seen.exchange.status) return {};
  return {"/status_code", std::to_string(seen.exchange.status) + ", as the HTTP status",
          shown(code)};
}

Finding isJudged(const Case& seen) {
  if (seen.made.kind == seen.expected.judgement) return {};
  return {"library", seen.expected.judgement == Judgement::Record ? "a record" : "a refusal",
          seen.made.text};
}

Finding saysWhy(const Case& seen) {
  if (seen.expected.judgement != Judgement::Refusal) return {};
  const json::value* message = nullptr;
  for (const auto name : messages) {
    if (message == nullptr) message = seen.member(name);
  }
  const bool isList = message != nullptr && message->is_array();
  if (isList || fits(message, Member::Text)) return {};
  return {"/status_message", "a text for the user", shown(message)};
}

Finding hasPage(const Case& seen) {
  const auto& action = seen.expected.action;
  if (action.empty() || seen.exchange.status != 201) return {};
  const auto page = pageOf(seen.answer.get_object(), action);
  if (isSafePage(page)) return {};
  return {"/actions", std::string(action) + " with an https URL", page.empty() ? "none" : page};
}

Finding hasMembers(const Case& seen) { return missingMember(seen.answer, seen.expected.members); }

/// Each may rely on those before it.
constexpr std::array aspects{answered,      keptOpen, hasStatus, hasType, isObject,
                             hasStatusCode, hasPage,  isJudged,  saysWhy, hasMembers};

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
  const Case seen{*this, exchange, made, answer};
  for (const auto aspect : aspects) {
    if (auto finding = aspect(seen); !finding.aspect.empty()) return finding;
  }
  return {};
}
