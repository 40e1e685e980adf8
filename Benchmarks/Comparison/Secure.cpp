#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <sstream>
#include <stdexcept>

#include <curl/curl.h>
#include <openssl/pem.h>
#include <unistd.h>

#include "Benchmarks/Comparison/Measurement.h"
#include "Benchmarks/Comparison/Rows.h"
#include "Benchmarks/Support/Accounts.h"
#include "Benchmarks/Support/Server.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/RawServer.h"
#include "Tests/Support/TLSIdentity.h"

namespace {

namespace fs = std::filesystem;

/// A folder of what servers and clients read, removed with it.
class Files {
 public:
  Files() {
    fs::create_directories(fs::path(path_).concat(accountPath).parent_path());
    write("authority.pem", authority_.certificatePEM());
    write("certificate.pem", identity_.certificatePEM());
    std::ostringstream system;
    system << std::ifstream(curl_version_info(CURLVERSION_NOW)->cainfo).rdbuf();
    write("all-authorities.pem", system.str() + '\n' + authority_.certificatePEM());
    write(std::string(accountPath).substr(1), accountDocument(fewPaymentOptions));
    const std::unique_ptr<std::FILE, decltype(&std::fclose)> key(
        std::fopen((path_ / "key.pem").c_str(), "w"), &std::fclose);
    PEM_write_PrivateKey(key.get(), SSL_CTX_get0_privatekey(identity_.serverContext().get()),
                         nullptr, nullptr, 0, nullptr, nullptr);
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files() { fs::remove_all(path_); }

  [[nodiscard]] std::string operator/(const char* file) const { return path_ / file; }
  [[nodiscard]] const TLSIdentity& identity() const { return identity_; }

 private:
  void write(const std::string& file, const std::string& text) const {
    std::ofstream(path_ / file) << text;
  }

  TLSIdentity authority_{{.isAuthority = true}};
  TLSIdentity identity_{{}, &authority_};
  fs::path path_ = fs::temp_directory_path() / ("zolva-benchmark-" + std::to_string(getpid()));
};

/// Milliseconds of processor for the connections to two servers, one after the other.
Numbers libraryConnections(const Run& run, const Files& files, const std::string (&servers)[2]) {
  installLibrary(libraryPlatform(run.server, files / "authority.pem"), run.server);
  const auto library = makeLibrary();
  Numbers costs;
  for (const auto& server : servers) {
    costs.push_back(makeCalls(*library, server, 1, 1).CPUSeconds * 1e3);
  }
  return costs;
}

/// The same with nothing set that need not be.
Numbers plainConnections(const Files& files, const std::string (&servers)[2]) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  CURL* handle = curl_easy_init();
  curl_easy_setopt(handle, CURLOPT_CAINFO, (files / "all-authorities.pem").c_str());
  curl_easy_setopt(
      handle, CURLOPT_WRITEFUNCTION,
      +[](const char*, std::size_t, std::size_t size, void*) { return size; });
  Numbers costs;
  for (const auto& server : servers) {
    const double before = processSeconds();
    curl_easy_setopt(handle, CURLOPT_URL, (server + accountPath).c_str());
    const auto result = curl_easy_perform(handle);
    if (result != CURLE_OK) throw std::runtime_error(curl_easy_strerror(result));
    costs.push_back((processSeconds() - before) * 1e3);
  }
  return costs;
}

Row connectionRow(const Run& run, const Files& files) {
  const auto serve = [&files](const TellPort& tellPort) {
    const auto answer = response(accountDocument(fewPaymentOptions));
    const RawServer server([&answer](const std::string&) { return RawServer::Reply{answer}; },
                           files.identity().serverContext());
    tellPort(server.port());
    pause();
  };
  const ForkedServer first(serve);
  const ForkedServer second(serve);
  const std::string servers[]{"https://127.0.0.1:" + std::to_string(first.port()),
                              "https://127.0.0.1:" + std::to_string(second.port())};
  Numbers firsts;
  Numbers seconds;
  Numbers plain;
  for (int round = 0; round < run.rounds; ++round) {
    const auto costs = inChild([&] { return libraryConnections(run, files, servers); });
    firsts.push_back(costs.at(0));
    seconds.push_back(costs.at(1));
    plain.push_back(inChild([&] { return plainConnections(files, servers); }).at(1));
  }
  return {"second TLS connection to any host: CPU", "≤ 1.5 ms",
          format("%.1f ms (first: %.1f ms; libcurl's defaults: %.1f ms)", median(seconds),
                 median(firsts), median(plain)),
          median(seconds) <= 1.5};
}

Row sharedConnectionRow(const Run& run, const Files& files) {
  constexpr int calls = 64;
  const int port = SilentListener().port();  // free again
  ChildProcess server({"/usr/sbin/nghttpd", "--verbose", "--address=127.0.0.1",
                       "--htdocs=" + files / "", std::to_string(port), files / "key.pem",
                       files / "certificate.pem"});
  server.waitForOutputLine("IPv4: listen");
  auto log = std::async(std::launch::async, [&server] { return server.finish().output; });
  inChild([&]() -> Numbers {
    installLibrary(libraryPlatform(run.server, files / "authority.pem"), run.server);
    makeCalls(*makeLibrary(), "https://127.0.0.1:" + std::to_string(port), calls, calls);
    return {};
  });
  server.signal(SIGTERM);

  std::istringstream lines(log.get());
  int connections = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line == "The negotiated protocol: h2") ++connections;
  }
  return {"64 cold https calls to an HTTP/2 server: connections", "1", std::to_string(connections),
          connections == 1};
}

}  // namespace

Rows secureRows(const Run& run) {
  const Files files;
  return {connectionRow(run, files), sharedConnectionRow(run, files)};
}
