// What a host does at odd moments: calls from many threads and from completions, throwing, letting
// go of view controllers, leaving the main queue alone, forking and exiting.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>
#include <ZolvaCheckoutKit/ZLVAwait.h>

#include "Tests/Faults/Library.h"
#include "Tests/Support/RawServer.h"

/// Asked by the leak sanitizer when a process exits: in the child of a fork, what only the parent's
/// threads hold looks lost.
extern "C" int __lsan_is_turned_off() {  // NOLINT(*-reserved-identifier): its name
  static const auto parent = getpid();
  return getpid() == parent ? 0 : 1;
}

namespace {

constexpr auto page = R"({"status_code":"201","actions":[
  {"name":"activation-deeplink","url":"https://wallet.test/"}]})";

RawServer::Reply answer(const std::string& request) {
  const auto path = request.substr(request.find(' ') + 1);
  return {RawServer::response(path.starts_with("/page/") ? page : "{}")};
}

/// The library and a server that answers calls below "/page" that a page is to be shown.
struct World {
  RawServer server{&answer};
  Library library{server.url(), server.url()};
};

class Interleaving : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    __lsan_is_turned_off();  // in the parent
    world = std::make_unique<World>();
  }
  static void TearDownTestSuite() {
    library().endSession();
    world.reset();
  }
  Interleaving() { useServer(""); }

  static RawServer& server() { return world->server; }
  static Library& library() { return world->library; }
  /// The server's part that calls go to.
  static void useServer(const std::string& part) {
    ZLVVendor::shared().setMerchantSeverURL(server().url(part));
  }
  /// Runs the main queue and counts what completions throw.
  void run(const std::function<bool()>& isDone) {
    while (!isDone()) {
      pollfd event{library().queue().fileDescriptor(), POLLIN, 0};
      poll(&event, 1, -1);
      try {
        library().queue().drain();
      } catch (const std::runtime_error&) {
        ++thrown_;
      }
    }
  }
  static ZLVDetached awaitEnquiry(Library::Completion completion) {
    const auto account = co_await ZLVAwait::enquireAccount(Library::account);
    completion({account ? std::nullopt : std::optional(account.error()), {}});
  }
  /// Starts a number of calls on each of eight threads and waits for these.
  static void callFromEightThreads(int callsEach, const Library::Completion& completion) {
    std::vector<std::jthread> threads;
    threads.reserve(8);
    for (int thread = 0; thread < 8; ++thread) {
      threads.emplace_back([=] {
        for (int i = 0; i < callsEach; ++i) {
          i % 3 == 0   ? Library::enquire(completion)
          : i % 3 == 1 ? Library::charge(completion)
                       : void(awaitEnquiry(completion));
        }
      });
    }
  }
  static std::size_t requestsBelow(const std::string& part) {
    const auto requests = server().requests();
    return static_cast<std::size_t>(std::ranges::count_if(requests, [&](const auto& request) {
      return request.substr(request.find(' ') + 1).starts_with(part);
    }));
  }

  static inline std::unique_ptr<World> world;
  int thrown_ = 0;
};

TEST_F(Interleaving, CallsFromEightThreadsAreAnsweredOnceTheMainThreadRunsItsQueue) {
  const auto mainThread = std::this_thread::get_id();
  int answered = 0;
  callFromEightThreads(100, [&](const auto& outcome) {
    EXPECT_EQ(std::this_thread::get_id(), mainThread);
    EXPECT_FALSE(outcome.error);
    ++answered;
  });
  while (requestsBelow("/v2/") < 800) std::this_thread::yield();
  EXPECT_EQ(answered, 0);
  run([&] { return answered == 800; });
}

TEST_F(Interleaving, CompletionsCallThrowAndReconfigure) {
  constexpr int count = 300;
  int started = 0;
  int answered = 0;
  std::function<void()> next = [&] {
    const int number = started++;
    Library::charge([&, number](const auto& outcome) {
      EXPECT_FALSE(outcome.error);
      ++answered;
      if (number % 5 == 0) {
        ZLVClient::initWithMerchantServerURL(server().url(number % 2 == 0 ? "/even" : "/odd"), "M",
                                             "app://done", false);
      }
      if (started < count) next();
      if (number % 3 == 0) throw std::runtime_error("a completion");
    });
  };
  for (int i = 0; i < 8; ++i) next();
  run([&] { return answered == count; });
  EXPECT_EQ(thrown_, count / 3);
  EXPECT_GT(requestsBelow("/even/"), 0U);
  EXPECT_GT(requestsBelow("/odd/"), 0U);
}

/// A page is shown over a view controller that is presented by the root's, and goes in various
/// ways; the completion then ends the view controller, and throws.
TEST_F(Interleaving, CompletionsDestroyTheirViewController) {
  useServer("/page");
  const auto interface =
      std::dynamic_pointer_cast<ZLVConsoleUserInterface>(ZLVPlatform::installed().userInterface);
  const auto root = interface->keyWindowRootViewController();
  const std::function<void()> ways[] = {
      [&] { interface->closeBrowser(); },
      [&] { ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString("app://done")); },
      [&] { root->dismissViewControllerAnimated(false); },
  };
  ZLVVendor::shared().setCallbackUrl("app://done");
  for (const auto& way : ways) {
    int answered = 0;
    auto controller = std::make_shared<ZLVViewController>();
    const std::weak_ptr<ZLVViewController> weak = controller;
    root->presentViewController(controller, false);
    const auto completion = [&](const auto& record, const auto& error) {
      EXPECT_TRUE(record && !error);
      ++answered;
      root->dismissViewControllerAnimated(false);
      throw std::runtime_error("a completion");
    };
    ZLVClient::linkAccountWithPaymentType("zolva", nullptr, std::move(controller), completion);
    run([&] { return weak.lock()->presentedViewController() != nullptr; });
    EXPECT_EQ(answered, 0);
    thrown_ = 0;
    way();
    run([&] { return answered == 1 && thrown_ == 1; });
    EXPECT_TRUE(weak.expired());
  }
}

TEST_F(Interleaving, StalledCallsHoldUpNoOtherAndEndWithTheirSession) {
  const SilentListener silent;
  int answered = 0;
  int cancelled = 0;
  const auto callEightTimes = [](const std::string& url, const Library::Completion& completion) {
    ZLVVendor::shared().setMerchantSeverURL(url);
    for (int i = 0; i < 8; ++i) Library::charge(completion);
  };
  for (const std::string scheme : {"http", "https"}) {
    callEightTimes(scheme + "://127.0.0.1:" + std::to_string(silent.port()),
                   [&](const auto& outcome) {
                     EXPECT_EQ(outcome.error->domain(), NSURLErrorDomain);
                     EXPECT_EQ(outcome.error->code(), NSURLErrorCancelled);
                     if (++cancelled == 1) library().endSession();  // once more, from here
                   });
    callEightTimes(scheme + "://127.0.0.1:1", [&](const auto&) { ++answered; });
  }
  callEightTimes(server().url(), [&](const auto&) { ++answered; });
  run([&] { return answered == 24; });
  EXPECT_EQ(cancelled, 0);
  library().endSession();
  run([&] { return cancelled == 16; });

  library().renewSession();
  EXPECT_FALSE(library().outcomeOf(&Library::enquire).error);
}

/// The child of a fork may exec or _exit, and even exit; the parent's calls go on.
TEST_F(Interleaving, TheHostForks) {
  const std::function<void()> ends[] = {[] { execl("/bin/true", "true", nullptr); },
                                        [] { _exit(0); },
                                        [] {
                                          (void)world.release();  // its threads are the parent's
                                          std::exit(0);
                                        }};
  for (const auto& end : ends) {
    int answered = 0;
    callFromEightThreads(4, [&](const auto& outcome) {
      EXPECT_FALSE(outcome.error);
      ++answered;
    });
    const auto child = fork();
    if (child == 0) {
      alarm(60);
      end();
      _exit(1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    run([&] { return answered == 32; });
  }
}

bool isSessionThreadLeft() {
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::string name;
    std::ifstream(task.path() / "comm") >> name;
    if (name == "zlv-http") return true;
  }
  return false;
}

/// A process that exits with calls under way, some connecting, some without an answer, some
/// answered to a main queue that is not run, and one made while it exits. One session is never
/// destroyed, another one is on the way out.
void exitAt(const std::string& moment) {
  alarm(60);
  (void)std::atexit([] {  // last of all
    while (isSessionThreadLeft()) std::this_thread::yield();
  });
  static const SilentListener silent;
  const auto address = "127.0.0.1:" + std::to_string(silent.port());
  static const auto& library = *new Library("http://" + address + "/", "https://" + address);
  const auto ignore = [](const auto&) {};
  const auto start = [&ignore] {
    for (int i = 0; i < 8; ++i) Library::enquire(ignore);
  };
  if (moment == "before any call") std::exit(0);
  static const auto destroyed =
      ZLVLinuxPlatform::platformWithOptions(Library::options()).makeURLSession();
  ZLVURLRequest request;
  request.URL = ZLVURL::URLWithString("https://" + address);
  destroyed->dataTask(request, {});
  static const struct Late {
    ~Late() { Library::enquire({}); }
  } late;
  start();
  ZLVVendor::shared().setMerchantSeverURL("http://" + address);
  start();
  ZLVVendor::shared().setMerchantSeverURL("http://127.0.0.1:1");
  start();
  if (moment == "at once") std::exit(0);
  if (moment == "in a completion") {
    Library::enquire([](const auto&) { std::exit(0); });
    library.queue().run();
  }
  pollfd answered{library.queue().fileDescriptor(), POLLIN, 0};
  poll(&answered, 1, -1);
  if (moment == "with answers waiting") std::exit(0);
  if (moment == "quickly") std::quick_exit(0);
  if (moment == "on another thread") std::thread([] { std::exit(0); }).join();
  for (int thread = 0; thread < 8; ++thread) {
    std::thread([start] {
      for (;;) start();
    }).detach();
  }
  poll(&answered, 1, -1);
  std::exit(0);
}

TEST(InterleavingDeathTest, TheHostExits) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const auto* moment :
       {"before any call", "at once", "in a completion", "with answers waiting", "quickly",
        "on another thread", "while threads go on calling"}) {
    EXPECT_EXIT(exitAt(moment), testing::ExitedWithCode(0), "") << moment;
  }
}

}  // namespace
