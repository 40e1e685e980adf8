#include <stdexcept>

#include <libsoup/soup.h>

#include "Benchmarks/Comparison/Contender.h"

namespace {

class Soup final : public Contender {
 public:
  Soup() = default;
  Soup(const Soup&) = delete;
  Soup& operator=(const Soup&) = delete;
  ~Soup() override {
    g_object_unref(session_);
    g_main_loop_unref(loop_);
  }

  void start(const std::string& server) override {
    SoupMessage* message = soup_message_new("GET", (server + accountPath).c_str());
    for (const auto& [name, value] : requestHeaders) {
      soup_message_headers_append(soup_message_get_request_headers(message), name, value);
    }
    soup_session_send_and_read_async(session_, message, G_PRIORITY_DEFAULT, nullptr, &Soup::end,
                                     this);
    g_object_unref(message);
  }
  void run() override { g_main_loop_run(loop_); }
  void stop() override { g_main_loop_quit(loop_); }

 private:
  static void end(GObject* session, GAsyncResult* result, void* self) {
    GBytes* body = soup_session_send_and_read_finish(SOUP_SESSION(session), result, nullptr);
    if (body == nullptr) throw std::runtime_error("libsoup: the call failed");
    gsize size = 0;
    const void* bytes = g_bytes_get_data(body, &size);
    const auto record = recordOf({static_cast<const char*>(bytes), size});
    g_bytes_unref(body);
    static_cast<Soup*>(self)->done(record);
  }

  GMainLoop* loop_ = g_main_loop_new(nullptr, FALSE);
  SoupSession* session_ =
      soup_session_new_with_options("max-conns", 1024, "max-conns-per-host", 1024, nullptr);
};

}  // namespace

std::unique_ptr<Contender> makeSoup() { return std::make_unique<Soup>(); }
