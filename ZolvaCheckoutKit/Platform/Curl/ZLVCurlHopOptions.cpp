#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHopOptions.h>

namespace {

/// Less than libcurl's limit by the longest cookie that it keeps: where not even the first cookie
/// fits behind the URL, it leaves the header unfinished, and the server waits for the rest.
constexpr std::size_t maximumURLSizeWithCookies = 3500;

/// Finding and securing included, and shared among a host's addresses.
constexpr std::chrono::minutes maximumTimeToConnect(1);

/// The line for libcurl, which wants a header without a value ended by a semicolon.
std::string line(const std::pair<std::string, std::string>& header) {
  return header.second.empty() ? header.first + ";" : header.first + ": " + header.second;
}

/// libcurl makes one hop: it follows nothing and decides nothing.
void setBounds(ZLVCurlHandle& handle) {
  handle.set(CURLOPT_PROTOCOLS_STR, "http,https");
  handle.set(CURLOPT_PATH_AS_IS, 1L);
  handle.set(CURLOPT_ACCEPT_ENCODING, "");
  handle.set(CURLOPT_COOKIEFILE, "");
  handle.set(CURLOPT_NOSIGNAL, 1L);
  // A name that is still being looked up must not hold up the session's thread.
  handle.set(CURLOPT_QUICK_EXIT, 1L);
}

void setConnection(ZLVCurlHandle& handle, const ZLVCurlContext& context,
                   ZLVIdleLimit::Clock::duration timeToConnect) {
  using Milliseconds = std::chrono::duration<long, std::milli>;
  const auto connecting =
      std::min<ZLVIdleLimit::Clock::duration>(timeToConnect, maximumTimeToConnect);
  handle.set(CURLOPT_CONNECTTIMEOUT_MS, std::chrono::ceil<Milliseconds>(connecting).count());
  handle.set(CURLOPT_TCP_KEEPALIVE, 1L);
  handle.set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  const auto& trust = context.trust;
  // A folder of authorities would keep libcurl from keeping those of the file.
  if (trust.hasSystemFile()) handle.set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  if (!trust.file().empty()) handle.set(CURLOPT_CAINFO, trust.file().c_str());
}

void setServer(ZLVCurlHandle& handle, const ZLVWebURL& url, CURLSH* share) {
  handle.set(CURLOPT_URL, url.text.c_str());
  // The host stands in the header twice.
  const bool takesCookies = url.text.size() + url.host.size() <= maximumURLSizeWithCookies;
  handle.set(CURLOPT_SHARE, takesCookies ? share : nullptr);
  handle.set(CURLOPT_PROXY, url.isLoopback() ? "" : nullptr);  // null is the environment's
}

void setRequest(ZLVCurlHandle& handle, const ZLVHTTPHop& hop) {
  handle.set(CURLOPT_CUSTOMREQUEST, hop.method.c_str());
  if (hop.method == "HEAD") {
    handle.set(CURLOPT_NOBODY, 1L);
  } else if (hop.method != "GET" || hop.body) {
    const std::string_view body = hop.body ? std::string_view(*hop.body) : "";
    handle.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    handle.set(CURLOPT_POSTFIELDS, body.data());
    // Keep libcurl from adding its own.
    handle.addHeaderLine("Expect:");
    handle.addHeaderLine("Content-Type:");
  }
  for (const auto& header : hop.headers) handle.addHeaderLine(line(header).c_str());
  handle.setHeader();
}

}  // namespace

void ZLVCurlHopOptions::set(ZLVCurlHandle& handle, const ZLVHTTPHop& hop,
                            const ZLVCurlContext& context,
                            ZLVIdleLimit::Clock::duration timeToConnect) {
  setBounds(handle);
  setConnection(handle, context, timeToConnect);
  setServer(handle, hop.url, context.share);
  setRequest(handle, hop);
}
