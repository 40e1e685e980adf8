#include <mutex>
#include <random>
#include <thread>

#include <Sandbox/Sandbox.h>
#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

namespace {

using Point = ZLVMisbehaviour::Point;
using Break = ZLVMisbehaviour::Break;

const ZLVMisbehaviour faults[] = {
    {.status = 500},
    {.body = "not JSON"},
    {.body = "{}", .bodySize = 200'000},
    {.headers = {{"Content-Length", "9999"}}, .interruption = {{Break::Close, Point::AfterBody}}},
    {.interruption = {{Break::Close, Point::BeforeHeader}}},
    {.interruption = {{Break::Reset, Point::InHeader}}},
    {.interruption = {{Break::Reset, Point::InBody}}},
    {.delay = std::chrono::milliseconds(1)}};

}  // namespace

/// The whole library, Linux backend included, in this process.
TEST(Library, TenThousandCallsUnderRandomFaultsAnswerTenThousandTimes) {
  constexpr int calls = 10'000;
  std::mutex mutex;
  std::mt19937 random(20'250'101);  // NOLINT(cert-msc51-cpp): the same storm each time
  ZLVSandbox sandbox;
  sandbox.misbehave([&](const ZLVSandboxRequest&) -> ZLVMisbehaviour {
    const std::lock_guard lock(mutex);
    return random() % 4 == 0 ? faults[random() % std::size(faults)] : ZLVMisbehaviour();
  });
  ZLVPlatform::install(ZLVLinuxPlatform::platformWithOptions(
      {.applicationVersion = "1", .analyticsRootURL = sandbox.baseURL() + "/"}));
  ZLVClient::initWithMerchantServerURL(sandbox.baseURL(), "M-1", "app://done", false);
  const auto queue = ZLVLinuxMainQueue::mainQueue();

  const auto mainThread = std::this_thread::get_id();
  std::vector<int> answers(calls);
  int answered = 0;
  for (std::size_t call = 0; call < calls; ++call) {
    const auto done = [&, call](const auto& record, const std::optional<ZLVError>& error) {
      EXPECT_EQ(std::this_thread::get_id(), mainThread);
      EXPECT_NE(record == nullptr, !error);
      ++answers[call];
      if (++answered == calls) queue->stop();
    };
    if (call % 2 == 0) {
      ZLVClient::enquireAccountWithAccountID("a", done);
    } else {
      ZLVClient::linkAccountWithPaymentType(
          "zolva", ZLVPartnerDetails::initWithPhoneNumber("7700900123", "44"), nullptr, done);
    }
  }
  queue->run();
  queue->drain();
  sandbox.stop();  // uploads under way still ask for faults
  EXPECT_EQ(answers, std::vector<int>(calls, 1));
}
