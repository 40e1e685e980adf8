#include <algorithm>
#include <cmath>
#include <ctime>

#include <Sandbox/Merchant.h>
#include <Sandbox/Sandbox.h>
#include <boost/beast/core/string.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace json = boost::json;

namespace {

constexpr std::string_view Pending = "PENDING";
constexpr std::string_view Enabled = "ENABLED";
constexpr std::string_view Disabled = "DISABLED";

constexpr std::string_view Settled = "settlement";
constexpr std::string_view AwaitsUser = "pending";
constexpr std::string_view Cancelled = "cancel";
constexpr std::string_view Denied = "deny";

struct RequiredHeader {
  std::string_view name;
  std::string_view beginning;
  bool isForBodies;
};
constexpr RequiredHeader RequiredHeaders[] = {
    {"X-Source", "mobile-ios", false},
    {"X-Mobile-Platform", "ios", false},
    {"Content-Type", "application/json", true},
};

std::string uniqueID() { return to_string(boost::uuids::random_generator()()); }

ZLVSandboxMoney money(double amount) { return std::llround(amount * 100); }

std::string timeText() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  std::string text(19, '\0');
  std::strftime(text.data(), text.size() + 1, "%F %T", &utc);
  return text;
}

ZLVSandboxAnswer answer(unsigned status, json::object body) {
  body["status_code"] = std::to_string(status);
  return ZLVSandboxAnswer::JSON(status, json::serialize(body));
}

ZLVSandboxAnswer refusal(unsigned status, std::string_view message) {
  return answer(status, {{"status_message", message}, {"id", uniqueID()}});
}

ZLVSandboxAnswer invalid(const std::vector<std::string>& problems) {
  return answer(400, {{"status_message", "One or more parameters are invalid."},
                      {"validation_messages", json::value_from(problems)},
                      {"id", uniqueID()}});
}

std::vector<std::string> headerProblems(const ZLVSandboxRequest& request) {
  std::vector<std::string> problems;
  for (const auto& [name, beginning, isForBodies] : RequiredHeaders) {
    if (isForBodies && request.method == "GET") continue;
    if (!request.header(name).starts_with(beginning)) {
      problems.push_back("header " + std::string(name) + " must be " + std::string(beginning));
    }
  }
  return problems;
}

json::object describe(const ZLVMerchant::Account& account) {
  return {{"payment_type", account.paymentType},
          {"account_id", account.id},
          {"account_status", account.status},
          {"channel_response_code", "0"},
          {"channel_response_message", "Process service request successfully."}};
}

json::object describe(const ZLVMerchant::PaymentOption& option) {
  return {{"name", option.name},
          {"active", true},
          {"balance", {{"value", ZLVMoneyText(option.balance)}, {"currency", ZLVSandboxCurrency}}},
          {"metadata", json::object()},
          {"token", option.token}};
}

json::object describe(const ZLVMerchant::Transaction& transaction) {
  return {{"status_message", transaction.status == Settled      ? "The charge is settled."
                             : transaction.status == AwaitsUser ? "The user must verify."
                                                                : "The charge came to nothing."},
          {"transaction_id", transaction.id},
          {"order_id", transaction.orderID},
          {"gross_amount", ZLVMoneyText(transaction.amount)},
          {"currency", ZLVSandboxCurrency},
          {"payment_type", transaction.paymentType},
          {"transaction_time", transaction.time},
          {"transaction_status", transaction.status},
          {"fraud_status", "accept"},
          {"channel_response_code", "0"},
          {"channel_response_message", "Process service request successfully."}};
}

json::object action(std::string_view name, std::string_view url) {
  return {{"name", name}, {"method", "GET"}, {"url", url}};
}

/// The sum of the items, or the gross amount when none are given.
ZLVSandboxMoney itemSum(ZLVJSONForm& form, ZLVSandboxMoney grossAmount) {
  if (!form.has("item_details")) return grossAmount;
  double sum = 0;
  for (std::size_t index = 0; index < form.count("item_details"); ++index) {
    const std::string item = "item_details." + std::to_string(index) + ".";
    form.text(item + "id");
    form.text(item + "name");
    form.optionalText(item + "category");
    sum += form.number(item + "price") * form.positive(item + "quantity");
  }
  return money(sum);
}

template <class Elements>
auto* elementWith(Elements& elements, auto field, std::string_view value) {
  const auto found = std::ranges::find(elements, value, field);
  return found == elements.end() ? nullptr : &*found;
}

}  // namespace

const ZLVMerchant::Transaction* ZLVMerchant::transaction(const Approval& approval) const {
  if (approval.page != VerificationPage) return nullptr;
  return elementWith(transactions_, &Transaction::orderID, approval.subject);
}

const ZLVMerchant::Account& ZLVMerchant::account(const Approval& approval) const {
  const auto* order = transaction(approval);
  return *elementWith(accounts_, &Account::id, order ? order->accountID : approval.subject);
}

const ZLVMerchant::Approval* ZLVMerchant::approval(std::string_view page,
                                                   std::string_view token) const {
  const auto* approval = elementWith(approvals_, &Approval::token, token);
  return approval != nullptr && approval->page == page ? approval : nullptr;
}

ZLVSandboxAnswer ZLVMerchant::link(const ZLVSandboxRequest& request, std::string_view) {
  ZLVJSONForm form(request.body, headerProblems(request));
  auto paymentType = form.text("payment_type");
  const auto number = form.text("zolva_partner.phone_number");
  const auto country = form.text("zolva_partner.country_code");
  auto redirectURL = form.URL("zolva_partner.redirect_url");
  if (!form.problems().empty()) return invalid(form.problems());

  const std::string phone = "+" + country + " " + number;
  const auto isSame = [&](const Account& account) {
    return account.phone == phone && account.status != Disabled;
  };
  auto account = std::ranges::find_if(accounts_, isSame);
  if (account == accounts_.end()) {
    account = accounts_.insert(
        account, {uniqueID(), std::move(paymentType), phone, std::string(Pending), {}});
  }
  auto body = describe(*account);
  if (account->status == Enabled) return answer(200, std::move(body));

  const auto url = ask(ActivationPage, account->id, std::move(redirectURL));
  body["actions"] = {action("activation-deeplink", url),
                     action("activation-link-url", url + "?in=browser")};
  return answer(201, std::move(body));
}

ZLVSandboxAnswer ZLVMerchant::enquire(const ZLVSandboxRequest& request, std::string_view id) const {
  if (const auto problems = headerProblems(request); !problems.empty()) return invalid(problems);
  const auto* found = elementWith(accounts_, &Account::id, id);
  if (found == nullptr) return refusal(404, "Account doesn't exist.");
  auto body = describe(*found);
  if (found->status == Enabled) {
    json::array options;
    for (const auto& option : found->options) options.push_back(describe(option));
    body["metadata"].emplace_object()["payment_options"] = std::move(options);
  }
  return answer(200, std::move(body));
}

ZLVSandboxAnswer ZLVMerchant::unbind(const ZLVSandboxRequest& request, std::string_view id) {
  if (const auto problems = headerProblems(request); !problems.empty()) return invalid(problems);
  auto* found = elementWith(accounts_, &Account::id, id);
  if (found == nullptr) return refusal(404, "Account doesn't exist.");
  found->status = Disabled;
  return answer(200, describe(*found));
}

ZLVSandboxAnswer ZLVMerchant::charge(const ZLVSandboxRequest& request, std::string_view) {
  ZLVJSONForm form(request.body, headerProblems(request));
  Transaction made{.id = uniqueID(),
                   .orderID = form.text("transaction_details.order_id"),
                   .paymentType = form.text("payment_type"),
                   .accountID = form.text("zolva.account_id"),
                   .optionToken = form.text("zolva.payment_option_token"),
                   .amount = money(form.positive("transaction_details.gross_amount")),
                   .time = timeText(),
                   .status = std::string(AwaitsUser)};
  auto callbackURL = form.URL("zolva.callback_url");
  if (!form.flag("zolva.enable_callback")) callbackURL.clear();
  form.require(form.text("transaction_details.currency") == ZLVSandboxCurrency,
               "transaction_details.currency must be " + std::string(ZLVSandboxCurrency));
  for (const auto* field : {"phone", "first_name", "email"}) {
    form.text("customer_details." + std::string(field));
  }
  form.optionalText("customer_details.last_name");
  form.require(itemSum(form, made.amount) == made.amount,
               "item_details must add up to transaction_details.gross_amount");
  if (!form.problems().empty()) return invalid(form.problems());

  const auto* payer = elementWith(accounts_, &Account::id, made.accountID);
  if (payer == nullptr) return refusal(404, "Account doesn't exist.");
  if (payer->status != Enabled) return refusal(403, "The account is " + payer->status + ".");
  const auto* option = elementWith(payer->options, &PaymentOption::token, made.optionToken);
  if (option == nullptr) return refusal(404, "Payment option doesn't exist.");
  const auto* earlier = elementWith(transactions_, &Transaction::orderID, made.orderID);
  if (earlier != nullptr && earlier->status == Settled) {
    return refusal(406, "The order was paid before.");
  }
  if (option->balance < made.amount) return refusal(402, "The balance is too small.");

  // There is one charge for an order: the last one, with the only page that counts.
  std::erase_if(transactions_, [&](const auto& other) { return other.orderID == made.orderID; });
  for (auto& approval : approvals_) approval.isUsed |= approval.subject == made.orderID;
  auto& kept = transactions_.emplace_back(std::move(made));
  if (kept.amount <= money(ZLVSandboxVerificationLimit)) {
    settle(kept);
    return answer(200, describe(kept));
  }
  auto body = describe(kept);
  const auto url = ask(VerificationPage, kept.orderID, std::move(callbackURL));
  body["actions"].emplace_array().push_back(action("user-verification", url));
  return answer(201, std::move(body));
}

ZLVSandboxAnswer ZLVMerchant::order(const ZLVSandboxRequest&, std::string_view id) const {
  const auto* found = elementWith(transactions_, &Transaction::orderID, id);
  return found == nullptr ? refusal(404, "Nothing was charged for this order.")
                          : answer(200, describe(*found));
}

std::string ZLVMerchant::ask(std::string_view page, std::string subject, std::string callbackURL) {
  const auto& approval = approvals_.emplace_back(
      Approval{std::string(page), uniqueID(), std::move(subject), std::move(callbackURL)});
  return baseURL_ + "/wallet/" + approval.page + "/" + approval.token;
}

std::string_view ZLVMerchant::decide(const Approval& approval, bool isConfirmed) {
  elementWith(approvals_, &Approval::token, approval.token)->isUsed = true;
  if (approval.page == VerificationPage) {
    auto* order = elementWith(transactions_, &Transaction::orderID, approval.subject);
    if (isConfirmed) return settle(*order) ? "success" : "failed";
    order->status = Cancelled;
    return "cancelled";
  }
  if (!isConfirmed) return "cancelled";
  auto* account = elementWith(accounts_, &Account::id, approval.subject);
  if (account->status == Disabled) return "failed";
  if (account->status == Pending) {
    account->status = Enabled;
    account->options = {{{std::string(Wallet), uniqueID(), money(ZLVSandboxWalletBalance)},
                         {std::string(PayLater), uniqueID(), money(ZLVSandboxPayLaterBalance)}}};
  }
  return "success";
}

/// Takes the money, unless the account or its balance has gone in the meantime.
bool ZLVMerchant::settle(Transaction& transaction) {
  auto* payer = elementWith(accounts_, &Account::id, transaction.accountID);
  auto* option = elementWith(payer->options, &PaymentOption::token, transaction.optionToken);
  const bool canPay = payer->status == Enabled && option->balance >= transaction.amount;
  if (canPay) option->balance -= transaction.amount;
  transaction.status = canPay ? Settled : Denied;
  return canPay;
}
