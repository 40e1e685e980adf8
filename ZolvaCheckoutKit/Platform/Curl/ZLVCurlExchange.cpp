#include <string_view>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlExchange.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHopOptions.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVTransportError.h>

namespace {

/// libcurl lets any number pass.
constexpr bool isStatus(long number) { return number >= 100 && number <= 999; }

}  // namespace

/// What libcurl calls while it works on the handle.
struct ZLVCurlExchange::Callbacks {
  static std::size_t header(const char* bytes, std::size_t /*one*/, std::size_t size, void* self) {
    auto& exchange = *static_cast<ZLVCurlExchange*>(self);
    exchange.idle_.noteProgress();
    exchange.reader_.takeHeaderLine({bytes, size});
    return exchange.reader_.error() ? 0 : size;
  }

  static std::size_t write(const char* bytes, std::size_t /*one*/, std::size_t size, void* self) {
    auto& reader = static_cast<ZLVCurlExchange*>(self)->reader_;
    reader.takeBody({bytes, size});
    return reader.error() ? 0 : size;
  }

  static int progress(void* self, curl_off_t /*toReceive*/, curl_off_t received,
                      curl_off_t /*toSend*/, curl_off_t sent) {
    auto& exchange = *static_cast<ZLVCurlExchange*>(self);
    exchange.idle_.noteBytes(received + sent);
    exchange.reader_.takeReceived(static_cast<std::size_t>(received));
    return exchange.reader_.error() ? 1 : 0;
  }

  static curl_socket_t openSocket(void* self, curlsocktype /*purpose*/, curl_sockaddr* address) {
    auto& exchange = *static_cast<ZLVCurlExchange*>(self);
    exchange.sending_.ask();
    if (exchange.sending_.isRefused()) return CURL_SOCKET_BAD;
    return exchange.context_.sockets.open(*address, exchange.attempt_);
  }

  /// Called each time that a connection is there and the request about to be sent.
  static int send(void* self, char* /*peer*/, char* /*local*/, int peerPort, int localPort) {
    auto& exchange = *static_cast<ZLVCurlExchange*>(self);
    auto& sockets = exchange.context_.sockets;
    if (!exchange.manner_.isAhead) {
      exchange.sending_.ask();
      if (exchange.sending_.isRefused()) return CURL_PREREQFUNC_ABORT;
      exchange.isSpoilt_ = sockets.isSpoilt(localPort, peerPort);
      if (exchange.isSpoilt_) return CURL_PREREQFUNC_ABORT;
      exchange.sending_.noteSent();
      exchange.context_.sent.push_back(exchange.handle());
    }
    sockets.settle(exchange.attempt_, localPort, peerPort);
    exchange.idle_.noteProgress();
    return CURL_PREREQFUNC_OK;
  }

  static int seek(void* /*self*/, curl_off_t /*offset*/, int /*origin*/) {
    return CURL_SEEKFUNC_OK;
  }
};

ZLVCurlHandles::Owner ZLVCurlExchange::makeModel(ZLVCurlContext& context) {
  ZLVCurlHandles::Owner model(curl_easy_init());
  if (!model) return model;
  const auto set = [&model](CURLoption option, auto value) {
    if (model && curl_easy_setopt(model.get(), option, value) != CURLE_OK) model.reset();
  };
  set(CURLOPT_HEADERFUNCTION, &Callbacks::header);
  set(CURLOPT_WRITEFUNCTION, &Callbacks::write);
  set(CURLOPT_NOPROGRESS, 0L);
  set(CURLOPT_XFERINFOFUNCTION, &Callbacks::progress);
  set(CURLOPT_OPENSOCKETFUNCTION, &Callbacks::openSocket);
  set(CURLOPT_CLOSESOCKETFUNCTION, &ZLVCurlSockets::close);
  set(CURLOPT_CLOSESOCKETDATA, &context.sockets);
  set(CURLOPT_PREREQFUNCTION, &Callbacks::send);
  ZLVCurlHopOptions::setFixed(set, context.trust);
  return model;
}

ZLVCurlExchange::ZLVCurlExchange(const ZLVHTTPHop& hop, Manner manner, ZLVSendOnce& sending,
                                 ZLVIdleLimit& idle, ZLVCurlContext& context)
    : sending_(sending),
      idle_(idle),
      context_(context),
      manner_(manner),
      attempt_{.isHasty = manner.isHasty},
      reader_(context.options.maximumAnswerSize),
      handle_(context.handles) {
  attempt_.transfer = handle();
  handle_.set(CURLOPT_ERRORBUFFER, message_.data());
  handle_.set(CURLOPT_HEADERDATA, this);
  handle_.set(CURLOPT_WRITEDATA, this);
  handle_.set(CURLOPT_XFERINFODATA, this);
  handle_.set(CURLOPT_OPENSOCKETDATA, this);
  handle_.set(CURLOPT_PREREQDATA, this);
  handle_.set(CURLOPT_FRESH_CONNECT, manner.isFresh ? 1L : 0L);
  ZLVCurlHopOptions::set(handle_, hop, context, idle.interval());
  if (manner.isAhead) {
    // To go on with an upload that is complete already: libcurl finds out once it is connected, and
    // before it sends anything. It keeps such a connection, and none of CURLOPT_CONNECT_ONLY.
    handle_.set(CURLOPT_UPLOAD, 1L);
    handle_.set(CURLOPT_INFILESIZE, 1L);
    handle_.set(CURLOPT_RESUME_FROM, 1L);
    handle_.set(CURLOPT_SEEKFUNCTION, &Callbacks::seek);
    handle_.useOnce();
  }
  result_ = handle_.error();
}

ZLVCurlExchange::~ZLVCurlExchange() { context_.sockets.settle(attempt_, 0, 0); }

void ZLVCurlExchange::finish(CURLcode result) {
  result_ = result;
  if (manner_.isAhead) {
    if (result == CURLE_PARTIAL_FILE) context_.sockets.keepUnused(handle());
  } else if (result == CURLE_OK) {
    context_.sockets.keep(handle());
  }
}

bool ZLVCurlExchange::wasTooHasty() const {
  return result_ == CURLE_COULDNT_CONNECT && attempt_.isGivenUp && !sending_.isSent();
}

long ZLVCurlExchange::status() const {
  long status = 0;
  curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
  return status;
}

const char* ZLVCurlExchange::location() const {
  curl_header* location = nullptr;
  const bool isRedirected =
      result_ == CURLE_OK && reader_.isHeaderWhole() && ZLVHTTPHop::isRedirect(status()) &&
      curl_easy_header(handle(), "Location", 0, CURLH_HEADER, -1, &location) == CURLHE_OK;
  return isRedirected ? location->value : nullptr;
}

std::optional<ZLVCurlExchange::Failure> ZLVCurlExchange::failure() const {
  if (const auto error = reader_.error()) return Failure{*error};
  // libcurl has no other word for a header line without end.
  if (result_ == CURLE_OUT_OF_MEMORY && sending_.isSent() && !reader_.isHeaderWhole()) {
    return Failure{NSURLErrorDataLengthExceedsMaximum};
  }
  if (result_ == CURLE_OK) {
    // libcurl takes a header that breaks off between two lines for a whole one.
    if (!reader_.isHeaderWhole()) return Failure{NSURLErrorNetworkConnectionLost};
    if (!isStatus(status())) return Failure{NSURLErrorBadServerResponse};
    return std::nullopt;
  }
  const auto underlying = "libcurl " + std::to_string(result_) + ": ";
  if (sending_.isRefused()) {
    return Failure{NSURLErrorNetworkConnectionLost, underlying + "the request was not sent again"};
  }
  auto code = ZLVTransportError::code(result_, handle(), message_.data());
  // Lost on the way to a server behind a proxy, or lost and not found again.
  if (code == NSURLErrorNetworkConnectionLost && !sending_.isSent()) {
    code = NSURLErrorCannotConnectToHost;
  } else if (code == NSURLErrorCannotConnectToHost && sending_.isSent()) {
    code = NSURLErrorNetworkConnectionLost;
  }
  const char* words = message_.front() != 0 ? message_.data() : curl_easy_strerror(result_);
  return Failure{code, underlying + words};
}
