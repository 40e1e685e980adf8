#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>
#include <optional>

#include <Sandbox/AnalyticsCollector.h>
#include <Sandbox/HTTPServer.h>
#include <Sandbox/Merchant.h>
#include <Sandbox/Sandbox.h>
#include <Sandbox/WalletPages.h>
#include <boost/json.hpp>

namespace {

/// What `path` has in the place of the pattern's "*", empty when there is none; nothing when they
/// do not match.
std::optional<std::string_view> matched(std::string_view pattern, std::string_view path) {
  const auto star = pattern.find('*');
  if (star == std::string_view::npos) {
    return pattern == path ? std::optional<std::string_view>("") : std::nullopt;
  }
  const auto before = pattern.substr(0, star);
  const auto after = pattern.substr(star + 1);
  if (path.size() < pattern.size() || !path.starts_with(before) || !path.ends_with(after)) {
    return std::nullopt;
  }
  const auto argument = path.substr(star, path.size() - before.size() - after.size());
  return argument.find('/') == std::string_view::npos ? std::optional(argument) : std::nullopt;
}

ZLVSandboxAnswer message(unsigned status, std::string_view text) {
  const boost::json::object body{{"status_code", std::to_string(status)}, {"status_message", text}};
  return ZLVSandboxAnswer::JSON(status, boost::json::serialize(body));
}

std::string baseURL(std::uint16_t port) { return "http://127.0.0.1:" + std::to_string(port); }

constexpr std::string_view ControlPrefix = "/sandbox/";

}  // namespace

struct ZLVSandbox::Implementation {
  explicit Implementation(ZLVSandboxOptions options)
      : observer(std::move(options.observer)),
        server(options.port),
        merchant(::baseURL(server.port())),
        pages(merchant, collector, std::move(options.merchantName)) {
    server.start([this](const ZLVSandboxRequest& request) { return reply(request); });
  }
  ~Implementation() { server.stop(); }

  using Handler = std::function<ZLVSandboxAnswer(const ZLVSandboxRequest&, std::string_view)>;
  struct Route {
    std::string_view method;
    std::string_view pattern;
    Handler handler;
  };

  ZLVHTTPServer::Reply reply(const ZLVSandboxRequest& request) {
    auto misbehaviour = receive(request);
    ZLVSandboxAnswer answer;
    if (misbehaviour.body) {
      answer = ZLVSandboxAnswer::JSON(answer.status, *misbehaviour.body);
    } else {
      const std::lock_guard lock(mutex);
      answer = route(request);
      received.notify_all();
    }
    answer.status = misbehaviour.status.value_or(answer.status);
    if (observer) observer(request, answer.status);
    return {std::move(answer), std::move(misbehaviour)};
  }

  /// Keeps the request and chooses what goes wrong with it.
  ZLVMisbehaviour receive(const ZLVSandboxRequest& request) {
    Faults chooser;
    {
      const std::lock_guard lock(mutex);
      if (request.path().starts_with(ControlPrefix)) return {};
      requests.push_back(request);
      received.notify_all();
      for (auto plan = plans.begin(); plan != plans.end(); ++plan) {
        auto& [match, misbehaviour] = *plan;
        if (!match.method.empty() && match.method != request.method) continue;
        if (!request.path().starts_with(match.pathPrefix)) continue;
        auto chosen = misbehaviour;
        if (match.times-- <= 1) plans.erase(plan);
        return chosen;
      }
      chooser = faults;
    }
    return chooser ? chooser(request) : ZLVMisbehaviour();
  }

  ZLVSandboxAnswer route(const ZLVSandboxRequest& request) {
    std::string allowed;
    for (const auto& [method, pattern, handler] : routes) {
      const auto argument = matched(pattern, request.path());
      if (!argument) continue;
      if (method == request.method) return handler(request, *argument);
      allowed += (allowed.empty() ? "" : ", ") + std::string(method);
    }
    if (allowed.empty()) return message(404, "There is nothing at this address.");
    auto answer = message(405, "This address takes other methods.");
    answer.setHeader("Allow", allowed);
    return answer;
  }

  ZLVSandboxAnswer control(const ZLVSandboxRequest& request, std::string_view) {
    if (!request.header("Content-Type").starts_with("application/json")) {
      return message(400, "Content-Type must be application/json.");
    }
    try {
      plans.push_back(ZLVReadMisbehaviour(request.body));
      return message(200, "It is planned.");
    } catch (const std::exception& error) {
      return message(400, error.what());
    }
  }

  /// A route to a member function of one of the parts.
  template <class Part, class Operation>
  static Handler to(Part& part, Operation operation) {
    return [&part, operation](const ZLVSandboxRequest& request, std::string_view argument) {
      return (part.*operation)(request, argument);
    };
  }

  const std::function<void(const ZLVSandboxRequest&, unsigned)> observer;
  std::mutex mutex;
  std::condition_variable received;
  std::vector<ZLVSandboxRequest> requests;
  std::list<std::pair<ZLVSandboxMatch, ZLVMisbehaviour>> plans;
  Faults faults;
  ZLVHTTPServer server;
  ZLVMerchant merchant;
  ZLVAnalyticsCollector collector;
  ZLVWalletPages pages;
  const std::vector<Route> routes = {
      {"POST", "/v2/pay/account", to(merchant, &ZLVMerchant::link)},
      {"GET", "/v2/pay/account/*", to(merchant, &ZLVMerchant::enquire)},
      {"POST", "/v2/pay/account/*/unbind", to(merchant, &ZLVMerchant::unbind)},
      {"POST", "/v2/charge", to(merchant, &ZLVMerchant::charge)},
      {"GET", "/orders/*", to(merchant, &ZLVMerchant::order)},
      {"POST", "/1/upload", to(collector, &ZLVAnalyticsCollector::upload)},
      {"GET", "/wallet/activate/*", to(pages, &ZLVWalletPages::show)},
      {"POST", "/wallet/activate/*", to(pages, &ZLVWalletPages::decide)},
      {"GET", "/wallet/verify/*", to(pages, &ZLVWalletPages::show)},
      {"POST", "/wallet/verify/*", to(pages, &ZLVWalletPages::decide)},
      {"GET", "/", to(pages, &ZLVWalletPages::overview)},
      {"POST", "/sandbox/misbehave", to(*this, &Implementation::control)},
  };
};

ZLVSandbox::ZLVSandbox(ZLVSandboxOptions options)
    : implementation_(std::make_unique<Implementation>(std::move(options))) {}
ZLVSandbox::~ZLVSandbox() = default;

std::uint16_t ZLVSandbox::port() const { return implementation_->server.port(); }
std::string ZLVSandbox::baseURL() const { return ::baseURL(port()); }
std::pair<ZLVSandboxAnswer, ZLVMisbehaviour> ZLVSandbox::exchange(
    const ZLVSandboxRequest& request) {
  auto reply = implementation_->reply(request);
  return {std::move(reply.answer), std::move(reply.misbehaviour)};
}
void ZLVSandbox::stop() { implementation_->server.stop(); }

void ZLVSandbox::misbehave(ZLVSandboxMatch match, ZLVMisbehaviour misbehaviour) {
  const std::lock_guard lock(implementation_->mutex);
  implementation_->plans.emplace_back(std::move(match), std::move(misbehaviour));
}

void ZLVSandbox::misbehave(Faults faults) {
  const std::lock_guard lock(implementation_->mutex);
  implementation_->faults = std::move(faults);
}

std::vector<ZLVSandboxRequest> ZLVSandbox::requests() const {
  const std::lock_guard lock(implementation_->mutex);
  return implementation_->requests;
}

std::vector<ZLVSandboxEvent> ZLVSandbox::events() const {
  const std::lock_guard lock(implementation_->mutex);
  return implementation_->collector.events();
}

bool ZLVSandbox::waitForRequests(std::size_t count, std::chrono::milliseconds timeout) const {
  std::unique_lock lock(implementation_->mutex);
  return implementation_->received.wait_for(
      lock, timeout, [&] { return implementation_->requests.size() >= count; });
}

bool ZLVSandbox::waitForEvents(std::size_t count, std::chrono::milliseconds timeout) const {
  std::unique_lock lock(implementation_->mutex);
  return implementation_->received.wait_for(
      lock, timeout, [&] { return implementation_->collector.events().size() >= count; });
}
