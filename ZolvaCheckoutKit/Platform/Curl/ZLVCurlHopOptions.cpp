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

long timeToConnect(ZLVIdleLimit::Clock::duration time) {
  using Milliseconds = std::chrono::duration<long, std::milli>;
  const auto connecting = std::min<ZLVIdleLimit::Clock::duration>(time, maximumTimeToConnect);
  return std::chrono::ceil<Milliseconds>(connecting).count();
}

void setServer(ZLVCurlHandle& handle, const ZLVWebURL& url, CURLSH* share) {
  handle.set(CURLOPT_URL, url.text.c_str());
  // What it was taken apart to: libcurl need not do it again.
  handle.set(CURLOPT_CURLU, url.parts.get());
  // The host stands in the header twice.
  const bool takesCookies = url.text.size() + url.host.size() <= maximumURLSizeWithCookies;
  handle.set(CURLOPT_SHARE, takesCookies ? share : nullptr);
  if (!takesCookies) handle.useOnce();                         // it has cookies of its own then
  handle.set(CURLOPT_PROXY, url.isLoopback() ? "" : nullptr);  // null is the environment's
}

void setRequest(ZLVCurlHandle& handle, const ZLVHTTPHop& hop) {
  handle.set(CURLOPT_HTTPGET, 1L);
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
                            const ZLVCurlContext& context, ZLVIdleLimit::Clock::duration idle) {
  handle.set(CURLOPT_CONNECTTIMEOUT_MS, timeToConnect(idle));
  setServer(handle, hop.url, context.share);
  setRequest(handle, hop);
}
