// A host behind the C interface that does anything in any order. Each line of the input is one
// thing that it does: a letter, for most a digit that picks one of the handles it was ever given,
// and a text.
//
//     l partner details    c charge details    e account id    d account id
//     a digit status body    f digit user info    x digit    (ends a task: answer, error, release)
//     r digit    q digit    R    (runs a block, drops it, runs all)
//     p digit    u URL    t digit    v    (closes a page, opens a URL, puts a page on top, a new
//     view) s digit    i body    n digit text    (what show_page, send and device_fact do from now
//     on)

#include <list>

#include "Tests/C/FakeHost.h"
#include "Tests/Fuzz/Fuzz.h"

namespace {

struct Call {
  zlv_result result = ZLV_OK;
  Answers answers;
};

/// One of the handles given so far; a null pointer when there is none.
template <class Handles>
auto pick(const Handles& handles, std::size_t number) {
  return handles.empty() ? typename Handles::value_type() : handles[number % handles.size()];
}
template <class Given>
auto handleOf(const Given& given, std::size_t number) {
  return pick(given, number).handle;
}

/// All of them, those too that come in meanwhile.
void each(const auto& given, auto use) {
  for (std::size_t next = 0; next < given.size();) {
    const auto one = given[next++];
    use(one);
  }
}

class Script {
 public:
  explicit Script(std::string_view text) : text_(text) {
    host_.root = nullptr;
    host_.blocks.clear();
    host_.tasks.clear();
    host_.pages.clear();
    host_.faults.clear();
    host_.onShow = [this](const auto& page) { return show(page); };
    makeView();
  }

  void run() {
    for (const auto& line : linesOf(text_)) step(line);
    host_.onSend = nullptr;
    host_.onFact = nullptr;
    zlv_view_release(view_);
    each(host_.tasks, [](const auto& task) { zlv_task_release(task.handle); });
    runBlocks();
    show_ = '1';
    each(host_.pages, [](const auto& page) { zlv_page_closed(page.handle); });
    runBlocks();
    for (const auto& call : calls_) {
      promise(call.answers.count() == (call.result == ZLV_OK ? 1U : 0U),
              "A call is refused, or answered once.", text_);
    }
    promise(viewsReleased_ == viewsMade_, "A view is released.", text_);
    promise(zlv_run_until_idle(
                0, [](void*, std::int64_t) {}, nullptr) == ZLV_OK,
            "Nothing is left under way.", text_);
  }

 private:
  void step(std::string_view line) {
    if (line.empty()) return;
    const char what = line[0];
    const std::string text(line.substr(1));
    const std::string rest(text.empty() ? text : text.substr(1));
    const std::size_t number = text.empty() ? 0 : static_cast<unsigned char>(text[0]) % 10;
    switch (what) {
      case 'l':
        return begin([&](Call& call) {
          return zlv_link("zolva", text.c_str(), view_, Answers::receive, &call.answers);
        });
      case 'c':
        return begin([&](Call& call) {
          return zlv_charge(text.c_str(), view_, Answers::receive, &call.answers);
        });
      case 'e':
        return begin(
            [&](Call& call) { return zlv_enquire(text.c_str(), Answers::receive, &call.answers); });
      case 'd':
        return begin(
            [&](Call& call) { return zlv_disable(text.c_str(), Answers::receive, &call.answers); });
      case 'a':
        return answer(handleOf(host_.tasks, number), rest);
      case 'f':
        return fail(handleOf(host_.tasks, number), rest);
      case 'x':
        zlv_task_release(handleOf(host_.tasks, number));
        return;
      case 'r':
        zlv_block_run(pick(host_.blocks, number));
        return;
      case 'q':
        zlv_block_release(pick(host_.blocks, number));
        return;
      case 'R':
        return runBlocks();
      case 'p':
        zlv_page_closed(handleOf(host_.pages, number));
        return;
      case 'u':
        zlv_handle_callback_url(text.c_str());
        return;
      case 't':
        top_.page = handleOf(host_.pages, number);
        host_.root = number == 0 ? nullptr : &stack_;
        return;
      case 'v':
        zlv_view_release(view_);
        return makeView();
      case 's':
        show_ = text.empty() ? '1' : text[0];
        return;
      case 'i':
        host_.onSend = [text](const auto& task) { answer(task.handle, text); };
        if (text.empty()) host_.onSend = nullptr;
        return;
      case 'n':
        host_.onFact = [text, number](std::int32_t fact, zlv_text* answer) {
          if (static_cast<std::size_t>(fact) == number + 1) zlv_text_set(answer, text.c_str());
        };
        return;
      default:
        return;
    }
  }

  template <class Start>
  void begin(Start start) {
    auto& call = calls_.emplace_back();
    call.result = start(call);
    promise(call.result == ZLV_OK || *zlv_last_fault() != '\0', "A refusal has its text.", text_);
  }

  static void answer(zlv_task* task, const std::string& text) {
    const std::string body = text.size() > 3 ? text.substr(3) : "";
    const auto given = answerOf(std::atoi(text.substr(0, 3).c_str()), body);
    zlv_task_answer(task, &given);
  }

  static void fail(zlv_task* task, const std::string& info) {
    auto given = sized<zlv_answer>();
    given.error_domain = ZLV_URL_ERROR_DOMAIN;
    given.error_code = ZLV_URL_ERROR_TIMED_OUT;
    given.error_user_info = info.c_str();
    zlv_task_answer(task, &given);
  }

  std::int32_t show(const FakeHost::Page& page) {
    if (show_ == '2') zlv_page_closed(page.handle);
    top_.page = page.handle;
    host_.root = &stack_;
    if (show_ == '3') zlv_handle_callback_url("shop://done");
    return show_ == '0' ? 0 : 1;
  }

  void makeView() {
    view_ = zlv_view_create(&viewsReleased_, [](void* count) { ++*static_cast<int*>(count); });
    ++viewsMade_;
  }

  void runBlocks() {
    each(host_.blocks, [](auto* block) { zlv_block_run(block); });
  }

  FakeHost& host_ = FakeHost::installed();
  const std::string text_;
  std::list<Call> calls_;
  zlv_view* view_ = nullptr;
  int viewsMade_ = 0;
  int viewsReleased_ = 0;
  char show_ = '1';
  FakeHost::View top_{ZLV_VIEW_PAGE};
  FakeHost::View shop_{ZLV_VIEW_OTHER, &top_};
  FakeHost::View stack_{ZLV_VIEW_NAVIGATION_CONTROLLER, nullptr, &shop_};
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Script(textOf(data, size)).run();
  return 0;
}
