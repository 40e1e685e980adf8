#include "Apps/Shop/Checkout/MerchantServer.h"

#include <utility>

#include <boost/json.hpp>

#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

namespace {

/// The texts in a JSON object; none when it is something else.
ZLVDictionary parsedTexts(const std::string& text) {
  boost::json::error_code error;
  const auto body = boost::json::parse(text, error);
  ZLVDictionary fields;
  if (error || !body.is_object()) return fields;
  for (const auto& [key, value] : body.get_object()) {
    if (value.is_string()) fields.set(key, std::string_view(value.get_string()));
  }
  return fields;
}

}  // namespace

void MerchantServer::order(const std::string& id,
                           ZLVCompletionHandler<ZLVTransactionResult> completion) {
  const auto& platform = ZLVPlatform::installed();
  if (!session_) session_ = platform.makeURLSession();
  const auto finish = [completion = std::move(completion)](const ZLVURLAnswer& answer) {
    if (answer.error) return completion(nullptr, answer.error);
    auto fields = parsedTexts(answer.data);
    constexpr int success = 200;
    if (answer.statusCode == success) {
      return completion(ZLVTransactionResult::initWithDictionary(std::move(fields)), std::nullopt);
    }
    completion(nullptr, ZLVError::errorWithDomain(
                            ZLVErrorDomain, answer.statusCode,
                            {{std::string(NSLocalizedDescriptionKey), fields["status_message"]}}));
  };
  auto base = ZLVVendor::shared().merchantSeverURL().value_or("");
  if (base.ends_with('/')) base.pop_back();
  ZLVURLRequest request;
  request.URL = ZLVURL::URLWithString(base + "/orders/" + id);
  session_->dataTask(std::move(request), [queue = platform.mainQueue, finish](ZLVURLAnswer answer) {
    queue->dispatch([finish, answer = std::move(answer)] { finish(answer); });
  });
}
