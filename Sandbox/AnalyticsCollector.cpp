#include <Sandbox/AnalyticsCollector.h>
#include <Sandbox/JSONForm.h>

namespace json = boost::json;

namespace {

ZLVSandboxAnswer failure(unsigned status, std::string_view message) {
  const json::object body{{"status", "fail"}, {"error", message}, {"code", status}};
  return ZLVSandboxAnswer::JSON(status, json::serialize(body));
}

}  // namespace

ZLVSandboxAnswer ZLVAnalyticsCollector::upload(const ZLVSandboxRequest& request, std::string_view) {
  for (const auto* name : {"X-CleverTap-Account-Id", "X-CleverTap-Passcode"}) {
    if (request.header(name).empty()) return failure(401, std::string(name) + " is missing");
  }
  if (!request.header("Content-Type").starts_with("application/json")) {
    return failure(400, "Content-Type must be application/json");
  }
  json::error_code error;
  const auto body = json::parse(request.body, error);
  const auto* records = body.find_pointer("/d", error);
  if (records == nullptr || !records->is_array()) return failure(400, "d must be a list");

  json::array unprocessed;
  for (const auto& record : records->get_array()) {
    ZLVJSONForm form(json::serialize(record));
    ZLVSandboxEvent event{.type = form.text("type"),
                          .identity = form.text("identity"),
                          .name = form.optionalText("evtName"),
                          .record = json::serialize(record),
                          .headers = request.headers};
    form.require(event.type != "event" || !event.name.empty(), "evtName must be a text");
    form.require(event.type == "event" || event.type == "profile", "type is unknown");
    if (form.problems().empty()) {
      events_.push_back(std::move(event));
    } else {
      unprocessed.push_back(
          {{"status", "fail"}, {"error", form.problems().front()}, {"record", record}});
    }
  }
  const json::object answer{{"status", unprocessed.empty() ? "success" : "partial"},
                            {"processed", records->get_array().size() - unprocessed.size()},
                            {"unprocessed", unprocessed}};
  return ZLVSandboxAnswer::JSON(200, json::serialize(answer));
}
