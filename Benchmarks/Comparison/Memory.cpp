#include <algorithm>

#include <curl/curl.h>

#include "Benchmarks/Comparison/Measurement.h"
#include "Benchmarks/Comparison/Rows.h"

namespace {

/// A process that makes one call with libcurl, drops the answer and does nothing else.
Numbers libcurlOnly(const std::string& server) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  CURL* handle = curl_easy_init();
  curl_easy_setopt(handle, CURLOPT_URL, (server + accountPath).c_str());
  curl_easy_setopt(
      handle, CURLOPT_WRITEFUNCTION,
      +[](const char*, std::size_t, std::size_t size, void*) { return size; });
  curl_easy_perform(handle);
  return {residentKilobytes()};
}

Numbers oneCall(const std::string& server) {
  installLibrary(libraryPlatform(server), server);
  makeCalls(*makeClient(), server, 1, 1);
  return {residentKilobytes()};
}

/// Kilobytes for each call at the worst moment, over what a first call leaves.
Numbers manyCalls(Make make, bool isLibrary, const std::vector<std::string>& servers,
                  int inFlight) {
  if (isLibrary) installLibrary(libraryPlatform(servers.front()), servers.front());
  const auto contender = make();
  makeCalls(*contender, servers.front(), 1, 1);
  const double before = residentKilobytes();
  makeCalls(*contender, servers, std::max(5000, inFlight), inFlight);
  return {(peakResidentKilobytes() - before) / inFlight};
}

}  // namespace

Rows memoryRows(const Run& run) {
  Numbers over;
  Numbers perCall;
  Numbers rawPerCall;
  Numbers ofOne;
  Numbers ofMany;
  for (int round = 0; round < run.rounds; ++round) {
    over.push_back(inChild([&] { return oneCall(run.server); }).at(0) -
                   inChild([&] { return libcurlOnly(run.server); }).at(0));
    const std::vector one{run.server};
    perCall.push_back(inChild([&] { return manyCalls(&makeLibrary, true, one, 1000); }).at(0));
    rawPerCall.push_back(inChild([&] { return manyCalls(&makeCurl, false, one, 1000); }).at(0));
    ofOne.push_back(inChild([&] { return manyCalls(&makeLibrary, true, one, 10'000); }).at(0));
    ofMany.push_back(
        inChild([&] { return manyCalls(&makeLibrary, true, run.servers, 10'000); }).at(0));
  }
  return {
      {"resident memory after a call, over a process that only uses libcurl", "≤ 1,024 KB",
       format("%.0f KB", median(over)), median(over) <= 1024},
      {"memory per call at 1,000 in flight", "≤ 24 KB",
       format("%.1f KB (raw multi: %.1f KB)", median(perCall), median(rawPerCall)),
       median(perCall) <= 24},
      {"memory per call at 10,000 in flight, all of them under way to 157 servers", "≤ 20 KB",
       format("%.1f KB (to one server, 64 under way: %.1f KB)", median(ofMany), median(ofOne)),
       median(ofMany) <= 20},
  };
}
