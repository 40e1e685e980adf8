#include <array>
#include <stdexcept>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Benchmarks/Comparison/Contender.h"

namespace {

class Socket final : public Contender {
 public:
  Socket() = default;
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket() override { close(socket_); }

  void start(const std::string& server) override {
    const auto host = server.substr(server.find("//") + 2);
    if (socket_ < 0) connectTo(host);
    std::string request = std::string("GET ") + accountPath + " HTTP/1.1\r\nHost: " + host + "\r\n";
    for (const auto& [name, value] : requestHeaders)
      request.append(name).append(": ").append(value) += "\r\n";
    request += "\r\n";
    if (send(socket_, request.data(), request.size(), 0) < 0) throw std::runtime_error("send");
  }
  void run() override {
    for (isStopped_ = false; !isStopped_;) done(recordOf(receive()));
  }
  void stop() override { isStopped_ = true; }

 private:
  void connectTo(const std::string& host) {
    socket_ = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port =
        htons(static_cast<std::uint16_t>(std::stoi(host.substr(host.find(':') + 1))));
    if (connect(socket_, static_cast<sockaddr*>(static_cast<void*>(&address)), sizeof address) !=
        0) {
      throw std::runtime_error("connect");
    }
  }

  /// The body of one answer, valid until the next.
  std::string_view receive() {
    constexpr std::string_view field = "Content-Length: ";
    for (std::size_t size = 0;;) {
      const auto count = recv(socket_, buffer_.data() + size, buffer_.size() - size, 0);
      if (count <= 0) throw std::runtime_error("recv");
      size += static_cast<std::size_t>(count);
      const std::string_view text(buffer_.data(), size);
      const auto end = text.find("\r\n\r\n");
      if (end == std::string_view::npos) continue;
      const auto length = std::stoul(std::string(text.substr(text.find(field) + field.size(), 8)));
      if (size == end + 4 + length) return text.substr(end + 4);
    }
  }

  int socket_ = -1;
  bool isStopped_ = false;
  std::array<char, 65536> buffer_{};
};

}  // namespace

std::unique_ptr<Contender> makeSocket() { return std::make_unique<Socket>(); }
