#include <algorithm>
#include <iterator>
#include <new>
#include <utility>
#include <variant>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlTransfer.h>
#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVTransportError.h>

namespace {

/// Less than any libcurl accepts, so that all of them refuse the same.
constexpr std::size_t maximumHeaderSize = std::size_t{256} * 1024;

/// libcurl lets any number pass.
constexpr bool isStatus(long number) { return number >= 100 && number <= 999; }

/// Less than libcurl's limit by the longest cookie that it keeps: where not even the first cookie
/// fits behind the URL, it leaves the header unfinished, and the server waits for the rest.
constexpr std::size_t maximumURLSizeWithCookies = 3500;

/// Finding and securing included, and shared among a host's addresses.
constexpr std::chrono::minutes maximumTimeToConnect(1);

ZLVCurlTransfer::Clock::duration interval(double seconds) {
  // Within what the clock can count; a value that is no number becomes the least.
  const std::chrono::duration<double> bounded(std::min(std::max(0.001, seconds), 1e8));
  return std::chrono::duration_cast<ZLVCurlTransfer::Clock::duration>(bounded);
}

/// The line for libcurl, which wants a header without a value ended by a semicolon.
std::string line(const std::pair<std::string, std::string>& header) {
  return header.second.empty() ? header.first + ";" : header.first + ": " + header.second;
}

}  // namespace

/// What libcurl calls while it works on the handle.
struct ZLVCurlTransfer::Callbacks {
  /// Called for each line, trailers and answers that only announce another one included.
  static std::size_t header(const char* bytes, std::size_t /*one*/, std::size_t size, void* self) {
    auto& transfer = *static_cast<ZLVCurlTransfer*>(self);
    transfer.lastProgress_ = Clock::now();
    const std::string_view line(bytes, size);
    if (line.starts_with("HTTP/")) transfer.isHeaderWhole_ = false;
    if (line == "\r\n" || line == "\n") transfer.isHeaderWhole_ = true;
    transfer.headerSize_ += size;
    transfer.isTooLarge_ = transfer.headerSize_ > maximumHeaderSize;
    return transfer.isTooLarge_ ? 0 : size;
  }

  static std::size_t write(const char* bytes, std::size_t /*one*/, std::size_t size, void* self) {
    auto& transfer = *static_cast<ZLVCurlTransfer*>(self);
    std::string& data = transfer.answer_.data;
    transfer.isTooLarge_ = size > transfer.configuration_->maximumAnswerSize - data.size();
    if (transfer.isTooLarge_) return 0;
    try {
      data.append(bytes, size);
    } catch (const std::bad_alloc&) {  // libcurl is C, and nothing may pass through it
      transfer.isOutOfMemory_ = true;
      return 0;
    }
    return size;
  }

  static int progress(void* self, curl_off_t /*toReceive*/, curl_off_t received,
                      curl_off_t /*toSend*/, curl_off_t sent) {
    auto& transfer = *static_cast<ZLVCurlTransfer*>(self);
    if (std::exchange(transfer.bytesMoved_, received + sent) != received + sent) {
      transfer.lastProgress_ = Clock::now();
    }
    // What is received may be compressed, and come to nothing.
    const auto allowed = transfer.configuration_->maximumAnswerSize;
    if (static_cast<std::size_t>(received) > allowed) transfer.isTooLarge_ = true;
    return transfer.isTooLarge_ ? 1 : 0;
  }

  /// Asked before each time that the request is sent.
  static int send(void* self, char* /*peer*/, char* /*local*/, int peerPort, int localPort) {
    auto& transfer = *static_cast<ZLVCurlTransfer*>(self);
    auto& sockets = *transfer.configuration_->sockets;
    if (transfer.refusesToSend()) return CURL_PREREQFUNC_ABORT;
    transfer.isSpoilt_ = sockets.isReadable(localPort, peerPort);
    if (transfer.isSpoilt_) return CURL_PREREQFUNC_ABORT;
    sockets.settle(transfer.manner_);
    transfer.isSent_ = true;
    transfer.lastProgress_ = Clock::now();
    return CURL_PREREQFUNC_OK;
  }

  static curl_socket_t open(void* self, curlsocktype /*purpose*/, curl_sockaddr* address) {
    auto& transfer = *static_cast<ZLVCurlTransfer*>(self);
    if (transfer.refusesToSend()) return CURL_SOCKET_BAD;
    return transfer.configuration_->sockets->open(*address, transfer.manner_);
  }
};

ZLVCurlTransfer::ZLVCurlTransfer(ZLVURLRequest request, ZLVURLSession::CompletionHandler handler)
    : request_(std::move(request)),
      handler_(std::move(handler)),
      timeoutInterval_(interval(request_.timeoutInterval)) {}

bool ZLVCurlTransfer::start(const ZLVCurlConfiguration& configuration) {
  configuration_ = &configuration;
  if (const auto& url = request_.URL) {
    hop_.url = {.text = url->absoluteString(), .scheme = url->scheme()};
    // libcurl would take the path of a URL without a host for one.
    const auto parsed = ZLVWebURL::parsed(hop_.url.text);
    if (parsed && !url->host().empty()) hop_.url = *parsed;
  }
  hop_.method = std::move(request_.HTTPMethod);
  hop_.headers = std::move(request_.allHTTPHeaderFields);
  hop_.body = std::move(request_.HTTPBody);
  return prepare();
}

bool ZLVCurlTransfer::continueAfter(CURLcode result) {
  if (mustStartAgain(result)) return prepare();
  long status = 0;
  curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
  curl_header* location = nullptr;
  const bool isRedirected =
      result == CURLE_OK && isHeaderWhole_ && ZLVHTTPHop::isRedirect(status) &&
      curl_easy_header(handle(), "Location", 0, CURLH_HEADER, -1, &location) == CURLHE_OK;
  if (!isRedirected) {
    conclude(result);
    return false;
  }

  auto next = hop_.redirected(status, location->value);
  if (const auto* error = std::get_if<NSURLError>(&next)) {
    fail(*error);
    return false;
  }
  hop_ = std::get<ZLVHTTPHop>(std::move(next));
  isSent_ = false;
  mustConnect_ = false;
  manner_ = {};
  return prepare();
}

bool ZLVCurlTransfer::mustStartAgain(CURLcode result) {
  // No address answered soon. There is time now.
  const bool wasHasty = result == CURLE_COULDNT_CONNECT && manner_.hasGivenUp && !isSent_;
  if (wasHasty) manner_ = {.isHasty = false};
  if (isSpoilt_) mustConnect_ = true;
  return std::exchange(isSpoilt_, false) || wasHasty;
}

bool ZLVCurlTransfer::prepare() {
  answer_ = {};
  headerSize_ = 0;
  isHeaderWhole_ = false;
  if (const auto code = refusal()) {
    fail(*code);
    return false;
  }
  // Handles are used once: libcurl before 8.2 keeps a pointer to the last header of an answer and,
  // where the next answer begins with a folded line, follows it when that is gone.
  handle_.reset(curl_easy_init());
  if (handle_ == nullptr) setting_ = CURLE_OUT_OF_MEMORY;
  setCallOptions();
  setHopOptions();
  if (setting_ != CURLE_OK) conclude(setting_);
  return setting_ == CURLE_OK;
}

std::optional<NSURLError> ZLVCurlTransfer::refusal() const {
  const ZLVWebURL& url = hop_.url;
  if (url.text.empty()) return NSURLErrorBadURL;
  if (url.scheme != "http" && url.scheme != "https") return NSURLErrorUnsupportedURL;
  if (url.host.empty()) return NSURLErrorBadURL;
  const bool allowsCleartext = configuration_->allowsCleartext || url.isLoopback();
  if (url.scheme == "http" && (hop_.mustBeSecure || !allowsCleartext)) {
    return NSURLErrorAppTransportSecurityRequiresSecureConnection;
  }
  if (!hop_.isWellFormed()) return NSURLErrorBadURL;
  return std::nullopt;
}

bool ZLVCurlTransfer::refusesToSend() {
  isLost_ = isSent_ && !hop_.mayBeResent();
  return isLost_;
}

std::string ZLVCurlTransfer::server() const {
  return hop_.url.scheme + ':' + hop_.url.host + ':' + hop_.url.port;
}

template <class Value>
void ZLVCurlTransfer::set(CURLoption option, Value value) {
  if (setting_ == CURLE_OK) setting_ = curl_easy_setopt(handle(), option, value);
}

void ZLVCurlTransfer::setCallOptions() {
  set(CURLOPT_ERRORBUFFER, message_.data());
  set(CURLOPT_HEADERFUNCTION, &Callbacks::header);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEFUNCTION, &Callbacks::write);
  set(CURLOPT_WRITEDATA, this);

  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_COOKIEFILE, "");

  // A request with effects goes out once: libcurl asks these two when it wants to send it again,
  // because a connection used before broke.
  set(CURLOPT_PREREQFUNCTION, &Callbacks::send);
  set(CURLOPT_PREREQDATA, this);
  set(CURLOPT_OPENSOCKETFUNCTION, &Callbacks::open);
  set(CURLOPT_OPENSOCKETDATA, this);
  set(CURLOPT_CLOSESOCKETFUNCTION, &ZLVCurlSockets::close);
  set(CURLOPT_CLOSESOCKETDATA, configuration_->sockets);

  set(CURLOPT_TCP_KEEPALIVE, 1L);
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  // A folder of authorities would keep libcurl from keeping those of the file.
  if (configuration_->hasSystemFile) set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  if (const auto& file = configuration_->certificateAuthorities; !file.empty()) {
    set(CURLOPT_CAINFO, file.c_str());
  }

  // The session ends what is idle.
  using Milliseconds = std::chrono::duration<long, std::milli>;
  const auto connecting = std::min<Clock::duration>(timeoutInterval_, maximumTimeToConnect);
  set(CURLOPT_CONNECTTIMEOUT_MS, std::chrono::ceil<Milliseconds>(connecting).count());
  set(CURLOPT_NOPROGRESS, 0L);
  set(CURLOPT_XFERINFOFUNCTION, &Callbacks::progress);
  set(CURLOPT_XFERINFODATA, this);
  set(CURLOPT_NOSIGNAL, 1L);
  // A name that is still being looked up must not hold up the session's thread.
  set(CURLOPT_QUICK_EXIT, 1L);
}

void ZLVCurlTransfer::setHopOptions() {
  set(CURLOPT_URL, hop_.url.text.c_str());
  set(CURLOPT_FRESH_CONNECT, mustConnect_ ? 1L : 0L);
  // The host stands in the header twice.
  const bool takesCookies =
      hop_.url.text.size() + hop_.url.host.size() <= maximumURLSizeWithCookies;
  set(CURLOPT_SHARE, takesCookies ? configuration_->share : nullptr);
  set(CURLOPT_PROXY, hop_.url.isLoopback() ? "" : nullptr);  // null is the environment's

  headers_.reset();
  set(CURLOPT_CUSTOMREQUEST, hop_.method.c_str());
  if (hop_.method == "HEAD") {
    set(CURLOPT_NOBODY, 1L);
  } else if (hop_.method != "GET" || hop_.body) {
    const std::string_view body = hop_.body ? std::string_view(*hop_.body) : "";
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    set(CURLOPT_POSTFIELDS, body.data());
    // Keep libcurl from adding its own.
    addLine("Expect:");
    addLine("Content-Type:");
  }
  std::ranges::for_each(hop_.headers, [this](const auto& header) { addLine(line(header)); });
  set(CURLOPT_HTTPHEADER, headers_.get());
}

void ZLVCurlTransfer::addLine(const std::string& text) {
  curl_slist* list = curl_slist_append(headers_.get(), text.c_str());
  if (list == nullptr) setting_ = CURLE_OUT_OF_MEMORY;
  if (headers_ == nullptr) headers_.reset(list);
}

void ZLVCurlTransfer::conclude(CURLcode result) {
  // libcurl has no other word for a header line without end.
  const bool isHeaderAwaited = isSent_ && !isHeaderWhole_;
  if (isTooLarge_ || (result == CURLE_OUT_OF_MEMORY && isHeaderAwaited)) {
    return fail(NSURLErrorDataLengthExceedsMaximum);
  }
  if (isOutOfMemory_) return fail(NSURLErrorResourceUnavailable);
  // libcurl takes a header that breaks off between two lines for a whole one.
  if (result == CURLE_OK && !isHeaderWhole_) return fail(NSURLErrorNetworkConnectionLost);
  if (result == CURLE_OK) {
    long status = 0;
    curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
    if (!isStatus(status)) return fail(NSURLErrorBadServerResponse);
    answer_.statusCode = static_cast<int>(status);
    return;
  }
  auto code = isLost_ ? NSURLErrorNetworkConnectionLost
                      : ZLVTransportError::code(result, handle(), message_.data());
  // Lost on the way to a server behind a proxy, or lost and not found again.
  if (code == NSURLErrorNetworkConnectionLost && !isSent_) code = NSURLErrorCannotConnectToHost;
  if (code == NSURLErrorCannotConnectToHost && isSent_) code = NSURLErrorNetworkConnectionLost;
  const std::string message = isLost_                 ? "the request was not sent again"
                              : message_.front() != 0 ? message_.data()
                                                      : curl_easy_strerror(result);
  fail(code, "libcurl " + std::to_string(result) + ": " + message);
}

void ZLVCurlTransfer::fail(NSURLError code, const std::string& underlying) {
  answer_ = {};
  const bool wasSent = isSent_ || hop_.redirects > 0;
  answer_.error = ZLVTransportError::error(code, hop_.url.text, wasSent, underlying);
}

void ZLVCurlTransfer::complete() { std::move(handler_)(std::move(answer_)); }
