#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>

#include "Benchmarks/Comparison/Contender.h"

namespace {

class Curl final : public Contender {
 public:
  explicit Curl(bool reusesHandles) : reusesHandles_(reusesHandles) {
    for (const auto& [name, value] : requestHeaders) {
      headers_ = curl_slist_append(headers_, (std::string(name) + ": " + value).c_str());
    }
    thread_ = std::thread([this] { work(); });
  }
  Curl(const Curl&) = delete;
  Curl& operator=(const Curl&) = delete;
  ~Curl() override {
    add({});
    thread_.join();
    idle_.clear();
    curl_multi_cleanup(multi_);
    curl_slist_free_all(headers_);
  }

  void start(const std::string& server) override { add(server + accountPath); }
  void run() override { queue_->run(); }
  void stop() override { queue_->stop(); }

 private:
  struct Call {
    Call() = default;
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() { curl_easy_cleanup(handle); }

    static std::size_t write(const char* bytes, std::size_t, std::size_t size, void* self) {
      static_cast<Call*>(self)->body.append(bytes, size);
      return size;
    }

    CURL* handle = curl_easy_init();
    std::string body;
  };

  /// An empty URL ends the thread.
  void add(std::string url) {
    bool isFirst = false;
    {
      const std::lock_guard lock(mutex_);
      added_.push_back(std::move(url));
      isFirst = added_.size() == 1;
    }
    if (isFirst) curl_multi_wakeup(multi_);
  }

  void work() {
    for (int running = 0; begin();) {
      curl_multi_perform(multi_, &running);
      int remaining = 0;
      while (const CURLMsg* message = curl_multi_info_read(multi_, &remaining)) end(*message);
      curl_multi_poll(multi_, nullptr, 0, 1000, nullptr);
    }
  }

  bool begin() {
    std::vector<std::string> added;
    {
      const std::lock_guard lock(mutex_);
      added.swap(added_);
    }
    if (std::ranges::find(added, "") != added.end()) return false;
    for (const auto& url : added) {
      // libcurl has it until it gives it back in `end`.
      Call* call = takeCall().release();
      curl_easy_setopt(call->handle, CURLOPT_URL, url.c_str());
      curl_multi_add_handle(multi_, call->handle);
    }
    return true;
  }

  std::unique_ptr<Call> takeCall() {
    if (!idle_.empty()) {
      auto used = std::move(idle_.back());
      idle_.pop_back();
      return used;
    }
    auto call = std::make_unique<Call>();
    curl_easy_setopt(call->handle, CURLOPT_PRIVATE, call.get());
    curl_easy_setopt(call->handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(call->handle, CURLOPT_HTTPHEADER, headers_);
    curl_easy_setopt(call->handle, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(call->handle, CURLOPT_WRITEFUNCTION, &Call::write);
    curl_easy_setopt(call->handle, CURLOPT_WRITEDATA, call.get());
    return call;
  }

  void end(const CURLMsg& message) {
    if (message.data.result != CURLE_OK) {
      throw std::runtime_error(curl_easy_strerror(message.data.result));
    }
    Call* given = nullptr;
    curl_easy_getinfo(message.easy_handle, CURLINFO_PRIVATE, &given);
    std::unique_ptr<Call> call(given);
    curl_multi_remove_handle(multi_, call->handle);
    queue_->dispatch(
        [this, value = decoded(call->body)] { done(ZLVAccountInfo::initWithDictionary(value)); });
    if (!reusesHandles_) return;
    call->body.clear();
    idle_.push_back(std::move(call));
  }

  std::shared_ptr<ZLVLinuxMainQueue> queue_ = ZLVLinuxMainQueue::mainQueue();
  CURLM* multi_ = (curl_global_init(CURL_GLOBAL_DEFAULT), curl_multi_init());
  curl_slist* headers_ = nullptr;
  const bool reusesHandles_;
  std::vector<std::unique_ptr<Call>> idle_;
  std::mutex mutex_;
  std::vector<std::string> added_;
  std::thread thread_;
};

}  // namespace

std::unique_ptr<Contender> makeCurl() { return std::make_unique<Curl>(false); }
std::unique_ptr<Contender> makeCurlWithUsedHandles() { return std::make_unique<Curl>(true); }
