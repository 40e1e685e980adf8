// A shop on Boost.Asio: one coroutine goes through link, enquiry, charge and unlinking, and another
// reads from standard input the URLs that the application is opened with.
//
//     shop SERVER COMMAND
//
// COMMAND is started with the address of each of the wallet's pages.

#include <cstdio>
#include <istream>
#include <string>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/streambuf.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <unistd.h>

#include <ZolvaCheckoutKit/EventLoops/ZLVAsioMainQueue.h>
#include <ZolvaCheckoutKit/EventLoops/ZLVAsioOperations.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

namespace asio = boost::asio;
using asio::use_awaitable;

namespace {

/// The record, or nothing once the error is told.
template <class Record>
std::shared_ptr<Record> recordOf(const char* call, const ZLVResult<Record>& result) {
  if (result) return result.record();
  std::printf("%s failed: %s\n", call, result.error().localizedDescription().c_str());
  return nullptr;
}

asio::awaitable<void> shop(std::shared_ptr<ZLVViewController> window) {
  const auto user = ZLVPartnerDetails::initWithPhoneNumber("7700900123", "44");
  const auto link = recordOf(
      "link", co_await ZLVAsio::async(ZLVAwait::linkAccount("zolva", user, window), use_awaitable));
  if (!link) co_return;
  const auto id = link->accountID().description();

  // What the user did on the page, the server knows.
  const auto account =
      recordOf("enquire", co_await ZLVAsio::async(ZLVAwait::enquireAccount(id), use_awaitable));
  if (!account) co_return;
  std::printf("enquire: %s\n", account->accountStatus().description().c_str());

  const auto metadata = account->metadata();
  const auto options = metadata ? metadata->paymentOptions() : std::nullopt;
  if (options && !options->empty()) {
    ZLVCharge charge{.paymentType = "zolva",
                     .accountID = id,
                     .paymentOptionToken = options->front()->token(),
                     .grossAmount = 12.5,
                     .orderID = "order-1",
                     .currency = "EUR",
                     .phoneNumber = "+447700900123",
                     .firstName = "Ada",
                     .email = "ada@example.com",
                     .viewController = window};
    const auto paid = recordOf(
        "charge",
        co_await ZLVAsio::async(ZLVAwait::createTransaction(std::move(charge)), use_awaitable));
    if (paid) std::printf("charge: %s\n", paid->transactionStatus().description().c_str());
  }
  const auto unlinked =
      recordOf("unlink", co_await ZLVAsio::async(ZLVAwait::disableAccount(id), use_awaitable));
  if (unlinked) std::printf("unlink: %s\n", unlinked->accountStatus().description().c_str());
}

asio::awaitable<void> readURLs(asio::posix::stream_descriptor& input) {
  for (asio::streambuf text;;) {
    co_await asio::async_read_until(input, text, '\n', use_awaitable);
    std::string line;
    std::getline(std::istream(&text), line);
    std::printf("opened with: %s\n", line.c_str());
    if (const auto url = ZLVURL::URLWithString(line)) ZLVClient::handleCallbackUrl(*url);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: shop SERVER COMMAND\n");
    return 2;
  }
  asio::io_context context(1);
  const auto queue = std::make_shared<ZLVAsioMainQueue>(context);
  auto platform = ZLVLinuxPlatform::platformWithOptions(
      {.applicationName = "Corner Coffee",
       .applicationVersion = "2.1",
       .analyticsRootURL =
           std::string(argv[1]) + '/'});  // the sandbox takes the usage events as well
  platform.mainQueue = queue;
  platform.userInterface = std::make_shared<ZLVConsoleUserInterface>(queue, argv[2]);
  const auto window = platform.userInterface->keyWindowRootViewController();
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL(argv[1], "M-1001", "shop://done", false);

  asio::posix::stream_descriptor input(context, STDIN_FILENO);
  asio::co_spawn(context, readURLs(input), [](std::exception_ptr) {});  // until there is no more
  asio::co_spawn(context, shop(window), [&input](std::exception_ptr fault) {
    input.close();  // which is the end of the loop
    if (fault) std::rethrow_exception(fault);
  });
  context.run();
  // The last usage events are still on the way.
  return queue->runUntilIdle(std::chrono::seconds(2)) ? 0 : 1;
}
