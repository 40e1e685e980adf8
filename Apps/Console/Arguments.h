#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

/// What every command that uses the library is told.
struct ConsoleOptions {
  std::string server;
  std::string merchantId = "M-SANDBOX";
  std::string callbackURL = "zolvademo://done";
  bool isLoggingEnabled = false;
  std::optional<std::string> analyticsRoot;
  bool allowsCleartext = false;
  std::optional<std::string> CAFile;
  std::optional<std::string> openWith;
};

/// A command that calls the merchant server, which it must be told.
struct ServerCommand {};

struct LinkCommand : ServerCommand {
  std::string paymentType, phoneNumber, countryCode;
};
struct EnquireCommand : ServerCommand {
  std::string accountID;
};
struct UnlinkCommand : ServerCommand {
  std::string accountID;
};
struct ChargeCommand : ServerCommand {
  std::string paymentType, accountID, paymentOptionToken;
  ZLVValue grossAmount;
  std::string orderID, currency;
  std::string phoneNumber, firstName, lastName, email;
  ZLVRecords<ZLVItemDetails> items;
};
struct SandboxCommand {
  std::uint16_t port = 0;
};
struct DemoCommand {};
struct DoctorCommand : ServerCommand {
  bool isAgreed = false, isJSON = false, confirmsPages = false;
  double timeLimit = 10;  ///< Seconds, for each answer.
  std::string accountID, paymentOptionToken, currency;
  std::string paymentType, phoneNumber = "7700900123", countryCode = "44";
  double grossAmount = 1;
};

using Command = std::variant<LinkCommand, EnquireCommand, UnlinkCommand, ChargeCommand,
                             SandboxCommand, DemoCommand, DoctorCommand>;

struct Invocation {
  ConsoleOptions options;
  Command command;
};

/// Why there is nothing to run: help that was asked for, or wrong usage.
struct Usage {
  std::string message;
  bool isError = true;
};

/// What the command line takes.
struct OptionDescription {
  std::string name;   ///< "--server", or "ACCOUNT_ID" for what has no option before it.
  std::string value;  ///< What follows it; empty for a flag.
  std::string description;
  bool isRequired = false;
};
struct CommandDescription {
  std::string name, description;
  std::vector<OptionDescription> options;
};

/// The program itself, then its commands.
std::vector<CommandDescription> describeArguments();

/// Reads a command line, the program's name left out.
std::variant<Invocation, Usage> parseArguments(std::vector<std::string> arguments);
