// The console's command line. Every line of the input is one argument.

#include "Apps/Console/Arguments.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

#include "Tests/Fuzz/Fuzz.h"

namespace {

/// Writes an invocation as a command line, so that it can be read again and compared.
class CommandLine {
 public:
  explicit CommandLine(const Invocation& invocation) {
    const auto& options = invocation.options;
    if (!options.server.empty()) add({{"--server", options.server}});
    add({{"--merchant-id", options.merchantId},
         {"--callback-url", options.callbackURL},
         {"--analytics-root", options.analyticsRoot},
         {"--ca-file", options.CAFile},
         {"--open-with", options.openWith}});
    if (options.isLoggingEnabled) arguments.emplace_back("--log");
    if (options.allowsCleartext) arguments.emplace_back("--allow-cleartext");
    std::visit(*this, invocation.command);
  }

  void operator()(const LinkCommand& link) {
    arguments.emplace_back("link");
    add({{"--phone-number", link.phoneNumber},
         {"--country-code", link.countryCode},
         {"--payment-type", link.paymentType}});
  }
  void operator()(const EnquireCommand& enquire) { add("enquire", enquire.accountID); }
  void operator()(const UnlinkCommand& unlink) { add("unlink", unlink.accountID); }
  void operator()(const ChargeCommand& charge) {
    checkNumber(charge.grossAmount);
    arguments.emplace_back("charge");
    add({{"--account-id", charge.accountID},
         {"--payment-option-token", charge.paymentOptionToken},
         {"--gross-amount", charge.grossAmount.description()},
         {"--order-id", charge.orderID},
         {"--currency", charge.currency},
         {"--phone-number", charge.phoneNumber},
         {"--first-name", charge.firstName},
         {"--last-name", charge.lastName},
         {"--email", charge.email},
         {"--payment-type", charge.paymentType}});
    if (!charge.items) return;
    for (const auto& item : *charge.items) add({{"--item", written(*item)}});
  }
  void operator()(const SandboxCommand& sandbox) {
    arguments.emplace_back("sandbox");
    add({{"--port", std::to_string(sandbox.port)}});
  }
  void operator()(const DemoCommand& /*demo*/) { arguments.emplace_back("demo"); }
  void operator()(const DoctorCommand& doctor) {
    arguments.emplace_back("doctor");
    if (doctor.isAgreed) arguments.emplace_back("--yes");
    if (doctor.isJSON) arguments.emplace_back("--json");
    if (doctor.confirmsPages) arguments.emplace_back("--confirm-pages");
    add({{"--account-id", doctor.accountID},
         {"--payment-option-token", doctor.paymentOptionToken},
         {"--gross-amount", ZLVValue(doctor.grossAmount).description()},
         {"--currency", doctor.currency},
         {"--phone-number", doctor.phoneNumber},
         {"--country-code", doctor.countryCode},
         {"--payment-type", doctor.paymentType},
         {"--time-limit", ZLVValue(doctor.timeLimit).description()}});
  }

  std::vector<std::string> arguments;

 private:
  using Option = std::pair<std::string, std::optional<std::string>>;

  void add(std::initializer_list<Option> options) {
    for (const auto& [name, value] : options) {
      if (value && value->empty()) arguments.insert(arguments.end(), {name, ""});
      if (value && !value->empty()) arguments.push_back(name + '=' + *value);
    }
  }
  void add(const std::string& command, const std::string& accountID) {
    arguments.insert(arguments.end(), {command, "--", accountID});
  }

  static void checkNumber(const ZLVValue& value) {
    promise(value.isNumber() && std::isfinite(*value.number()), "An amount is a number.",
            value.description());
  }
  static std::string written(const ZLVItemDetails& item) {
    std::string text;
    for (const auto& [key, value] : item.dictionaryValue()) {
      if (key == "price" || key == "quantity") checkNumber(value);
      text += (text.empty() ? "" : ",") + key + '=' + value.description();
    }
    return text;
  }
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto arguments = linesOf(textOf(data, size));
  for (auto& argument : arguments) argument.resize(std::min(argument.size(), argument.find('\0')));
  const auto parsed = parseArguments(arguments);
  if (const auto* usage = std::get_if<Usage>(&parsed)) {
    promise(!usage->message.empty(), "Wrong usage is explained.", textOf(data, size));
    return 0;
  }
  const auto written = CommandLine(std::get<Invocation>(parsed)).arguments;
  const auto again = parseArguments(written);
  const auto* invocation = std::get_if<Invocation>(&again);
  promise(invocation != nullptr && CommandLine(*invocation).arguments == written,
          "An invocation can be written as a command line.", textOf(data, size));
  return 0;
}
