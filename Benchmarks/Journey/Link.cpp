// link PATHS SERVER CLIENT: runs two commands, each in a network of its own, with a long way
// between them, until the second ends. PATHS are round trips in milliseconds with the share of lost
// packets in percent, as in "20:0,100:1"; servers on the first have the addresses 10.0.x.x, on the
// second 10.1.x.x. Needs no rights where the system lets its users have namespaces. Takes all that
// the commands have started with it, however it ends.

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Benchmarks/Journey/Relay.h"

namespace {

using namespace std::chrono_literals;

void check(bool isDone, const std::string& what) {
  if (!isDone) throw std::system_error(errno, std::generic_category(), what);
}

/// The files that this process sees from now on are its own to put others in their places, and the
/// networks that it makes are its own to configure.
void leaveSystem() {
  const auto user = std::to_string(geteuid());
  const auto group = std::to_string(getegid());
  if (unshare(CLONE_NEWNS) != 0) {
    check(unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "namespaces");
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " + user + " 1";
    std::ofstream("/proc/self/gid_map") << "0 " + group + " 1";
  }
  check(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "mount");
  // A display server in a network of its own takes a number that may be another's outside, and
  // would put its socket in the place of that one's.
  const std::filesystem::path displays = "/tmp/.X11-unix";
  std::filesystem::create_directories(displays);
  check(mount("none", displays.c_str(), "tmpfs", 0, "mode=1777") == 0, "mount");
}

/// Enters a new network, whose only way out is the TUN device that is returned.
int enterNetwork(const std::string& configuration) {
  check(unshare(CLONE_NEWNET) == 0, "network namespace");
  const int device = open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC);
  check(device >= 0, "/dev/net/tun");
  ifreq request{};
  std::strncpy(request.ifr_name, "way", IFNAMSIZ - 1);
  request.ifr_flags = IFF_TUN | IFF_NO_PI;
  check(ioctl(device, TUNSETIFF, &request) == 0, "TUN device");
  const auto commands =
      "PATH=$PATH:/usr/sbin:/sbin; set -e; ip link set lo up; ip link set way up; " + configuration;
  check(std::system(commands.c_str()) == 0, "ip");
  return device;
}

pid_t start(const std::string& command, const sigset_t& signals) {
  const pid_t child = fork();
  check(child >= 0, "fork");
  if (child != 0) return child;
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
  _exit(127);
}

void collectDescendants(pid_t process, std::set<pid_t>& all) {
  std::error_code ignored;
  const auto folder = "/proc/" + std::to_string(process) + "/task";
  for (const auto& task : std::filesystem::directory_iterator(folder, ignored)) {
    std::ifstream children(task.path() / "children");
    for (pid_t child = 0; children >> child;) {
      if (all.insert(child).second) collectDescendants(child, all);
    }
  }
}

/// Orphans have this process for their parent, so that none gets away.
void endDescendants() {
  const auto patience = std::chrono::steady_clock::now() + 3s;
  for (int signal = SIGTERM;; std::this_thread::sleep_for(10ms)) {
    std::set<pid_t> all;
    collectDescendants(getpid(), all);
    if (all.empty()) return;
    if (std::chrono::steady_clock::now() > patience) signal = SIGKILL;
    for (const auto process : all) kill(process, signal);
    if (signal == SIGTERM) signal = 0;  // told once
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
  }
}

std::vector<Relay::Path> readPaths(const std::string& text) {
  std::vector<Relay::Path> paths;
  std::istringstream stream(text);
  double percent = 0;
  char separator = 0;
  for (double time = 0; stream >> time >> separator >> percent; stream >> separator) {
    paths.push_back(
        {std::chrono::nanoseconds(static_cast<std::int64_t>(time * 1e6)), percent / 100});
  }
  if (paths.empty()) throw std::runtime_error("no paths");
  return paths;
}

/// On a busy machine, too, a packet is carried when it is due.
void hurry() {
  prctl(PR_SET_TIMERSLACK, 1);
  const sched_param priority{.sched_priority = 1};
  sched_setscheduler(0, SCHED_FIFO, &priority);  // where the system lets it
}

int run(const std::string& paths, const std::string& server, const std::string& client) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGCHLD, SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);

  leaveSystem();
  const int serverDevice =
      enterNetwork("ip route add local 10.0.0.0/8 dev lo; ip route add default dev way");
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  start(server, signals);
  const int clientDevice =
      enterNetwork("ip address add 172.31.0.1/32 dev way; ip route add 10.0.0.0/8 dev way");
  const pid_t last = start(client, signals);
  hurry();

  Relay relay(clientDevice, serverDevice, readPaths(paths));
  const int told = signalfd(-1, &signals, SFD_CLOEXEC);
  int status = 0;
  for (bool isOver = false; !isOver;) {
    relay.runUntil(told);
    signalfd_siginfo signal{};
    check(read(told, &signal, sizeof signal) == sizeof signal, "signal");
    isOver = signal.ssi_signo != SIGCHLD;
    if (isOver) status = W_EXITCODE(128 + static_cast<int>(signal.ssi_signo), 0);
    int ended = 0;
    for (pid_t child = 0; !isOver && (child = waitpid(-1, &ended, WNOHANG)) > 0;) {
      isOver = child == last;
      status = ended;
    }
  }
  endDescendants();
  const auto& counts = relay.counts();
  std::printf("%zu packets carried, %zu of them more than 1 ms late; %zu lost, no room for %zu\n",
              counts.carried, counts.late, counts.lost, counts.overflowed);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 4) {
    std::fprintf(stderr, "usage: link PATHS SERVER CLIENT\n");
    return 2;
  }
  return run(argv[1], argv[2], argv[3]);
} catch (const std::exception& error) {
  std::fprintf(stderr, "link: %s\n", error.what());
  return 1;
}
