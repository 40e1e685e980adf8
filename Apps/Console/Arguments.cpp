#include "Apps/Console/Arguments.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <string_view>
#include <type_traits>
#include <utility>

#include <CLI/CLI.hpp>

namespace {

constexpr const char* defaultPaymentType = "zolva";
constexpr const char* paymentTypeHelp = "The server's name for the way to pay";

/// A JSON number: an integer stays one.
std::optional<ZLVValue> parsedNumber(std::string_view text) {
  const auto parsed = [text](auto number) -> std::optional<ZLVValue> {
    const auto* end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || last != end) return std::nullopt;
    return number;
  };
  if (auto integer = parsed(std::int64_t{})) return integer;
  auto number = parsed(double{});
  if (number && !std::isfinite(*number->number())) return std::nullopt;
  return number;
}

/// Reads "id=…,name=…,price=…,quantity=…,category=…". A comma that no key follows belongs to the
/// value before it.
std::shared_ptr<ZLVItemDetails> parsedItem(std::string_view text) {
  struct Key {
    std::string_view name;
    void (ZLVItemDetails::*set)(ZLVValue);
    bool isNumber = false;
  };
  static constexpr std::array<Key, 5> keys{{{"id=", &ZLVItemDetails::setItemID},
                                            {"name=", &ZLVItemDetails::setName},
                                            {"price=", &ZLVItemDetails::setPrice, true},
                                            {"quantity=", &ZLVItemDetails::setQuantity, true},
                                            {"category=", &ZLVItemDetails::setCategory}}};
  const auto keyAt = [&text](std::size_t position) {
    return std::find_if(keys.begin(), keys.end(), [&](const Key& key) {
      return text.substr(position).starts_with(key.name);
    });
  };

  auto item = std::make_shared<ZLVItemDetails>();
  for (std::size_t start = 0; start < text.size();) {
    const auto* key = keyAt(start);
    if (key == keys.end()) {
      throw CLI::ValidationError("--item", "\"" + std::string(text.substr(start)) +
                                               "\" starts with none of id=, name=, price=, "
                                               "quantity=, category=");
    }
    start += key->name.size();
    auto end = text.find(',', start);
    while (end != std::string_view::npos && keyAt(end + 1) == keys.end())
      end = text.find(',', end + 1);
    const auto value = text.substr(start, end == std::string_view::npos ? end : end - start);
    start = end == std::string_view::npos ? text.size() : end + 1;

    const auto number = key->isNumber ? parsedNumber(value) : std::nullopt;
    if (key->isNumber && !number) {
      throw CLI::ValidationError("--item",
                                 std::string(key->name) + std::string(value) + " is not a number");
    }
    ((*item).*(key->set))(number ? *number : ZLVValue(value));
  }
  return item;
}

class Parser {
 public:
  Parser() : app_("Checkout with a Zolva wallet, from a terminal.", "zolva") {
    app_.require_subcommand(1);
    app_.set_version_flag("--version", "zolva " ZLV_VERSION, "Print the version and exit");
    auto& options = invocation_.options;
    app_.add_option("--server", options.server, "Base URL of the merchant server")
        ->type_name("URL");
    app_.add_option("--merchant-id", options.merchantId, "The merchant's identifier")
        ->type_name("ID")
        ->capture_default_str();
    app_.add_option("--callback-url", options.callbackURL, "Where the wallet returns the user to")
        ->type_name("URL")
        ->capture_default_str();
    app_.add_flag("--log", options.isLoggingEnabled,
                  "Log requests and answers, tokens included, to standard error");
    app_.add_option("--analytics-root", options.analyticsRoot,
                    "Base URL of the analytics service (a server on this machine is its own)")
        ->type_name("URL");
    app_.add_flag("--allow-cleartext", options.allowsCleartext, "Allow http to other machines");
    app_.add_option("--ca-file", options.CAFile, "Certificate authorities to trust as well (PEM)")
        ->type_name("FILE")
        ->check(CLI::ExistingFile);
    app_.add_option("--open-with", options.openWith, "Program to open pages with")
        ->type_name("CMD");

    addLink();
    addAccount("enquire", "Show a linked account", enquire_);
    addAccount("unlink", "Unlink an account", unlink_);
    addCharge();
    auto* sandbox = add("sandbox", "Run a sandbox server until interrupted", sandbox_);
    sandbox->add_option("--port", sandbox_.port, "Port; the system chooses without one")
        ->type_name("N");
    add("demo", "Tell the whole journey, step by step, against a sandbox of its own", demo_);
    addDoctor();
  }

  [[nodiscard]] std::vector<CommandDescription> describe() const {
    std::vector<CommandDescription> commands{description(app_)};
    for (const auto* command : app_.get_subcommands({})) commands.push_back(description(*command));
    return commands;
  }

  std::variant<Invocation, Usage> parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());  // the order that CLI11 wants
    try {
      app_.parse(std::move(arguments));
      if (needsServer_ && invocation_.options.server.empty()) {
        throw CLI::RequiredError("--server");
      }
      if (!amount_.empty()) {
        const auto number = parsedNumber(amount_);
        if (!number) throw CLI::ValidationError("--gross-amount", amount_ + " is not a number");
        charge_.grossAmount = *number;
      }
      for (const auto& item : items_) {
        if (!charge_.items) charge_.items.emplace();
        charge_.items->push_back(parsedItem(item));
      }
    } catch (const CLI::CallForHelp&) {
      const auto selected = app_.get_subcommands();
      return Usage{selected.empty() ? app_.help() : selected.front()->help(), false};
    } catch (const CLI::CallForVersion& version) {
      return Usage{version.what(), false};
    } catch (const CLI::ParseError& error) {
      return Usage{"zolva: " + std::string(error.what()) + "\nSee zolva --help."};
    }
    select_();
    return std::move(invocation_);
  }

 private:
  static CommandDescription description(const CLI::App& app) {
    CommandDescription command{app.get_name(), app.get_description(), {}};
    for (const auto* option : app.get_options()) {
      const bool isPositional = option->get_positional();
      const bool hasValue = !isPositional && option->get_type_size() != 0;
      const auto type = option->get_type_name();  // and behind a colon what is checked
      command.options.push_back(
          {isPositional ? option->get_name(true) : "--" + option->get_lnames().front(),
           hasValue ? type.substr(0, type.find(':')) : "", option->get_description(),
           option->get_required()});
    }
    return command;
  }
  /// A subcommand that, when it is chosen, makes `command` the one to run.
  template <class Kind>
  CLI::App* add(const std::string& name, const std::string& description, Kind& command) {
    auto* subcommand = app_.add_subcommand(name, description)->fallthrough();
    subcommand->callback([this, &command] {
      needsServer_ = std::is_base_of_v<ServerCommand, Kind>;
      select_ = [this, &command] { invocation_.command = command; };
    });
    return subcommand;
  }
  static void require(CLI::App* subcommand, const char* name, std::string& value,
                      const char* description) {
    subcommand->add_option(name, value, description)->required();
  }

  void addLink() {
    auto* link = add("link", "Link a wallet account", link_);
    require(link, "--phone-number", link_.phoneNumber, "The wallet user's number");
    require(link, "--country-code", link_.countryCode, "Its country code, without a plus sign");
    link->add_option("--payment-type", link_.paymentType, paymentTypeHelp)
        ->default_val(defaultPaymentType);
  }
  template <class Kind>
  void addAccount(const char* name, const char* description, Kind& command) {
    require(add(name, description, command), "ACCOUNT_ID", command.accountID, "The account's id");
  }
  void addCharge() {
    auto* charge = add("charge", "Create a charge", charge_);
    require(charge, "--account-id", charge_.accountID, "The linked account");
    require(charge, "--payment-option-token", charge_.paymentOptionToken, "What to pay with");
    require(charge, "--gross-amount", amount_, "The amount, a number");
    require(charge, "--order-id", charge_.orderID, "The merchant's order");
    require(charge, "--currency", charge_.currency, "ISO 4217 code");
    require(charge, "--phone-number", charge_.phoneNumber, "The customer's number");
    require(charge, "--first-name", charge_.firstName, "The customer's first name");
    require(charge, "--last-name", charge_.lastName, "The customer's last name");
    require(charge, "--email", charge_.email, "The customer's address");
    charge->add_option("--item", items_, "id=…,name=…,price=…,quantity=…,category=… (repeatable)")
        ->expected(1)
        ->take_all();
    charge->add_option("--payment-type", charge_.paymentType, paymentTypeHelp)
        ->default_val(defaultPaymentType);
  }

  void addDoctor() {
    auto* doctor = add("doctor", "Check that a merchant server keeps to the contract", doctor_);
    doctor->add_flag("--yes", doctor_.isAgreed,
                     "Agree beforehand to what changes something: link, charge, unlink");
    doctor->add_flag("--json", doctor_.isJSON, "Print one JSON document");
    doctor->add_option("--account-id", doctor_.accountID,
                       "An activated account to charge; otherwise the one that is linked");
    doctor->add_option("--payment-option-token", doctor_.paymentOptionToken,
                       "What to pay with; otherwise the account's first active option");
    doctor->add_option("--gross-amount", doctor_.grossAmount, "The amount to charge")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    doctor->add_option("--currency", doctor_.currency, "ISO 4217 code; otherwise the option's");
    doctor->add_option("--phone-number", doctor_.phoneNumber, "The wallet user to link")
        ->capture_default_str();
    doctor->add_option("--country-code", doctor_.countryCode, "Its country code")
        ->capture_default_str();
    doctor->add_option("--payment-type", doctor_.paymentType, paymentTypeHelp)
        ->default_val(defaultPaymentType);
    doctor->add_option("--time-limit", doctor_.timeLimit, "Seconds for each answer")
        ->check(CLI::Range(0.001, 3600.0))
        ->capture_default_str();
    doctor->add_flag("--confirm-pages", doctor_.confirmsPages,
                     "Press Confirm on the wallet's pages, which works on the sandbox's");
  }

  CLI::App app_;
  Invocation invocation_;
  LinkCommand link_;
  EnquireCommand enquire_;
  UnlinkCommand unlink_;
  ChargeCommand charge_;
  SandboxCommand sandbox_;
  DemoCommand demo_;
  DoctorCommand doctor_;
  std::string amount_;
  std::vector<std::string> items_;
  bool needsServer_ = false;
  std::function<void()> select_;
};

}  // namespace

std::vector<CommandDescription> describeArguments() { return Parser().describe(); }

std::variant<Invocation, Usage> parseArguments(std::vector<std::string> arguments) {
  return Parser().parse(std::move(arguments));
}
