#include "Tests/Faults/Library.h"

#include <atomic>
#include <utility>

#include <gtest/gtest.h>

/// What the sessions that the library makes for itself pass their requests on to.
struct Library::Sessions {
  std::mutex mutex;
  std::shared_ptr<ZLVURLSession> current;
  std::atomic<double> timeoutInterval = 60;
};

namespace {

/// A completion of the library's that hands on what it gets as an outcome.
auto outcome(Library::Completion completion) {
  return [completion = std::move(completion)](const auto& record,
                                              const std::optional<ZLVError>& error) {
    EXPECT_NE(record == nullptr, !error.has_value());
    completion({error, record == nullptr ? "" : ZLVValue(record->dictionaryValue()).description()});
  };
}

}  // namespace

Library::Library(const std::string& analyticsRoot, const std::string& server)
    : sessions_(std::make_shared<Sessions>()) {
  struct Forwarder : ZLVURLSession {
    explicit Forwarder(std::shared_ptr<Sessions> target) : sessions(std::move(target)) {}
    void dataTask(ZLVURLRequest request, CompletionHandler handler) override {
      request.timeoutInterval = sessions->timeoutInterval;
      std::unique_lock lock(sessions->mutex);
      const auto session = sessions->current;
      lock.unlock();
      if (session != nullptr) session->dataTask(std::move(request), std::move(handler));
    }
    std::shared_ptr<Sessions> sessions;
  };
  auto installed = options();
  installed.analyticsRootURL = analyticsRoot;
  auto platform = ZLVLinuxPlatform::platformWithOptions(installed);
  platform.makeURLSession = [sessions = sessions_] {
    return std::make_unique<Forwarder>(sessions);
  };
  ZLVPlatform::install(std::move(platform));
  renewSession();
  ZLVClient::initWithMerchantServerURL(server, "M-1", "app://done", false);
}

ZLVLinuxOptions Library::options() {
  return {.applicationName = "Tests", .applicationVersion = "1"};
}

void Library::renewSession(const ZLVLinuxOptions& options) {
  replaceSession(ZLVLinuxPlatform::platformWithOptions(options).makeURLSession());
}

void Library::endSession() { replaceSession(nullptr); }

void Library::setTimeoutInterval(double seconds) { sessions_->timeoutInterval = seconds; }

void Library::replaceSession(std::shared_ptr<ZLVURLSession> session) {
  const std::lock_guard lock(sessions_->mutex);
  sessions_->current.swap(session);
}

void Library::enquire(const Completion& completion) {
  ZLVClient::enquireAccountWithAccountID(account, outcome(completion));
}

void Library::charge(const Completion& completion) {
  ZLVClient::createTransactionWithPaymentType(
      "zolva", nullptr, ZLVZolvaDetails::initWithAccountID(account, "token"),
      ZLVTransactionDetails::initWithGrossAmount(1, "order-1", "EUR"),
      std::make_shared<ZLVCustomerDetails>(), std::nullopt, outcome(completion));
}

Library::Outcome Library::outcomeOf(void (*call)(const Completion&)) const {
  const auto result = std::make_shared<std::optional<Outcome>>();
  call([this, result](Outcome value) {
    EXPECT_FALSE(*result) << "answered twice";
    *result = std::move(value);
    queue_->stop();
  });
  queue_->run();
  return **result;
}
