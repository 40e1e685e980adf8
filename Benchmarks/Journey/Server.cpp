// server CERTIFICATE KEY LOG: the sandbox over TLS 1.3 at port 443 of every address, as the
// merchant's server, the wallet's and the collector of whatever name it is called by. What it is
// called by stands in the URLs that it sends. For each request it writes a line of JSON to LOG.

#include <chrono>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

#include <Sandbox/Sandbox.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/json.hpp>

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
namespace json = boost::json;
using tcp = asio::ip::tcp;
using Stream = asio::ssl::stream<tcp::socket>;
using Clock = std::chrono::system_clock;

double seconds(Clock::time_point time) {
  return std::chrono::duration<double>(time.time_since_epoch()).count();
}

void replaceAll(std::string& text, std::string_view what, std::string_view with) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

/// The sandbox with an account that has been activated. It answers to names that a client can know
/// beforehand: "acc-1" is the account, "option-1" its first payment option.
class Shop {
 public:
  Shop() {
    const auto link =
        call("POST", "/v2/pay/account",
             R"({"payment_type":"zolva","zolva_partner":{"phone_number":"7700900123",)"
             R"("country_code":"44","redirect_url":"journey://done"}})");
    const auto linked = json::parse(link.body);
    accountID_ = linked.at("account_id").as_string();
    std::string page(linked.at_pointer("/actions/0/url").as_string());
    page.erase(0, sandbox_.baseURL().size());
    call("POST", page, "decision=confirm");
    const auto account = json::parse(call("GET", "/v2/pay/account/" + accountID_, "").body);
    optionToken_ = account.at_pointer("/metadata/payment_options/0/token").as_string();
  }

  /// What the sandbox answers to a request that came to `host`.
  ZLVSandboxAnswer answer(ZLVSandboxRequest request, const std::string& host) {
    replaceAll(request.target, "acc-1", accountID_);
    replaceAll(request.body, "acc-1", accountID_);
    replaceAll(request.body, "option-1", optionToken_);
    auto answer = sandbox_.exchange(request).first;
    // The wallet is another server than the merchant's.
    auto wallet = host;
    replaceAll(wallet, "merchant", "wallet");
    replaceAll(answer.body, sandbox_.baseURL(), "https://" + wallet);
    return answer;
  }

 private:
  ZLVSandboxAnswer call(const char* method, const std::string& target, const char* body) {
    return sandbox_
        .exchange(
            {.method = method,
             .target = target,
             .headers = {{"X-Source", "mobile-ios"},
                         {"X-Mobile-Platform", "ios"},
                         {"Content-Type",
                          *body == '{' ? "application/json" : "application/x-www-form-urlencoded"}},
             .body = body})
        .first;
  }

  ZLVSandbox sandbox_;
  std::string accountID_, optionToken_;
};

/// The page tells when its first frame is out: the callback after the one before it was painted.
/// By its own clock, which is this machine's, so that the way back does not count.
void letTellOfPaint(ZLVSandboxAnswer& page) {
  page.setHeader("Content-Security-Policy", "");
  replaceAll(page.body, "</body>",
             "<script>requestAnimationFrame(() => requestAnimationFrame(() => "
             "fetch('/painted?at=' + Date.now())))</script></body>");
}

class Log {
 public:
  explicit Log(const char* file) : file_(file) {}

  void write(const json::object& line) {
    const std::lock_guard lock(mutex_);
    file_ << json::serialize(line) << std::endl;
  }

 private:
  std::mutex mutex_;
  std::ofstream file_;
};

/// Serves a connection until the client closes it: the server keeps it open for ever.
void serve(tcp::socket socket, asio::ssl::context& tls, Shop& shop, Log& log) try {
  const auto accepted = Clock::now();
  socket.set_option(tcp::no_delay(true));
  Stream stream(std::move(socket), tls);
  stream.handshake(Stream::server);
  const auto established = Clock::now();
  boost::beast::flat_buffer buffer;
  for (int number = 1;; ++number) {
    http::request<http::string_body> message;
    http::read(stream, buffer, message);
    const auto received = Clock::now();
    ZLVSandboxRequest request{.method = std::string(message.method_string()),
                              .target = std::string(message.target()),
                              .headers = {},
                              .body = message.body()};
    for (const auto& field : message)
      request.headers.emplace_back(field.name_string(), field.value());
    const std::string host(request.header("Host"));

    ZLVSandboxAnswer answer{.status = 204, .headers = {}, .body = {}};
    if (!request.target.starts_with("/painted")) answer = shop.answer(request, host);
    if (request.target.starts_with("/wallet/")) letTellOfPaint(answer);
    http::response<http::string_body> reply(http::int_to_status(answer.status), 11);
    for (const auto& [name, value] : answer.headers) {
      if (!value.empty()) reply.insert(name, value);
    }
    reply.body() = answer.body;
    if (answer.status != 204) reply.prepare_payload();
    // First, so that whoever has the answer finds the line.
    log.write({{"host", host},
               {"method", request.method},
               {"target", request.target},
               {"status", answer.status},
               {"accepted", seconds(accepted)},
               {"established", seconds(established)},
               {"received", seconds(received)},
               {"tls", SSL_get_version(stream.native_handle())},
               {"resumed", SSL_session_reused(stream.native_handle()) == 1},
               {"number", number}});
    http::write(stream, reply);
  }
} catch (const boost::system::system_error&) {
  // The client is gone.
}

void serveAll(const char* certificate, const char* key, const char* file) {
  Shop shop;
  Log log(file);
  asio::ssl::context tls(asio::ssl::context::tls_server);
  tls.use_certificate_chain_file(certificate);
  tls.use_private_key_file(key, asio::ssl::context::pem);
  SSL_CTX_set_min_proto_version(tls.native_handle(), TLS1_3_VERSION);
  SSL_CTX_set_session_id_context(tls.native_handle(), nullptr, 0);
  asio::io_context context;
  tcp::acceptor acceptor(context, {tcp::v4(), 443});
  for (;;) {
    std::thread([socket = acceptor.accept(), &tls, &shop, &log]() mutable {
      serve(std::move(socket), tls, shop, log);
    }).detach();
  }
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 4) throw std::runtime_error("usage: server CERTIFICATE KEY LOG");
  serveAll(argv[1], argv[2], argv[3]);
} catch (const std::exception& error) {
  std::fprintf(stderr, "server: %s\n", error.what());
  return 1;
}
