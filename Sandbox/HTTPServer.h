#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

#include <Sandbox/Exchange.h>
#include <Sandbox/Misbehaviour.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

/// An HTTP/1.1 server on the loopback interface, with a thread for each connection so that any of
/// them can be held up, slowed down or broken without the others noticing.
class ZLVHTTPServer {
 public:
  struct Reply {
    ZLVSandboxAnswer answer;
    ZLVMisbehaviour misbehaviour{};
  };
  /// Called on the connections' threads. What it throws is answered with status 500.
  using Handler = std::function<Reply(const ZLVSandboxRequest& request)>;

  /// Reserves the port; connections wait until `start`. Throws `std::runtime_error`.
  explicit ZLVHTTPServer(std::uint16_t port);
  ~ZLVHTTPServer() { stop(); }

  [[nodiscard]] std::uint16_t port() const { return port_; }
  void start(Handler handler);
  /// Ends every connection and joins every thread. Not from the handler.
  void stop();

 private:
  using Socket = boost::asio::ip::tcp::socket;
  struct Connection {
    Socket socket;
    std::thread thread{};
  };

  void acceptConnections();
  void serve(Socket& socket, std::size_t number);
  /// Whether the connection can be used further.
  bool send(Socket& socket, Reply reply, bool isHead, bool isKeptAlive);
  /// Lets the time pass; false when the server stops.
  bool pause(std::chrono::milliseconds time);

  boost::asio::io_context context_{1};
  boost::asio::ip::tcp::acceptor acceptor_{context_};
  std::uint16_t port_ = 0;
  Handler handler_;
  std::once_flag stopped_;
  std::mutex mutex_;
  std::condition_variable stopSignal_;
  bool stopping_ = false;
  // A connection's socket is open as long as its thread uses it.
  std::list<Connection> connections_;
  std::thread acceptThread_;
};
