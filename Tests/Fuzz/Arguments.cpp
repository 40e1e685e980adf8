// The console's command line. Every line of the input is one argument.

#include "Apps/Console/Arguments.h"

#include <algorithm>
#include <cmath>

#include "Tests/Fuzz/Fuzz.h"

namespace {

/// Writes an invocation as a command line, so that it can be read again and compared.
class CommandLine {
 public:
  explicit CommandLine(const Invocation& invocation) {
    const auto& options = invocation.options;
    option("--server", options.server);
    option("--merchant-id", options.merchantId);
    option("--callback-url", options.callbackURL);
    if (options.isLoggingEnabled) arguments_.emplace_back("--log");
    option("--analytics-root", options.analyticsRoot);
    if (options.allowsCleartext) arguments_.emplace_back("--allow-cleartext");
    option("--ca-file", options.CAFile);
    option("--open-with", options.openWith);
    std::visit(*this, invocation.command);
  }

  [[nodiscard]] const std::vector<std::string>& arguments() const { return arguments_; }

  void operator()(const LinkCommand& link) {
    arguments_.emplace_back("link");
    option("--phone-number", link.phoneNumber);
    option("--country-code", link.countryCode);
    option("--payment-type", link.paymentType);
  }
  void operator()(const EnquireCommand& enquire) { account("enquire", enquire.accountID); }
  void operator()(const UnlinkCommand& unlink) { account("unlink", unlink.accountID); }
  void operator()(const ChargeCommand& charge) {
    arguments_.emplace_back("charge");
    option("--account-id", charge.accountID);
    option("--payment-option-token", charge.paymentOptionToken);
    option("--gross-amount", number(charge.grossAmount));
    option("--order-id", charge.orderID);
    option("--currency", charge.currency);
    option("--phone-number", charge.phoneNumber);
    option("--first-name", charge.firstName);
    option("--last-name", charge.lastName);
    option("--email", charge.email);
    option("--payment-type", charge.paymentType);
    if (!charge.items) return;
    for (const auto& item : *charge.items) option("--item", written(*item));
  }
  void operator()(const SandboxCommand& sandbox) {
    arguments_.emplace_back("sandbox");
    option("--port", std::to_string(sandbox.port));
  }
  void operator()(const DemoCommand& /*demo*/) { arguments_.emplace_back("demo"); }

 private:
  void option(const std::string& name, const std::optional<std::string>& value) {
    if (value) option(name, *value);
  }
  void option(const std::string& name, const std::string& value) {
    if (!value.empty()) {
      arguments_.push_back(name + '=' + value);
    } else if (name != "--server") {  // which may be missing
      arguments_.insert(arguments_.end(), {name, value});
    }
  }
  void account(const std::string& command, const std::string& accountID) {
    arguments_.insert(arguments_.end(), {command, "--", accountID});
  }

  static std::string number(const ZLVValue& value) {
    promise(value.isNumber() && std::isfinite(*value.number()), "An amount is a number.",
            value.description());
    return value.description();
  }
  static std::string written(const ZLVItemDetails& item) {
    std::string text;
    const auto add = [&text](std::string_view key, const ZLVValue& value) {
      if (value.isAbsent()) return;
      if (!text.empty()) text += ',';
      ((text += key) += '=') += value.description();
    };
    add("id", item.itemID());
    add("name", item.name());
    if (!item.price().isAbsent()) add("price", number(item.price()));
    if (!item.quantity().isAbsent()) add("quantity", number(item.quantity()));
    add("category", item.category());
    return text;
  }

  std::vector<std::string> arguments_;
};

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) (text += line) += '\n';
  return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto arguments = linesOf(textOf(data, size));
  for (auto& argument : arguments) argument.resize(std::min(argument.size(), argument.find('\0')));
  const auto parsed = parseArguments(arguments);
  if (const auto* usage = std::get_if<Usage>(&parsed)) {
    promise(!usage->message.empty(), "Wrong usage is explained.", joined(arguments));
    return 0;
  }
  const auto written = CommandLine(std::get<Invocation>(parsed)).arguments();
  const auto again = parseArguments(written);
  const auto* invocation = std::get_if<Invocation>(&again);
  promise(invocation != nullptr && CommandLine(*invocation).arguments() == written,
          "An invocation can be written as a command line.", joined(written));
  return 0;
}
