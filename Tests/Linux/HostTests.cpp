// The parts of the platform that face the host: main queue, console, log, and their assembly.

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSyslog.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>
#include <ZolvaCheckoutKit/ZLVError.h>

namespace {

bool isReadable(const ZLVLinuxMainQueue& queue) {
  pollfd event{queue.fileDescriptor(), POLLIN, 0};
  return poll(&event, 1, 0) == 1;
}

TEST(MainQueue, RunsBlocksInOrderOnTheThreadThatRunsIt) {
  ZLVLinuxMainQueue queue;
  int ran = 0;
  std::thread other([&, mainThread = std::this_thread::get_id()] {
    for (int i = 0; i < 1000; ++i) {
      queue.dispatch([&, i, mainThread] {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        EXPECT_EQ(ran++, i);
      });
    }
    queue.stop();
    queue.dispatch([&] { ++ran; });
  });
  queue.run();
  other.join();
  EXPECT_EQ(ran, 1000);
  EXPECT_TRUE(isReadable(queue));
  queue.drain();
  EXPECT_EQ(ran, 1001);
  EXPECT_FALSE(isReadable(queue));
}

TEST(MainQueue, NeverRunsABlockInsideDispatch) {
  ZLVLinuxMainQueue queue;
  std::string order;
  queue.dispatch([&] {
    queue.dispatch([&] { order += 'b'; });
    order += 'a';
  });
  EXPECT_EQ(order, "");
  queue.drain();
  EXPECT_EQ(order, "a");
  EXPECT_TRUE(isReadable(queue));
  queue.drain();
  EXPECT_EQ(order, "ab");

  // An inner run ends by itself, the outer one goes on.
  queue.dispatch([&] {
    queue.stop();
    queue.run();
    queue.dispatch([&] { order += 'c'; });
    queue.stop();
  });
  queue.run();
  EXPECT_EQ(order, "abc");
}

TEST(MainQueue, LetsThroughWhatABlockThrows) {
  ZLVLinuxMainQueue queue;
  const std::function<void()> ways[] = {[&] { queue.run(); }, [&] { queue.drain(); }};
  for (const auto& way : ways) {
    std::string order;
    queue.dispatch([&] { order += 'a'; });
    queue.dispatch([] { throw std::runtime_error("a block"); });
    queue.dispatch([&] { order += 'b'; });
    queue.stop();
    EXPECT_THROW(way(), std::runtime_error);
    EXPECT_EQ(order, "a");
    EXPECT_TRUE(isReadable(queue));
    way();
    EXPECT_EQ(order, "ab");
  }
}

TEST(MainQueue, RunsUntilNothingIsUnderWay) {
  using std::chrono::milliseconds;
  ZLVPlatform::install(ZLVLinuxPlatform::platformWithOptions({.applicationVersion = "2.1"}));
  const auto& queue = ZLVLinuxMainQueue::mainQueue();
  std::string order;
  const auto runs = [&](milliseconds limit) { return queue->runUntilIdle(limit); };
  EXPECT_TRUE(runs(milliseconds::min()));
  {
    const ZLVActivity activity;
    queue->dispatch([&] { order += 'a'; });
    EXPECT_FALSE(runs(milliseconds::min()));
    EXPECT_FALSE(runs(milliseconds(1)));
    EXPECT_EQ(order, "a");
  }
  // What was not under way yet counts once a block has started it.
  std::optional<ZLVActivity> late;
  queue->dispatch([&] {
    late.emplace();
    queue->dispatch([&] { late.reset(); });
  });
  EXPECT_TRUE(runs(milliseconds::max()));
  EXPECT_FALSE(late);

  // The last one ends on another thread while this one sleeps, or is about to.
  for (int i = 0; i < 1000; ++i) {
    std::promise<void> isRunning;
    std::thread other([activity = ZLVActivity(), running = isRunning.get_future()]() mutable {
      running.wait();
      activity.end();
    });
    queue->dispatch([&] { isRunning.set_value(); });
    EXPECT_TRUE(runs(milliseconds::max()));
    other.join();
  }
}

TEST(MainQueue, DestroysWhatNeverRuns) {
  auto alive = std::make_shared<int>();
  {
    ZLVLinuxMainQueue queue;
    // What goes with a block may dispatch once more.
    const auto last = [&queue, alive](int*) { queue.dispatch([alive] {}); };
    queue.dispatch([held = std::shared_ptr<int>(nullptr, last)] { FAIL(); });
  }
  EXPECT_EQ(alive.use_count(), 1);
}

TEST(Console, ClosesThePageOnTopLater) {
  const auto queue = std::make_shared<ZLVLinuxMainQueue>();
  ZLVConsoleUserInterface interface(queue);
  std::vector<std::string> closed;
  const auto show = [&](const std::string& page) {
    auto browser = interface.makeBrowser(*ZLVURL::URLWithString(page));
    browser->setDismissButtonStyle(ZLVDismissButtonStyle::Close);
    browser->show(*interface.keyWindowRootViewController(), true,
                  [&closed, page] { closed.push_back(page); });
    return browser;
  };
  testing::internal::CaptureStderr();
  EXPECT_FALSE(interface.closeBrowser());
  const auto first = show("https://wallet.example/1");
  auto hidden = show("https://wallet.example/2");
  auto gone = show("https://wallet.example/3");
  EXPECT_TRUE(interface.openURL(*ZLVURL::URLWithString("zolvademo://x")));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "open https://wallet.example/1\nopen https://wallet.example/2\n"
            "open https://wallet.example/3\nopen zolvademo://x\n");

  EXPECT_TRUE(interface.closeBrowser());
  gone.reset();
  hidden->hide(true);
  EXPECT_TRUE(interface.closeBrowser());
  EXPECT_FALSE(interface.closeBrowser());
  EXPECT_TRUE(closed.empty());
  queue->drain();
  EXPECT_EQ(closed, std::vector<std::string>{"https://wallet.example/1"});
}

TEST(Console, StartsTheCommandWithoutShellOrZombie) {
  // A pipe by name: opening it for reading waits until the command has opened it for writing, and
  // reading ends when the command does.
  const auto folder =
      std::filesystem::temp_directory_path() / ("zolva-" + std::to_string(getpid()));
  std::filesystem::create_directory(folder);
  const auto pipe = folder / "pipe";
  const auto program = folder / "a command";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::ofstream(program) << "#!/bin/sh\nexec >'" << pipe.string() << "'\necho \"$$ $# $1\"\ncat\n";
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);

  const auto queue = std::make_shared<ZLVLinuxMainQueue>();
  ZLVConsoleUserInterface(queue, program)
      .openURL(*ZLVURL::URLWithString("https://wallet.example/?a=$(id)&b"));
  pid_t child = 0;
  std::string rest;
  std::getline(std::ifstream(pipe) >> child, rest, '\0');
  EXPECT_EQ(rest, " 1 https://wallet.example/?a=$(id)&b\n");
  // A child that nobody waits for keeps its number.
  while (kill(child, 0) == 0) std::this_thread::yield();
  std::filesystem::remove_all(folder);

  testing::internal::CaptureStderr();
  ZLVConsoleUserInterface(queue, "/no/such/command")
      .openURL(*ZLVURL::URLWithString("https://wallet.example/"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "open https://wallet.example/\n"
            "cannot start /no/such/command: No such file or directory\n");
}

TEST(LinuxPlatform, IsMadeOfAllItsParts) {
  EXPECT_THROW((void)ZLVLinuxPlatform::platformWithOptions({.applicationName = "Shop"}),
               ZLVProgrammingFault);
  const auto platform = ZLVLinuxPlatform::platformWithOptions({.applicationVersion = "2.1"});
  EXPECT_EQ(platform.device->bundleShortVersion(), "2.1");
  EXPECT_NE(platform.systemLog, nullptr);
}

/// A syslog daemon that is there and reads only when it is told to.
class Daemon {
 public:
  Daemon() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const auto* name = reinterpret_cast<const sockaddr*>(&address);  // NOLINT(*-reinterpret-cast)
    EXPECT_EQ(bind(socket_, name, sizeof address), 0);
  }
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;
  ~Daemon() {
    close(socket_);
    std::filesystem::remove(path);
  }

  /// The text of the next line, or nothing.
  [[nodiscard]] std::string read() const {
    std::string line(1'000'000, '\0');
    const auto size = recv(socket_, line.data(), line.size(), MSG_DONTWAIT);
    if (size < 0) return {};
    line.resize(static_cast<std::size_t>(size));
    const auto text = line.find(": ") + 2;
    EXPECT_TRUE(std::regex_match(line.substr(0, text),
                                 std::regex("<14>[A-Z][a-z]{2} [ 1-3]\\d [\\d:]{8} LinuxTests: ")))
        << line;
    return line.substr(text);
  }

  const std::string path =
      std::filesystem::temp_directory_path() / ("zolva-log-" + std::to_string(getpid()));

 private:
  const int socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

TEST(Syslog, WritesLinesWhole) {
  const Daemon daemon;
  ZLVSyslog log(daemon.path);
  log.log(std::string_view("100 %s\nb\r\0c", 11));
  EXPECT_EQ(daemon.read(), "100 %s b  c");

  std::string large;
  while (large.size() < 1'000'000) large += "\u20ac";
  log.log(large);
  auto text = daemon.read();
  EXPECT_GT(text.size(), 60'000U);
  ASSERT_TRUE(text.ends_with("\u20ac\u2026 (cut)"));
  EXPECT_TRUE(large.starts_with(text.substr(0, text.find("\u2026"))));

  const auto mask = setlogmask(LOG_UPTO(LOG_NOTICE));
  log.log("masked");
  setlogmask(mask);
  EXPECT_EQ(daemon.read(), "");
}

TEST(Syslog, DropsAndCountsWhatTheDaemonDoesNotTake) {
  auto daemon = std::make_unique<Daemon>();
  ZLVSyslog log(daemon->path);
  constexpr int lines = 10'000;
  for (int i = 0; i < lines; ++i) log.log("line " + std::to_string(i));
  int taken = 0;
  for (std::string text; !(text = daemon->read()).empty(); ++taken) {
    EXPECT_EQ(text, "line " + std::to_string(taken));
  }
  EXPECT_GT(taken, 0);
  const std::string note = "lines dropped before this one: ";
  log.log("on");
  EXPECT_EQ(daemon->read(), note + std::to_string(lines - taken));
  EXPECT_EQ(daemon->read(), "on");

  daemon.reset();
  log.log("nobody is there");
  daemon = std::make_unique<Daemon>();
  log.log("on");
  EXPECT_EQ(daemon->read(), note + "1");
  EXPECT_EQ(daemon->read(), "on");
  log.log("on");
  EXPECT_EQ(daemon->read(), "on");
}

}  // namespace
