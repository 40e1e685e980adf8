#include <utility>

#include <ZolvaCheckoutKit/Testing/ZLVSandboxPlatform.h>
#include <ZolvaCheckoutKit/ZLVClient.h>

namespace {

/// The part of a URL that a request line has.
std::string targetOf(const std::string& url) {
  const auto path = url.find('/', url.find("://") + 3);
  return path == std::string::npos ? "/" : url.substr(path);
}

}  // namespace

ZLVSandboxPlatform::ZLVSandboxPlatform() = default;

void ZLVSandboxPlatform::configure(const std::string& callbackURL) {
  ZLVClient::initWithMerchantServerURL(ServerURL, "M-1", callbackURL, false);
}

void ZLVSandboxPlatform::run() {
  do {
    queue->drain();
    auto asked = std::exchange(session, {});
    for (auto* tasks : {&asked.merchant, &asked.analytics}) {
      for (auto& task : *tasks) std::move(task.handler)(answerTo(task.request));
    }
  } while (!queue->blocks.empty() || !session.merchant.empty() || !session.analytics.empty());
}

ZLVURLAnswer ZLVSandboxPlatform::answerTo(const ZLVURLRequest& request) {
  auto [answer, misbehaviour] = sandbox.exchange({.method = request.HTTPMethod,
                                                  .target = targetOf(request.URL->absoluteString()),
                                                  .headers = request.allHTTPHeaderFields,
                                                  .body = request.HTTPBody.value_or("")});
  if (misbehaviour.interruption) {
    const bool isStalled = misbehaviour.interruption->first == ZLVMisbehaviour::Break::Stall;
    return {.data = {},
            .statusCode = 0,
            .error = ZLVError::errorWithDomain(
                NSURLErrorDomain, isStalled ? NSURLErrorTimedOut : NSURLErrorNetworkConnectionLost,
                {})};
  }
  if (misbehaviour.bodySize) answer.body.resize(*misbehaviour.bodySize, ' ');
  return {
      .data = std::move(answer.body), .statusCode = static_cast<int>(answer.status), .error = {}};
}

std::optional<std::string> ZLVSandboxPlatform::decide(bool isConfirmed) {
  if (ui->browser == nullptr) return std::nullopt;
  const auto [answer, misbehaviour] =
      sandbox.exchange({.method = "POST",
                        .target = targetOf(ui->browser->url),
                        .headers = {{"Content-Type", "application/x-www-form-urlencoded"}},
                        .body = isConfirmed ? "decision=confirm" : "decision=cancel"});
  for (const auto& [name, value] : answer.headers) {
    if (name != "Location") continue;
    if (const auto url = ZLVURL::URLWithString(value)) ZLVClient::handleCallbackUrl(*url);
    return value;
  }
  return std::nullopt;
}

bool ZLVSandboxPlatform::closePage() {
  if (ui->browser == nullptr) return false;
  queue->dispatch(std::move(ui->browser->closed));
  return true;
}
