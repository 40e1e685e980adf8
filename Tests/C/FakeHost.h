#pragma once

#include <cstdlib>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/C/zolvacheckoutkit.h>

/// A struct of the interface, set to zero but for its size.
template <class Struct>
Struct sized() {
  Struct made{};
  made.size = sizeof made;
  return made;
}

/// Refers to the body.
zlv_answer answerOf(std::int64_t status, std::string&& body) = delete;
inline zlv_answer answerOf(std::int64_t status, const std::string& body) {
  auto answer = sized<zlv_answer>();
  answer.status_code = status;
  answer.body = body.data();
  answer.body_length = body.size();
  return answer;
}

/// A host whose every function is a fake. Usage events are answered at once, on the main thread.
struct FakeHost {
  struct Task {
    zlv_task* handle = nullptr;
    std::string method, url, body;
  };
  struct Page {
    zlv_page* handle = nullptr;
    void* view = nullptr;
    std::string url;
  };
  /// A view of the host's tree; its address is the host's view.
  struct View {
    std::int32_t kind = ZLV_VIEW_OTHER;
    View* presented = nullptr;
    View* child = nullptr;
    zlv_page* page = nullptr;
  };

  std::mutex mutex;
  std::deque<zlv_block*> blocks;
  std::deque<Task> tasks;
  std::vector<Page> pages;
  std::vector<zlv_page*> hidden;
  std::vector<std::string> faults;
  std::map<std::int32_t, std::string> facts{{ZLV_FACT_BUNDLE_SHORT_VERSION, "2.1"},
                                            {ZLV_FACT_NAME, "a device"},
                                            {ZLV_FACT_SYSTEM_VERSION, "12.4"}};
  View* root = nullptr;
  std::function<void(const Task&)> onSend;
  std::function<std::int32_t(const Page&)> onShow;
  std::function<void(std::int32_t, zlv_text*)> onFact;

  static FakeHost& of(void* context) { return *static_cast<FakeHost*>(context); }

  /// The host of this process, whose platform is installed and configured.
  static FakeHost& installed() {
    static auto& installed = []() -> FakeHost& {
      auto& host = *new FakeHost;
      const auto platform = host.platform();
      const auto isReady =
          zlv_install(&platform) == ZLV_OK &&
          zlv_configure("https://shop.test/pay", "M-1", "shop://done", 0) == ZLV_OK;
      if (!isReady) std::abort();
      host.runBlocks();
      return host;
    }();
    return installed;
  }

  /// How deep this thread is in functions of the host's.
  static inline thread_local int depth = 0;
  struct Inside {
    Inside() { ++depth; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside() { --depth; }
  };

  zlv_platform platform() {
    auto made = sized<zlv_platform>();
    made.context = this;
    made.dispatch = [](void* context, zlv_block* block) {
      const Inside inside;
      const std::lock_guard lock(of(context).mutex);
      of(context).blocks.push_back(block);
    };
    made.send = [](void* context, zlv_task* handle, const zlv_request* request) {
      const Inside inside;
      of(context).send({handle, request->method, request->url,
                        std::string(static_cast<const char*>(request->body),
                                    request->body == nullptr ? 0 : request->body_length)});
    };
    made.log = [](void*, const char*) {};
    made.device_fact = [](void* context, std::int32_t fact, zlv_text* answer) {
      auto& host = of(context);
      if (host.onFact) host.onFact(fact, answer);
      const auto found = host.facts.find(fact);
      if (found != host.facts.end()) zlv_text_set(answer, found->second.c_str());
    };
    made.show_page = [](void* context, const zlv_page_request* request) {
      auto& host = of(context);
      const Page page{request->page, request->host_view, request->url};
      host.pages.push_back(page);
      return host.onShow ? host.onShow(page) : 1;
    };
    made.hide_page = [](void* context, zlv_page* page, std::int32_t) {
      of(context).hidden.push_back(page);
    };
    made.open_url = [](void*, const char*) { return 0; };
    made.key_window_root = [](void* context) -> void* { return of(context).root; };
    made.view_kind = [](void*, void* view, zlv_page** page) {
      *page = static_cast<View*>(view)->page;
      return static_cast<View*>(view)->kind;
    };
    made.presented_view = [](void*, void* view) -> void* {
      return static_cast<View*>(view)->presented;
    };
    made.last_child_view = [](void*, void* view) -> void* {
      return static_cast<View*>(view)->child;
    };
    made.fault = [](void* context, const char* text) {
      const Inside inside;
      of(context).faults.emplace_back(text);
    };
    return made;
  }

  void send(const Task& task) {
    if (task.url.ends_with("/1/upload")) {
      const std::string body = "{}";
      const auto answer = answerOf(200, body);
      zlv_task_answer(task.handle, &answer);
      return;
    }
    {
      const std::lock_guard lock(mutex);
      tasks.push_back(task);
    }
    if (onSend) onSend(task);
  }

  /// The oldest block; a null pointer when there is none.
  zlv_block* nextBlock() {
    const std::lock_guard lock(mutex);
    if (blocks.empty()) return nullptr;
    auto* const block = blocks.front();
    blocks.pop_front();
    return block;
  }

  /// What was sent last, which nobody has answered yet.
  Task takeTask() {
    const Inside inside;
    const std::lock_guard lock(mutex);
    auto task = tasks.back();
    tasks.pop_back();
    return task;
  }

  void runBlocks() {
    while (auto* const block = nextBlock()) zlv_block_run(block);
  }
};

/// Counts what a completion is called with.
struct Answers {
  std::vector<std::string> records, errors;

  [[nodiscard]] std::size_t count() const { return records.size() + errors.size(); }

  static void receive(void* context, const char* record, const char* error) {
    const FakeHost::Inside inside;
    auto& answers = *static_cast<Answers*>(context);
    if (record != nullptr) answers.records.emplace_back(record);
    if (error != nullptr) answers.errors.emplace_back(error);
    if (record == nullptr && error == nullptr) answers.errors.emplace_back();
  }
};
