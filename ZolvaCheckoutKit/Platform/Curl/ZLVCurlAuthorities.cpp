#include <string>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlAuthorities.h>

namespace {

/// A socket on this machine that can be connected to, and sent to, without anybody there. Nobody
/// listens for connections.
class Nobody {
 public:
  Nobody() {
    if (socket_ < 0) return;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const name = reinterpret_cast<sockaddr*>(&address);  // NOLINT(*-reinterpret-cast)
    socklen_t size = sizeof address;
    if (bind(socket_, name, size) == 0 && getsockname(socket_, name, &size) == 0) {
      port_ = ntohs(address.sin_port);
    }
  }
  Nobody(const Nobody&) = delete;
  Nobody& operator=(const Nobody&) = delete;
  ~Nobody() {
    if (socket_ >= 0) close(socket_);
  }

  /// 0 where there is no socket to be had.
  [[nodiscard]] int port() const { return port_; }

  static int open() { return ZLVCurlSystem::openSocket(AF_INET, SOCK_DGRAM, 0, {}); }

 private:
  int socket_ = open();
  int port_ = 0;
};

}  // namespace

void ZLVCurlAuthorities::read(CURLM* multi, ZLVCurlContext& context) {
  const Nobody nobody;
  const auto handle = context.handles.take();
  if (nobody.port() == 0 || !handle) return;
  const auto set = [&handle](CURLoption option, auto value) {
    curl_easy_setopt(handle.get(), option, value);
  };
  set(CURLOPT_URL, ("https://127.0.0.1:" + std::to_string(nobody.port())).c_str());
  set(CURLOPT_PROXY, "");
  set(CURLOPT_CONNECT_ONLY, 1L);
  set(CURLOPT_NOPROGRESS, 1L);
  set(
      CURLOPT_OPENSOCKETFUNCTION,
      +[](void*, curlsocktype, curl_sockaddr*) -> curl_socket_t { return Nobody::open(); });
  if (curl_multi_add_handle(multi, handle.get()) != CURLM_OK) return;
  int running = 0;
  curl_multi_socket_action(multi, CURL_SOCKET_TIMEOUT, 0, &running);  // connects
  curl_multi_socket_action(multi, CURL_SOCKET_TIMEOUT, 0, &running);  // and says hello
  curl_multi_remove_handle(multi, handle.get());
}
