#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <Sandbox/Exchange.h>
#include <Sandbox/JSONForm.h>

/// The merchant's server: accounts, charges, and what the wallet's user has yet to approve. JSON
/// in, JSON out; no lock, the caller sees to that.
class ZLVMerchant {
 public:
  static constexpr std::string_view Wallet = "ZOLVA_WALLET";
  static constexpr std::string_view PayLater = "PAY_LATER";
  struct PaymentOption {
    std::string name;
    std::string token;
    ZLVSandboxMoney balance = 0;
  };
  /// Its payment options are there once it is enabled.
  struct Account {
    std::string id;
    std::string paymentType;
    std::string phone;
    std::string status;
    std::array<PaymentOption, 2> options;
  };
  struct Transaction {
    std::string id;
    std::string orderID;
    std::string paymentType;
    std::string accountID;
    std::string optionToken;
    ZLVSandboxMoney amount = 0;
    std::string time;
    std::string status;
  };
  /// Something that the user is asked for on a page of the wallet, once.
  struct Approval {
    /// The part of the page's path that says what it is about.
    std::string page;
    std::string token;
    /// An account's id or a charge's order id.
    std::string subject;
    /// Empty when the user is not sent back anywhere.
    std::string callbackURL;
    bool isUsed = false;
  };

  static constexpr std::string_view ActivationPage = "activate";
  static constexpr std::string_view VerificationPage = "verify";

  /// Pages are below `baseURL`.
  explicit ZLVMerchant(std::string baseURL) : baseURL_(std::move(baseURL)) {}

  /// The four calls; the second argument is the account's id where the path names one.
  ZLVSandboxAnswer link(const ZLVSandboxRequest& request, std::string_view);
  [[nodiscard]] ZLVSandboxAnswer enquire(const ZLVSandboxRequest& request,
                                         std::string_view accountID) const;
  ZLVSandboxAnswer unbind(const ZLVSandboxRequest& request, std::string_view accountID);
  ZLVSandboxAnswer charge(const ZLVSandboxRequest& request, std::string_view);
  /// What has become of an order's charge; for the merchant's own application, not for the library.
  [[nodiscard]] ZLVSandboxAnswer order(const ZLVSandboxRequest&, std::string_view orderID) const;

  /// Null when there is no such thing to approve.
  [[nodiscard]] const Approval* approval(std::string_view page, std::string_view token) const;
  /// Uses the approval up; "success", "cancelled" or "failed".
  std::string_view decide(const Approval& approval, bool isConfirmed);

  /// What the user is to verify, or null when it is an account that is to be activated.
  [[nodiscard]] const Transaction* transaction(const Approval& approval) const;
  /// The account that is to be activated, or that is to pay.
  [[nodiscard]] const Account& account(const Approval& approval) const;
  [[nodiscard]] const std::string& baseURL() const { return baseURL_; }
  /// All of them, in the order of creation.
  [[nodiscard]] const std::vector<Account>& accounts() const { return accounts_; }
  [[nodiscard]] const std::vector<Transaction>& transactions() const { return transactions_; }
  [[nodiscard]] const std::vector<Approval>& approvals() const { return approvals_; }

 private:
  std::string ask(std::string_view page, std::string subject, std::string callbackURL);
  bool settle(Transaction& transaction);

  std::string baseURL_;
  std::vector<Account> accounts_;
  std::vector<Transaction> transactions_;
  std::vector<Approval> approvals_;
};
