#include <array>
#include <stdexcept>

#include <Sandbox/Misbehaviour.h>
#include <boost/json.hpp>

namespace json = boost::json;

namespace {

using Plan = std::pair<ZLVSandboxMatch, ZLVMisbehaviour>;
using Break = ZLVMisbehaviour::Break;
using Point = ZLVMisbehaviour::Point;
using Value = const json::value&;

/// Choices are named in the order of their values.
constexpr std::array<std::string_view, 3> Breaks{"stall", "close", "reset"};
constexpr std::array<std::string_view, 5> Points{"before-header", "in-header", "after-header",
                                                 "in-body", "after-body"};

template <class Choice>
Choice choice(Value value, const auto& names) {
  const std::string_view name = value.as_string();
  for (std::size_t index = 0; index < names.size(); ++index) {
    if (names[index] == name) return static_cast<Choice>(index);
  }
  throw std::invalid_argument("unknown choice \"" + std::string(name) + "\"");
}

std::chrono::milliseconds milliseconds(Value value) {
  return std::chrono::milliseconds(value.to_number<std::uint32_t>());
}

template <class Part>
Part& part(std::optional<Part>& field) {
  return field ? *field : field.emplace();
}

struct Setting {
  std::string_view name;
  void (*read)(Plan& plan, Value value);
};

constexpr Setting Settings[] = {
    {"method", [](Plan& plan, Value value) { plan.first.method = value.as_string(); }},
    {"path", [](Plan& plan, Value value) { plan.first.pathPrefix = value.as_string(); }},
    {"times", [](Plan& plan, Value value) { plan.first.times = value.to_number<std::size_t>(); }},
    {"status", [](Plan& plan, Value value) { plan.second.status = value.to_number<unsigned>(); }},
    {"body",
     [](Plan& plan, Value value) {
       plan.second.body =
           value.is_string() ? json::value_to<std::string>(value) : json::serialize(value);
     }},
    {"headers",
     [](Plan& plan, Value value) {
       for (const auto& [name, text] : value.as_object()) {
         plan.second.headers.emplace_back(name, text.as_string());
       }
     }},
    {"body_size",
     [](Plan& plan, Value value) { plan.second.bodySize = value.to_number<std::uint64_t>(); }},
    {"delay_ms", [](Plan& plan, Value value) { plan.second.delay = milliseconds(value); }},
    {"piece_bytes",
     [](Plan& plan, Value value) {
       part(plan.second.trickle).bytes = value.to_number<std::size_t>();
     }},
    {"piece_interval_ms",
     [](Plan& plan, Value value) { part(plan.second.trickle).interval = milliseconds(value); }},
    {"break",
     [](Plan& plan, Value value) {
       part(plan.second.interruption).first = choice<Break>(value, Breaks);
     }},
    {"at",
     [](Plan& plan, Value value) {
       part(plan.second.interruption).second = choice<Point>(value, Points);
     }},
};

}  // namespace

Plan ZLVReadMisbehaviour(std::string_view JSON) {
  Plan plan;
  const auto settings = json::parse(JSON);
  for (const auto& [name, value] : settings.as_object()) {
    const auto* setting = std::begin(Settings);
    while (setting != std::end(Settings) && setting->name != std::string_view(name)) ++setting;
    if (setting == std::end(Settings)) {
      throw std::invalid_argument("unknown setting \"" + std::string(name) + "\"");
    }
    setting->read(plan, value);
  }
  return plan;
}
