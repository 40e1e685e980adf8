#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <Sandbox/Sandbox.h>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/json.hpp>

namespace json = boost::json;

inline const ZLVSandboxHeaders MerchantHeaders = {
    {"X-Source", "mobile-ios"}, {"X-Mobile-Platform", "ios"}, {"Content-Type", "application/json"}};

/// One connection to a sandbox.
class SandboxClient {
 public:
  using Response = boost::beast::http::response<boost::beast::http::string_body>;

  explicit SandboxClient(const ZLVSandbox& sandbox) {
    socket_.connect({boost::asio::ip::address_v4::loopback(), sandbox.port()});
  }

  /// Throws when there is no whole answer.
  Response call(std::string_view method, std::string_view target, std::string body = {},
                const ZLVSandboxHeaders& headers = MerchantHeaders) {
    namespace http = boost::beast::http;
    http::request<http::string_body> request{http::string_to_verb(method), target, 11};
    for (const auto& [name, value] : headers) request.set(name, value);
    request.body() = std::move(body);
    request.prepare_payload();
    http::write(socket_, request);
    Response response;
    http::read(socket_, buffer_, response);
    return response;
  }

  void send(std::string_view text) {
    boost::asio::write(socket_, boost::asio::buffer(text.data(), text.size()));
  }

  /// Everything that comes until the connection ends, and how it ends.
  std::pair<std::string, boost::system::error_code> receive() {
    boost::system::error_code error;
    std::string received;
    boost::asio::read(socket_, boost::asio::dynamic_buffer(received), error);
    return {std::move(received), error};
  }

 private:
  boost::asio::io_context context_;
  boost::asio::ip::tcp::socket socket_{context_};
  boost::beast::flat_buffer buffer_;
};

/// A text at a JSON pointer of an answer; empty when there is none.
inline std::string textAt(const SandboxClient::Response& response, std::string_view pointer) {
  boost::json::error_code error;
  const auto body = json::parse(response.body());
  const auto* value = body.find_pointer(pointer, error);
  return value != nullptr && value->is_string() ? json::value_to<std::string>(*value) : "";
}
