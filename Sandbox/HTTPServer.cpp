#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

#include <Sandbox/HTTPServer.h>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <sys/socket.h>

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using boost::system::error_code;
using tcp = asio::ip::tcp;

constexpr std::uint64_t LargestRequest = 64U << 20U;
constexpr std::uint64_t LargestPiece = 64U << 10U;

/// An answer as the bytes that travel: a text and, after it, as many spaces as make up the size.
class Wire {
 public:
  Wire(ZLVHTTPServer::Reply&& reply, bool isHead, bool isKeptAlive) {
    auto& [answer, misbehaviour] = reply;
    const unsigned status = answer.status;
    const std::uint64_t bodySize = misbehaviour.bodySize.value_or(answer.body.size());
    const bool bodyless = status == 204 || status == 304;
    answer.body.resize(std::min<std::uint64_t>(bodySize, answer.body.size()));
    if (!bodyless) answer.setHeader("Content-Length", std::to_string(bodySize));
    answer.setHeader("Connection", isKeptAlive ? "keep-alive" : "close");
    for (const auto& [name, value] : misbehaviour.headers) answer.setHeader(name, value);

    text_ = "HTTP/1.1 " + std::to_string(status) + " ";
    text_ += http::obsolete_reason(http::int_to_status(status));
    text_ += "\r\n";
    for (const auto& [name, value] : answer.headers) {
      text_.append(name).append(": ").append(value).append("\r\n");
    }
    text_ += "\r\n";
    bodyStart_ = size_ = text_.size();
    if (bodyless || isHead) return;
    text_ += answer.body;
    size_ += bodySize;
  }

  [[nodiscard]] std::uint64_t bodyStart() const { return bodyStart_; }

  [[nodiscard]] std::uint64_t offset(ZLVMisbehaviour::Point point) const {
    const std::array offsets{std::uint64_t{0}, bodyStart_ / 2, bodyStart_,
                             bodyStart_ + (size_ - bodyStart_) / 2, size_};
    return offsets.at(static_cast<std::size_t>(point));
  }

  /// The bytes from `offset` on, at most `length` of them and at least one.
  [[nodiscard]] std::string_view piece(std::uint64_t offset, std::uint64_t length) const {
    static const std::string spaces(LargestPiece, ' ');
    if (offset < text_.size()) return std::string_view(text_).substr(offset, length);
    return std::string_view(spaces).substr(0, length);
  }

 private:
  std::string text_;
  std::uint64_t bodyStart_;
  std::uint64_t size_;
};

ZLVSandboxAnswer plain(unsigned status, std::string text) {
  return {status, {{"Content-Type", "text/plain"}}, std::move(text)};
}

/// Reads until there is nothing more to come.
void drain(tcp::socket& socket) {
  std::array<char, 4096> ignored{};
  for (error_code error; !error;) socket.read_some(asio::buffer(ignored), error);
}

/// Whether the client is there and sent something other than HTTP.
bool isMalformed(const error_code& error) {
  static const auto& category = http::make_error_code(http::error::bad_method).category();
  return error && error.category() == category && error != http::error::end_of_stream &&
         error != http::error::partial_message;
}

ZLVSandboxRequest received(const http::request<http::string_body>& message, std::size_t number) {
  ZLVSandboxRequest request{.method = std::string(message.method_string()),
                            .target = std::string(message.target()),
                            .headers = {},
                            .body = message.body(),
                            .connection = number};
  for (const auto& field : message) {
    request.headers.emplace_back(field.name_string(), field.value());
  }
  return request;
}

error_code& ignored() {
  thread_local error_code error;
  return error;
}

}  // namespace

ZLVHTTPServer::ZLVHTTPServer(std::uint16_t port) {
  try {
    const tcp::endpoint endpoint(asio::ip::address_v4::loopback(), port);
    acceptor_.open(endpoint.protocol());
    acceptor_.set_option(tcp::acceptor::reuse_address(true));
    acceptor_.bind(endpoint);
    acceptor_.listen();
    port_ = acceptor_.local_endpoint().port();
  } catch (const boost::system::system_error& error) {
    throw std::runtime_error("cannot listen on 127.0.0.1:" + std::to_string(port) + ": " +
                             error.code().message());
  }
}

void ZLVHTTPServer::start(Handler handler) {
  handler_ = std::move(handler);
  acceptThread_ = std::thread([this] { acceptConnections(); });
}

void ZLVHTTPServer::stop() {
  std::call_once(stopped_, [this] {
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
      // Waking blocked calls is the system's affair: the sockets stay with their threads.
      ::shutdown(acceptor_.native_handle(), SHUT_RDWR);
      for (auto& [socket, thread] : connections_) {
        if (socket.is_open()) ::shutdown(socket.native_handle(), SHUT_RDWR);
      }
    }
    stopSignal_.notify_all();
    if (acceptThread_.joinable()) acceptThread_.join();
    for (auto& connection : connections_) connection.thread.join();
    acceptor_.close(ignored());
  });
}

void ZLVHTTPServer::acceptConnections() {
  for (std::size_t number = 1;;) {
    tcp::socket socket(context_);
    error_code error;
    acceptor_.accept(socket, error);
    if (error) {
      if (!pause(std::chrono::milliseconds(10))) return;
      continue;
    }
    const std::lock_guard lock(mutex_);
    if (stopping_) return;
    connections_.remove_if([](Connection& connection) {
      if (connection.socket.is_open()) return false;
      connection.thread.join();
      return true;
    });
    auto& connection = connections_.emplace_back(Connection{std::move(socket)});
    connection.thread = std::thread([this, &connection, number] {
      serve(connection.socket, number);
      const std::lock_guard closing(mutex_);
      connection.socket.close(ignored());
    });
    ++number;
  }
}

void ZLVHTTPServer::serve(Socket& socket, std::size_t number) {
  socket.set_option(tcp::no_delay(true), ignored());
  boost::beast::flat_buffer buffer;
  for (bool isOpen = true; isOpen;) {
    http::request_parser<http::string_body> parser;
    parser.body_limit(LargestRequest);
    error_code error;
    http::read(socket, buffer, parser, error);
    const auto& message = parser.get();
    if (isMalformed(error)) {
      send(socket, {plain(400, error.message())}, false, false);
      socket.shutdown(tcp::socket::shutdown_send, ignored());
      return drain(socket);
    }
    if (error) return;
    Reply reply;
    try {
      reply = handler_(received(message, number));
    } catch (const std::exception& fault) {
      reply.answer = plain(500, fault.what());
    }
    const bool isHead = message.method() == http::verb::head;
    isOpen = send(socket, std::move(reply), isHead, message.keep_alive()) && message.keep_alive();
  }
}

bool ZLVHTTPServer::send(Socket& socket, Reply reply, bool isHead, bool isKeptAlive) {
  const ZLVMisbehaviour misbehaviour = reply.misbehaviour;
  const Wire wire(std::move(reply), isHead, isKeptAlive);
  const auto& trickle = misbehaviour.trickle;
  const auto& interruption = misbehaviour.interruption;
  const std::uint64_t end =
      wire.offset(interruption ? interruption->second : ZLVMisbehaviour::Point::AfterBody);

  if (!pause(misbehaviour.delay)) return false;
  for (std::uint64_t offset = 0; offset < end;) {
    std::uint64_t length = std::min(end - offset, LargestPiece);
    if (trickle && offset < wire.bodyStart()) {
      length = std::min(length, wire.bodyStart() - offset);
    } else if (trickle) {
      length = std::clamp<std::uint64_t>(trickle->bytes, 1, length);
      if (!pause(trickle->interval)) return false;
    }
    const auto piece = wire.piece(offset, length);
    error_code error;
    asio::write(socket, asio::buffer(piece.data(), piece.size()), error);
    if (error) return false;
    offset += piece.size();
  }
  if (!interruption) return true;
  if (interruption->first == ZLVMisbehaviour::Break::Stall) drain(socket);
  if (interruption->first == ZLVMisbehaviour::Break::Reset) {
    socket.set_option(asio::socket_base::linger(true, 0), ignored());
  }
  return false;
}

bool ZLVHTTPServer::pause(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  return !stopSignal_.wait_for(lock, time, [this] { return stopping_; });
}
