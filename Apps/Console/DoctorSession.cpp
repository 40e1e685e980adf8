#include "Apps/Console/DoctorSession.h"

#include <system_error>
#include <utility>

#include <curl/curl.h>
#include <strings.h>

#include "Apps/Console/Host.h"

namespace {

constexpr std::size_t largestBody = std::size_t{8} << 20U;  // as much as the library takes
constexpr const char* authorities = "/etc/ssl/certs";

std::size_t keep(const char* bytes, std::size_t /*one*/, std::size_t size, void* body) {
  auto& text = *static_cast<std::string*>(body);
  if (size > largestBody - text.size()) return 0;
  text.append(bytes, size);
  return size;
}

/// libcurl takes a header that breaks off between two lines for a whole one.
std::size_t noteEnd(const char* bytes, std::size_t /*one*/, std::size_t size, void* isWhole) {
  const std::string_view line(bytes, size);
  auto& whole = *static_cast<bool*>(isWhole);
  whole = (whole && !line.starts_with("HTTP/")) || line == "\r\n" || line == "\n";
  return size;
}

bool saysClose(CURL* handle) {
  long version = 0;
  curl_easy_getinfo(handle, CURLINFO_HTTP_VERSION, &version);
  curl_header* header = nullptr;
  return version == CURL_HTTP_VERSION_1_0 ||
         (curl_easy_header(handle, "Connection", 0, CURLH_HEADER, -1, &header) == CURLHE_OK &&
          strcasecmp(header->value, "close") == 0);
}

ZLVError noAnswer(const std::string& fault) {
  return ZLVError::errorWithDomain(NSURLErrorDomain, NSURLErrorUnknown,
                                   {{std::string(NSLocalizedDescriptionKey), fault}});
}

}  // namespace

DoctorSession::DoctorSession(std::unique_ptr<ZLVURLSession> library,
                             std::shared_ptr<DoctorView> view)
    : library_(std::move(library)),
      view_(std::move(view)),
      handle_(curl_easy_init(), curl_easy_cleanup) {}

void DoctorSession::dataTask(ZLVURLRequest request, CompletionHandler handler) {
  if (!request.URL->absoluteString().starts_with(view_->server)) return;
  if (view_->isThroughLibrary) {
    request.timeoutInterval = std::chrono::duration<double>(view_->limit).count();
    return library_->dataTask(
        std::move(request), [this, handler = std::move(handler)](ZLVURLAnswer answer) mutable {
          view_->exchange = {.status = answer.statusCode, .body = answer.data};
          if (answer.error) view_->exchange.fault = answer.error->localizedDescription();
          std::move(handler)(std::move(answer));
        });
  }
  try {
    view_->call =
        std::jthread([this, request = std::move(request), handler = std::move(handler)]() mutable {
          std::move(handler)(perform(request));
        });
  } catch (const std::system_error& fault) {  // the handler is gone, which is an answer as well
    view_->exchange = {.fault = fault.what()};
  }
}

ZLVURLAnswer DoctorSession::perform(const ZLVURLRequest& request) {
  CURL* handle = handle_.get();
  Exchange seen;
  bool isWhole = false;
  const bool isGet = request.HTTPMethod == "GET";
  char message[CURL_ERROR_SIZE] = "";
  curl_easy_reset(handle);  // its connections stay
  curl_easy_setopt(handle, CURLOPT_URL, request.URL->absoluteString().c_str());
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");
  curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(view_->limit.count()));
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, message);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &noteEnd);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, &isWhole);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &keep);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, &seen.body);
  if (isThisMachine(request.URL->host())) curl_easy_setopt(handle, CURLOPT_PROXY, "");
  if (view_->CAFile) {
    curl_easy_setopt(handle, CURLOPT_CAINFO, view_->CAFile->c_str());
    curl_easy_setopt(handle, CURLOPT_CAPATH, authorities);
  }
  curl_slist* headers = nullptr;
  for (const auto& [name, value] : request.allHTTPHeaderFields) {
    auto line = name;
    line.append(": ").append(value);
    headers = curl_slist_append(headers, line.c_str());
  }
  headers = curl_slist_append(headers, "Expect:");
  curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
  const std::string body = request.HTTPBody.value_or("");
  if (!isGet) {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request.HTTPMethod.c_str());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body.data());
    // On a connection used before, libcurl would send it again when that one breaks.
    curl_easy_setopt(handle, CURLOPT_FRESH_CONNECT, 1L);
  }
  const CURLcode result = curl_easy_perform(handle);
  curl_slist_free_all(headers);

  ZLVURLAnswer answer;
  if (result != CURLE_OK || !isWhole) {
    seen.fault = *message != 0        ? message
                 : result != CURLE_OK ? curl_easy_strerror(result)
                                      : "The answer broke off in its header";
    answer.error = noAnswer(seen.fault);
  }
  long status = 0;
  long connections = 0;
  const char* contentType = nullptr;
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
  curl_easy_getinfo(handle, CURLINFO_NUM_CONNECTS, &connections);
  curl_easy_getinfo(handle, CURLINFO_CONTENT_TYPE, &contentType);
  seen.status = static_cast<int>(status);
  seen.contentType = contentType != nullptr ? contentType : "";
  seen.wasDropped = isGet && staysOpen_ && connections > 0;
  staysOpen_ = !answer.error && !saysClose(handle);
  if (!answer.error) answer = {.data = seen.body, .statusCode = seen.status, .error = {}};
  view_->exchange = std::move(seen);
  return answer;
}
