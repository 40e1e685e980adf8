#include <utility>
#include <variant>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlTransfer.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVTransportError.h>

ZLVCurlTransfer::ZLVCurlTransfer(ZLVURLRequest request, ZLVURLSession::CompletionHandler handler)
    : request_(std::move(request)), handler_(std::move(handler)), idle_(request_.timeoutInterval) {}

std::unique_ptr<ZLVCurlTransfer> ZLVCurlTransfer::ahead(const std::string& URL) {
  ZLVURLRequest request;
  request.URL = ZLVURL::URLWithString(URL);
  auto transfer =
      std::make_unique<ZLVCurlTransfer>(std::move(request), ZLVURLSession::CompletionHandler());
  transfer->isAhead_ = true;
  return transfer;
}

void ZLVCurlTransfer::start(ZLVCurlContext& context) {
  context_ = &context;
  hop_ = ZLVHTTPHop::first(std::move(request_));
  prepareHop();
}

void ZLVCurlTransfer::finishHop(CURLcode result) {
  exchange_->finish(result);
  if (exchange_->isSpoilt()) {
    manner_.isFresh = true;
    return prepareExchange();
  }
  if (exchange_->wasTooHasty()) {
    manner_.isHasty = false;
    return prepareExchange();
  }
  if (isAhead_) {
    answer_.emplace();
    return;
  }
  if (const char* location = exchange_->location()) {
    auto next = hop_.redirected(exchange_->status(), location);
    if (const auto* error = std::get_if<NSURLError>(&next)) return fail(*error);
    hop_ = std::get<ZLVHTTPHop>(std::move(next));
    return prepareHop();
  }
  if (const auto failure = exchange_->failure()) return fail(failure->code, failure->underlying);
  answer_ = ZLVURLAnswer{std::move(exchange_->body()), static_cast<int>(exchange_->status()), {}};
}

void ZLVCurlTransfer::prepareHop() {
  sending_ = ZLVSendOnce(hop_.isRepeatable());
  manner_ = {.isAhead = isAhead_};
  if (const auto code = hop_.refusal(context_->options.allowsCleartext)) return fail(*code);
  prepareExchange();
}

void ZLVCurlTransfer::prepareExchange() {
  exchange_.emplace(hop_, manner_, sending_, idle_, *context_);
  if (exchange_->isReady()) return;
  const auto failure = exchange_->failure();
  fail(failure->code, failure->underlying);
}

void ZLVCurlTransfer::fail(NSURLError code, const std::string& underlying) {
  const bool wasSent = isSent() || hop_.redirects > 0;
  answer_ = ZLVURLAnswer{{}, 0, ZLVTransportError::error(code, hop_.url.text, wasSent, underlying)};
}

void ZLVCurlTransfer::complete() { std::move(handler_)(std::move(*answer_)); }
