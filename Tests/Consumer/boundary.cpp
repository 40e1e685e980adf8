// What a program and the libraries share across their boundary, wherever it is: exceptions, and the
// types of what is made on the other side. Says nothing and ends with 0 when all is as it should
// be.
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <typeinfo>
#include <variant>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

namespace {

using namespace std::chrono_literals;

void expect(bool isTrue, const char* what) {
  if (isTrue) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::exit(1);
}

template <class Fault>
bool throws(const auto& function) {
  try {
    function();
  } catch (const Fault&) {
    return true;
  }
  return false;
}

struct OwnFault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Session : ZLVURLSession {
  void dataTask(ZLVURLRequest, CompletionHandler handler) override {
    std::move(handler)(
        {.data = R"({"status_code": "200", "account_id": "a"})", .statusCode = 200, .error = {}});
  }
};

}  // namespace

int main() {
  const auto link = [](auto completion) {
    ZLVClient::linkAccountWithPaymentType(
        "zolva", ZLVPartnerDetails::initWithPhoneNumber("5550123", "1"), {}, std::move(completion));
  };
  const auto nothing = [](const auto&, const auto&) {};
  expect(throws<ZLVProgrammingFault>([&] { link(nothing); }), "a fault has its type");
  expect(throws<std::logic_error>([&] { link(nothing); }), "a fault has its base");

  auto platform = ZLVLinuxPlatform::platformWithOptions({.applicationVersion = "1"});
  expect(dynamic_cast<ZLVLinuxMainQueue*>(platform.mainQueue.get()) != nullptr, "a queue's type");
  expect(dynamic_cast<ZLVDevice*>(platform.device.get()) != nullptr, "a device's type");
  platform.makeURLSession = [] { return std::make_unique<Session>(); };
  const auto root = platform.userInterface->keyWindowRootViewController();
  const ZLVViewController& controller = *root;
  expect(typeid(controller) == typeid(ZLVViewController), "a view controller's type");
  expect(std::dynamic_pointer_cast<ZLVNavigationController>(root) == nullptr, "and no other");
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL("https://shop.example", "M-1", "shop://done", false);

  // Types of the standard library too, that each side has made for itself.
  const auto& queue = ZLVLinuxMainQueue::mainQueue();
  const auto run = [&] { queue->runUntilIdle(60s); };
  bool isResponse = false;
  link([&](const auto& record, const auto&) {
    isResponse = dynamic_cast<const ZLVLinkAccountResponse*>(record.get()) != nullptr;
    throw OwnFault("of the host");
  });
  expect(throws<OwnFault>(run), "the host's exception comes through");
  expect(isResponse, "a record made by the library has its type");
  link([](const auto&, const auto&) { throw std::bad_variant_access(); });
  expect(throws<std::bad_variant_access>(run), "the standard library's comes through");
  expect(queue->runUntilIdle(60s), "nothing is left");
}
