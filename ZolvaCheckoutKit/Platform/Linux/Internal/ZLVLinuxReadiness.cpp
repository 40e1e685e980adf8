#include <algorithm>
#include <array>
#include <cstdint>

#include <poll.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSystem.h>

namespace {

/// How often those are tried that the system does not watch.
constexpr std::chrono::milliseconds often(100);

constexpr std::uint32_t systemEvents(unsigned events) {
  return ((events & ZLVReadiness::Read) != 0 ? EPOLLIN : 0U) |
         ((events & ZLVReadiness::Write) != 0 ? EPOLLOUT : 0U) |
         ((events & ZLVReadiness::Once) != 0 ? EPOLLET : 0U);
}

/// An error or an end is for whoever reads or writes next.
constexpr unsigned readyEvents(std::uint32_t events) {
  constexpr std::uint32_t over = EPOLLERR | EPOLLHUP;
  return ((events & (EPOLLIN | over)) != 0 ? ZLVReadiness::Read : 0U) |
         ((events & (EPOLLOUT | over)) != 0 ? ZLVReadiness::Write : 0U);
}

}  // namespace

ZLVReadiness::~ZLVReadiness() {
  if (descriptor_ >= 0) close(descriptor_);
}

void ZLVReadiness::watch(int descriptor, unsigned events) {
  const auto needed = static_cast<std::size_t>(descriptor) + 1;
  if (watches_.size() < needed) watches_.resize(std::max(needed, 2 * watches_.size()));
  at(descriptor).wanted = events;
  update(descriptor);
}

void ZLVReadiness::rest(int descriptor) {
  at(descriptor).wanted = 0;
  std::erase(unwatched_, descriptor);
}

void ZLVReadiness::forget(int descriptor) {
  if (static_cast<std::size_t>(descriptor) >= watches_.size()) return;
  auto& [generation, wanted, registered] = at(descriptor);
  ++generation;
  wanted = 0;
  update(descriptor);
}

void ZLVReadiness::update(int descriptor) {
  auto& [generation, wanted, registered] = at(descriptor);
  if (descriptor_ < 0) descriptor_ = epoll_create1(EPOLL_CLOEXEC);
  if (wanted != registered) {
    epoll_event event{};
    event.events = systemEvents(wanted);
    event.data.u64 = std::uint64_t{generation} << 32 | static_cast<std::uint32_t>(descriptor);
    const int how = wanted == 0 ? EPOLL_CTL_DEL : registered == 0 ? EPOLL_CTL_ADD : EPOLL_CTL_MOD;
    const bool isDone = epoll_ctl(descriptor_, how, descriptor, &event) == 0;
    if (isDone || wanted == 0) registered = wanted;
  }
  std::erase(unwatched_, descriptor);
  if (wanted != registered) unwatched_.push_back(descriptor);
}

void ZLVReadiness::wait(std::chrono::milliseconds limit) {
  for (const int descriptor : std::vector(unwatched_)) update(descriptor);
  if (descriptor_ < 0 || !unwatched_.empty()) limit = std::min(limit, often);

  std::array<epoll_event, 128> events;  // NOLINT(*-member-init): filled by the system
  int count = 0;
  if (descriptor_ >= 0) {
    count = epoll_wait(descriptor_, events.data(), events.size(), static_cast<int>(limit.count()));
  } else {
    poll(nullptr, 0, static_cast<int>(limit.count()));
  }
  found_.clear();
  for (const int descriptor : unwatched_)
    found_.push_back({{descriptor, 0}, at(descriptor).generation});
  for (int i = 0; i < count; ++i) {
    const auto& [what, data] = events[static_cast<std::size_t>(i)];
    found_.push_back({{static_cast<int>(data.u64 & UINT32_MAX), readyEvents(what)},
                      static_cast<unsigned>(data.u64 >> 32)});
  }
  std::ranges::reverse(found_);
}

std::optional<ZLVReadiness::Ready> ZLVReadiness::next() {
  while (!found_.empty()) {
    auto [ready, foundGeneration] = found_.back();
    found_.pop_back();
    const auto& [generation, wanted, registered] = at(ready.descriptor);
    if (generation != foundGeneration) continue;
    if (wanted == 0) update(ready.descriptor);  // rests, and must not be told again and again
    if (ready.events != 0) ready.events &= wanted;
    if (wanted != 0 && (ready.events != 0 || registered != wanted)) return ready;
  }
  return std::nullopt;
}
