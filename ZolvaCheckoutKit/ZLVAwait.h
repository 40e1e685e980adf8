#pragma once

#include <coroutine>
#include <exception>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include <ZolvaCheckoutKit/Platform/ZLVOnce.h>
#include <ZolvaCheckoutKit/ZLVClient.h>

/// @file
/// The operations of `ZLVClient` for coroutines.
///
/// ```cpp
/// ZLVDetached showAccount(std::string id) {
///   const auto account = co_await ZLVAwait::enquireAccount(id);
///   if (!account) co_return show(account.error().localizedDescription());
///   show(account->accountStatus().description());
/// }
/// ```

/// What an operation came to: a record, or the error in its place.
template <class Record>
class ZLVResult {
 public:
  /// A record that is not null.
  explicit ZLVResult(std::shared_ptr<Record> record) : outcome_(std::move(record)) {}
  /// An error in the record's place.
  explicit ZLVResult(ZLVError error) : outcome_(std::move(error)) {}

  /// Whether there is a record.
  explicit operator bool() const noexcept { return outcome_.index() == 0; }

  /// The record, which may be kept. Throws `std::bad_variant_access` where there is an error.
  [[nodiscard]] const std::shared_ptr<Record>& record() const& { return std::get<0>(outcome_); }
  /// The same, moved out of a result that goes away.
  [[nodiscard]] std::shared_ptr<Record> record() && { return std::get<0>(std::move(outcome_)); }
  /// The record's fields. Throws as `record` does.
  Record* operator->() const { return record().get(); }
  /// The record itself. Throws as `record` does.
  Record& operator*() const { return *record(); }

  /// The error. Throws `std::bad_variant_access` where there is a record.
  [[nodiscard]] const ZLVError& error() const& { return std::get<1>(outcome_); }
  /// The same, moved out of a result that goes away.
  [[nodiscard]] ZLVError error() && { return std::get<1>(std::move(outcome_)); }

 private:
  std::variant<std::shared_ptr<Record>, ZLVError> outcome_;
};

/// An operation that is to be awaited, once, in a coroutine of any type on any thread. It starts
/// there, and the coroutine goes on on the main thread, from the platform's main queue, with a
/// `ZLVResult`. What the operation throws for want of an argument is thrown at the `co_await`.
///
/// A coroutine that is destroyed while it waits, on the main thread, is not resumed; the call goes
/// on without it, and nothing is sent again or taken back.
template <class Record>
class ZLVAwaitable {
 public:
  /// Starts the operation with the completion that it is to have.
  using Start = ZLVOnce<void(ZLVCompletionHandler<Record>)>;

  /// An operation that has not started.
  explicit ZLVAwaitable(Start start) : start_(std::move(start)) {}
  /// Before it is awaited.
  ZLVAwaitable(ZLVAwaitable&&) noexcept = default;
  ZLVAwaitable& operator=(ZLVAwaitable&&) = delete;
  ~ZLVAwaitable() {
    if (waiting_) waiting_->coroutine = nullptr;
  }

  /// Starts it without a coroutine: `completion`, a copyable function of a `ZLVResult`, is called
  /// once, later, on the main thread. In place of awaiting it.
  template <class Completion>
  void start(Completion completion) && {
    // The answer may be there, and this object gone, before the call below returns.
    auto start = std::move(start_);
    std::move(start)([completion = std::move(completion)](std::shared_ptr<Record> record,
                                                          std::optional<ZLVError> error) mutable {
      completion(error ? ZLVResult<Record>(*std::move(error))
                       : ZLVResult<Record>(std::move(record)));
    });
  }

  /// Never: an answer always comes later.
  static constexpr bool await_ready() noexcept { return false; }

  /// Starts the operation.
  void await_suspend(std::coroutine_handle<> coroutine) {
    waiting_ = std::make_shared<Waiting>(Waiting{coroutine, std::nullopt});
    std::move(*this).start([waiting = waiting_](ZLVResult<Record> result) {
      waiting->result.emplace(std::move(result));
      if (waiting->coroutine) std::exchange(waiting->coroutine, nullptr).resume();
    });
  }

  /// What the operation came to.
  ZLVResult<Record> await_resume() { return *std::move(waiting_->result); }

 private:
  struct Waiting {
    std::coroutine_handle<> coroutine;  // null once it has gone on, or is gone
    std::optional<ZLVResult<Record>> result;
  };

  Start start_;
  std::shared_ptr<Waiting> waiting_;
};

/// A coroutine that nobody waits for, for hosts without a coroutine type of their own. It starts at
/// once; what it throws leaves where it runs: the caller until it first waits, then the main queue.
struct ZLVDetached {
  /// What the compiler asks of a coroutine's type.
  struct promise_type {
    /// @cond
    static ZLVDetached get_return_object() noexcept { return {}; }
    static std::suspend_never initial_suspend() noexcept { return {}; }
    static std::suspend_never final_suspend() noexcept { return {}; }
    static void return_void() noexcept {}
    [[noreturn]] static void unhandled_exception() { throw; }
    /// @endcond
  };
};

/// All that a charge says, field by field; what is not given is absent, and left out of the
/// request.
///
/// ```cpp
/// ZLVCharge charge{.paymentType = "zolva",
///                  .accountID = id,
///                  .paymentOptionToken = token,
///                  .grossAmount = 12.5,
///                  .orderID = "order-1",
///                  .currency = "EUR",
///                  .items = {{.itemID = "1", .name = "Beans", .price = 12.5, .quantity = 1}},
///                  .viewController = window};
/// const auto result = co_await ZLVAwait::createTransaction(std::move(charge));
/// ```
struct ZLVCharge {
  /// One purchased item.
  struct Item {
    /// The merchant's name for it.
    ZLVValue itemID = {};
    /// What the user reads.
    ZLVValue name = {};
    /// Of one, a number in the currency's main unit.
    ZLVValue price = {};
    /// How many, a number.
    ZLVValue quantity = {};
    /// The merchant's.
    ZLVValue category = {};
  };

  /// How it is paid; required.
  ZLVOptionalText paymentType = {};
  /// The linked account, as the merchant's server names it.
  ZLVValue accountID = {};
  /// Of the account's payment option to pay with.
  ZLVValue paymentOptionToken = {};
  /// A number in the currency's main unit.
  ZLVValue grossAmount = {};
  /// The merchant's order.
  ZLVValue orderID = {};
  /// ISO 4217 code.
  ZLVValue currency = {};
  /// The customer's number.
  ZLVValue phoneNumber = {};
  /// The customer's first name.
  ZLVValue firstName = {};
  /// The customer's last name.
  ZLVValue lastName = {};
  /// The customer's address.
  ZLVValue email = {};
  /// Left out of the request when there are none.
  std::vector<Item> items = {};
  /// What a page of the wallet is shown over.
  std::shared_ptr<ZLVViewController> viewController = {};
};

/// The operations, each as `ZLVClient` describes the one that it calls.
namespace ZLVAwait {

/// `ZLVClient::linkAccountWithPaymentType`.
[[nodiscard]] inline ZLVAwaitable<ZLVLinkAccountResult> linkAccount(
    ZLVOptionalText paymentType, std::shared_ptr<ZLVPartnerDetails> zolvaPartnerDetails,
    std::shared_ptr<ZLVViewController> viewController) {
  return ZLVAwaitable<ZLVLinkAccountResult>(
      [paymentType = std::move(paymentType), details = std::move(zolvaPartnerDetails),
       viewController = std::move(viewController)](auto handler) mutable {
        ZLVClient::linkAccountWithPaymentType(std::move(paymentType), std::move(details),
                                              std::move(viewController), std::move(handler));
      });
}

/// `ZLVClient::enquireAccountWithAccountID`.
[[nodiscard]] inline ZLVAwaitable<ZLVAccountInfo> enquireAccount(ZLVOptionalText accountID) {
  return ZLVAwaitable<ZLVAccountInfo>([accountID = std::move(accountID)](auto handler) mutable {
    ZLVClient::enquireAccountWithAccountID(std::move(accountID), std::move(handler));
  });
}

/// `ZLVClient::disableAccountWithAccountID`.
[[nodiscard]] inline ZLVAwaitable<ZLVDisableAccountResult> disableAccount(
    ZLVOptionalText accountID) {
  return ZLVAwaitable<ZLVDisableAccountResult>(
      [accountID = std::move(accountID)](auto handler) mutable {
        ZLVClient::disableAccountWithAccountID(std::move(accountID), std::move(handler));
      });
}

/// `ZLVClient::createTransactionWithPaymentType`, with the records made of the charge where it is
/// awaited.
[[nodiscard]] inline ZLVAwaitable<ZLVTransactionResult> createTransaction(ZLVCharge charge) {
  return ZLVAwaitable<ZLVTransactionResult>([charge = std::move(charge)](auto handler) {
    ZLVRecords<ZLVItemDetails> items;
    for (const auto& item : charge.items) {
      if (!items) items.emplace();
      items->push_back(ZLVItemDetails::initWithIthItemID(item.itemID, item.name, item.price,
                                                         item.quantity, item.category));
    }
    ZLVClient::createTransactionWithPaymentType(
        charge.paymentType, charge.viewController,
        ZLVZolvaDetails::initWithAccountID(charge.accountID, charge.paymentOptionToken),
        ZLVTransactionDetails::initWithGrossAmount(charge.grossAmount, charge.orderID,
                                                   charge.currency),
        ZLVCustomerDetails::initWithPhoneNumber(charge.phoneNumber, charge.firstName,
                                                charge.lastName, charge.email),
        std::move(items), std::move(handler));
  });
}

}  // namespace ZLVAwait
