#include <array>
#include <string>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Core/Helpers/builder.h>
#include <ZolvaCheckoutKit/Core/Network/ZLVNetwork.h>
#include <ZolvaCheckoutKit/Core/Network/ZLVRequestBuilder.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVVendor.h>

namespace {

using Judgement = std::variant<ZLVValue, ZLVError>;

constexpr std::string_view statusCodeKey = "status_code";
constexpr std::string_view validationMessagesKey = "validation_messages";
constexpr std::array<std::string_view, 3> messageKeys{"error_message", "status_message",
                                                      "error_messages"};
constexpr std::string_view defaultMessage = "Request failed.";

std::optional<std::string_view> textIfUTF8(const std::string& bytes) {
  return ZLVIsUTF8(bytes) ? std::optional<std::string_view>(bytes) : std::nullopt;
}

void log(std::string_view format,
         std::initializer_list<std::optional<std::string_view>> arguments) {
  ZLVPlatform::installed().systemLog->log(ZLVOneLine(ZLVStringWithFormat(format, arguments)));
}

void logExchange(const ZLVURLRequest& request, const ZLVURLAnswer& answer) {
  ZLVDictionary header;
  for (const auto& [name, value] : request.allHTTPHeaderFields) header.set(name, value);
  std::optional<std::string_view> url;
  if (request.URL) url = request.URL->absoluteString();

  log("A @%@ request to : %@ request header: %@",
      {request.HTTPMethod, url, ZLVValue(header).description()});
  if (request.HTTPBody) log("request body : %@", {textIfUTF8(*request.HTTPBody)});
  if (answer.error) {
    log("error : %@", {answer.error->debugDescription()});
  } else {
    log("response : %@", {textIfUTF8(answer.data)});
  }
}

/// What the completion gets. A status in the body overrides the one of the response.
Judgement judge(const ZLVURLAnswer& answer) {
  if (answer.error) return *answer.error;
  auto decoded = ZLVJSONSerialization::JSONObjectWithData(
      answer.data, ZLVPlatform::installed().maximumDecodedSize);
  const auto* value = std::get_if<ZLVValue>(&decoded);
  if (value == nullptr || value->array() != nullptr) return decoded;
  const auto* object = value->dictionary();
  if (object == nullptr) return ZLVJSONSerialization::notAnObjectError();

  const auto& status = (*object)[statusCodeKey];
  const auto code = status.isAbsent() ? answer.statusCode : status.integerValue();
  if (code >= 200 && code <= 299) return decoded;

  ZLVValue message = defaultMessage;
  for (const auto key : messageKeys) {
    if (!object->contains(key)) continue;
    message = (*object)[key];
    break;
  }
  return builder::errorWithCode(code, std::move(message), (*object)[validationMessagesKey]);
}

void deliver(Judgement judgement, ZLVNetwork::CompletionHandler completion) {
  ZLVPlatform::installed().mainQueue->dispatch(
      [judgement = std::move(judgement), completion = std::move(completion)]() mutable {
        if (auto* error = std::get_if<ZLVError>(&judgement)) {
          std::move(completion)({}, std::move(*error));
        } else {
          std::move(completion)(std::get<ZLVValue>(std::move(judgement)), std::nullopt);
        }
      });
}

ZLVURLAnswer badURLAnswer() {
  ZLVURLAnswer answer;
  answer.error = ZLVError::errorWithDomain(
      NSURLErrorDomain, NSURLErrorBadURL,
      ZLVErrorText(
          "The address of the call is not a valid URL. Check the configured server URL and "
          "the account id."));
  return answer;
}

}  // namespace

ZLVNetwork& ZLVNetwork::shared() {
  static auto& network = *new ZLVNetwork;  // outlives every thread that may still call it
  return network;
}

ZLVNetwork::ZLVNetwork() : session_(ZLVPlatform::installed().makeURLSession()) {}

void ZLVNetwork::request(const std::shared_ptr<const ZLVNetworkService>& service,
                         CompletionHandler completion) {
  auto request = ZLVRequestBuilder::buildRequestFrom(*service);
  // Whether to log is decided when the answer is there, and what was sent is gone by then.
  std::optional<ZLVURLRequest> sent;
  if (service->serviceType() == ZLVServiceTypeMerchant) sent = request;

  auto respond = [activity = ZLVActivity(), sent = std::move(sent),
                  completion = std::move(completion)](const ZLVURLAnswer& answer) mutable {
    if (sent && ZLVVendor::shared().isLoggingEnabled()) logExchange(*sent, answer);
    if (completion) deliver(judge(answer), std::move(completion));
  };
  if (request.URL) return session_->dataTask(std::move(request), std::move(respond));
  ZLVPlatform::installed().mainQueue->dispatch(
      [respond = std::move(respond)]() mutable { respond(badURLAnswer()); });
}
