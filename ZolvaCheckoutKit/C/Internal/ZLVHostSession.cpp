#include <memory>
#include <string>
#include <vector>

#include <ZolvaCheckoutKit/C/Internal/ZLVDocuments.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHandles.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostSession.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

namespace {

/// A request that the host has, and who waits for its answer.
struct Task {
  Task(ZLVURLRequest given, ZLVURLSession::CompletionHandler waiting)
      : request(std::move(given)), handler(std::move(waiting)) {
    for (const auto& [name, value] : request.allHTTPHeaderFields) {
      names.push_back(name.c_str());
      values.push_back(value.c_str());
    }
    lent.size = sizeof lent;
    lent.method = request.HTTPMethod.c_str();
    lent.url = request.URL->absoluteString().c_str();
    lent.header_count = names.size();
    lent.header_names = names.data();
    lent.header_values = values.data();
    if (request.HTTPBody) {
      lent.body = request.HTTPBody->data();
      lent.body_length = request.HTTPBody->size();
    }
    lent.timeout = request.timeoutInterval;
  }

  const ZLVURLRequest request;
  std::vector<const char*> names, values;
  zlv_request lent{};
  ZLVURLSession::CompletionHandler handler;
};

auto& tasks() {
  static auto& tasks =
      *new ZLVHandles<zlv_task, std::unique_ptr<Task>>(ZLVHandleKind::Task, "zlv_task");
  return tasks;
}

/// The tasks that this thread is just giving to the host, one inside the other.
struct Sending {
  explicit Sending(zlv_task* given) : task(given), outer(innermost) { innermost = this; }
  Sending(const Sending&) = delete;
  Sending& operator=(const Sending&) = delete;
  ~Sending() { innermost = outer; }

  static bool isInside(const zlv_task* task) {
    const auto* sending = innermost;
    while (sending != nullptr && sending->task != task) sending = sending->outer;
    return sending != nullptr;
  }

  zlv_task* const task;
  const Sending* const outer;
  static thread_local const Sending* innermost;
};

thread_local const Sending* Sending::innermost = nullptr;

/// Ends a task. One that is lost here, for want of memory, is answered by its handler's owner.
void finish(zlv_task* handle, ZLVURLAnswer answer) {
  const auto task = tasks().take(handle);
  try {
    if (!Sending::isInside(handle)) return std::move(task->handler)(std::move(answer));
    ZLVPlatform::installed().mainQueue->dispatch(
        [handler = std::move(task->handler), answer = std::move(answer)]() mutable {
          std::move(handler)(std::move(answer));
        });
  } catch (const std::exception&) {
  }
}

ZLVURLAnswer errorAnswer(std::string_view domain, std::int64_t code, ZLVDictionary userInfo) {
  ZLVURLAnswer answer;
  answer.error = ZLVError::errorWithDomain(domain, code, std::move(userInfo));
  return answer;
}

ZLVURLAnswer answerOf(const zlv_answer& given) {
  constexpr std::string_view call = "zlv_task_answer";
  if (given.error_domain != nullptr) {
    ZLVDictionary userInfo;
    if (given.error_user_info != nullptr) {
      userInfo = ZLVObjectOfText(given.error_user_info, call, "user info");
    }
    return errorAnswer(given.error_domain, given.error_code, std::move(userInfo));
  }
  if (given.status_code < 100 || given.status_code > 999) {
    ZLVThrowFault(call, "neither an error domain nor a status code from 100 to 999");
  }
  if (given.body == nullptr && given.body_length != 0) ZLVThrowFault(call, "no body of the length");
  ZLVURLAnswer answer;
  answer.statusCode = static_cast<int>(given.status_code);
  if (given.body != nullptr) {
    answer.data.assign(static_cast<const char*>(given.body), given.body_length);
  }
  return answer;
}

}  // namespace

void ZLVHostSession::dataTask(ZLVURLRequest request, CompletionHandler handler) {
  try {
    auto task = std::make_unique<Task>(std::move(request), std::move(handler));
    const auto& lent = task->lent;
    const Sending sending(tasks().add(std::move(task)));
    host_.send(host_.context, sending.task, &lent);
  } catch (const std::exception&) {
    // Without memory: the handler has gone unused, which is an answer.
  }
}

zlv_result zlv_task_answer(zlv_task* task, const zlv_answer* answer) {
  return ZLVResultOf(
      [&] { finish(task, answerOf(ZLVStruct(answer, "zlv_task_answer", "answer"))); });
}

zlv_result zlv_task_release(zlv_task* task) {
  return ZLVResultOf([&] {
    finish(task, errorAnswer(NSURLErrorDomain, NSURLErrorCancelled,
                             {{std::string(NSLocalizedDescriptionKey),
                               "The call ended before it was answered."}}));
  });
}
