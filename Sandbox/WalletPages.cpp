#include <algorithm>
#include <cmath>
#include <iterator>

#include <Sandbox/PageTemplates.h>
#include <Sandbox/Sandbox.h>
#include <Sandbox/WalletPages.h>

namespace {

using namespace ZLVPageTemplates;

std::string money(ZLVSandboxMoney amount) {
  return std::string(ZLVSandboxCurrency) + " " + ZLVMoneyText(amount);
}

/// A whole page. A form's answer may lead to `formTarget` besides the sandbox itself.
ZLVSandboxAnswer page(unsigned status, std::string_view title, std::string_view content,
                      std::string_view formTarget = {}) {
  // Browsers hold the redirect after a form to this rule too, so the callback's scheme is named.
  const auto scheme = formTarget.substr(0, formTarget.find(':') + 1);
  return {status,
          {{"Content-Type", "text/html; charset=utf-8"},
           {"Content-Security-Policy",
            "default-src 'none'; style-src 'unsafe-inline'; img-src data:; base-uri 'none'; "
            "frame-ancestors 'none'; form-action 'self' " +
                std::string(scheme)},
           {"Cache-Control", "no-store"},
           {"Referrer-Policy", "no-referrer"},
           {"X-Content-Type-Options", "nosniff"}},
          ZLVFillTemplate(Page, {{"title", title}, {"content", content}})};
}

/// What people call a payment option.
std::string_view title(const ZLVMerchant::PaymentOption& option) {
  return option.name == ZLVMerchant::PayLater ? "Pay later" : "Zolva wallet";
}

struct Notice {
  std::string_view key;
  unsigned status;
  std::string_view mood;
  std::string_view sign;
  std::string_view title;
  std::string_view lead;
};

constexpr Notice Notices[] = {
    {"unknown", 404, "wait", "?", "This link leads nowhere",
     "Go back to the shop and start again from there."},
    {"used", 410, "wait", "!", "This link was used already",
     "Each link works once. Go back to the shop and start again if you need a new one."},
    {"unclear", 400, "wait", "?", "Confirm or cancel?",
     "Your answer could not be read. Go back and choose one of the two buttons."},
    {"success", 200, "good", "✓", "All done", "You can close this page and return to the shop."},
    {"cancelled", 200, "wait", "×", "Cancelled",
     "Nothing was changed. You can close this page and return to the shop."},
    {"failed", 200, "bad", "!", "This did not work",
     "The account was unlinked or its balance is too small. Return to the shop to try again."},
};

ZLVSandboxAnswer notice(std::string_view key) {
  const auto& found = *std::ranges::find(Notices, key, &Notice::key);
  return page(found.status, found.title,
              ZLVFillTemplate(Message, {{"mood", found.mood},
                                        {"sign", found.sign},
                                        {"title", found.title},
                                        {"lead", found.lead}}));
}

std::string facts(std::initializer_list<std::pair<std::string_view, std::string_view>> list) {
  std::string html;
  for (const auto& [name, value] : list) {
    html += ZLVFillTemplate(Fact, {{"name", name}, {"value", value}});
  }
  return html;
}

/// The callback URL with the outcome in its query.
std::string withResult(const std::string& url, std::string_view result) {
  const auto end = std::min(url.find('#'), url.size());
  const bool hasQuery = url.find('?') < end;
  return url.substr(0, end) + (hasQuery ? "&" : "?") + "result=" + std::string(result) +
         url.substr(end);
}

std::string_view mood(std::string_view state) {
  if (state == "ENABLED" || state == "settlement" || state == "event") return "good";
  return state == "deny" ? "bad" : "wait";
}

std::string row(std::string_view what, std::string_view detail, std::string_view figure,
                std::string_view state, std::string_view link = {}) {
  return ZLVFillTemplate(OverviewRow, {{"what", what},
                                       {"detail", detail},
                                       {"figure", figure},
                                       {"mood", mood(state)},
                                       {"state", state},
                                       {"link", link}});
}

/// A section of rows, the newest first.
std::string section(std::string_view title, std::string_view whenEmpty, const auto& items,
                    auto describe) {
  std::string rows;
  for (auto item = std::rbegin(items); item != std::rend(items); ++item) rows += describe(*item);
  rows = rows.empty() ? ZLVFillTemplate("<p class=\"none\">{{text}}</p>", {{"text", whenEmpty}})
                      : "<ul>" + rows + "</ul>";
  return ZLVFillTemplate(
      OverviewSection,
      {{"title", title}, {"count", std::to_string(std::size(items))}, {"rows", rows}});
}

constexpr std::string_view WalletPath = "/wallet/";

/// The page of a path "/wallet/PAGE/TOKEN".
std::string_view pageOf(const ZLVSandboxRequest& request) {
  const auto rest = request.path().substr(WalletPath.size());
  return rest.substr(0, rest.find('/'));
}

/// The notice in place of the page; empty when the user can still decide.
std::string_view closed(const ZLVMerchant::Approval* approval) {
  if (approval == nullptr) return "unknown";
  return approval->isUsed ? "used" : "";
}

}  // namespace

ZLVSandboxAnswer ZLVWalletPages::show(const ZLVSandboxRequest& request, std::string_view token) {
  const auto* approval = merchant_.approval(pageOf(request), token);
  if (const auto reason = closed(approval); !reason.empty()) return notice(reason);

  const auto form = [&](auto eyebrow, auto style, std::string title, std::string lead,
                        std::string list) {
    return page(200, title,
                ZLVFillTemplate(Form, {{"eyebrow", eyebrow},
                                       {"style", style},
                                       {"title", title},
                                       {"lead", lead},
                                       {"facts", list},
                                       {"action", request.path()}}),
                approval->callbackURL);
  };
  const auto& account = merchant_.account(*approval);
  if (const auto* order = merchant_.transaction(*approval)) {
    const auto& option =
        *std::ranges::find(account.options, order->optionToken, &ZLVMerchant::PaymentOption::token);
    return form("Confirm payment", "amount", money(order->amount), "to " + merchantName_,
                facts({{"Order", order->orderID},
                       {"Pay with", title(option)},
                       {"Available", money(option.balance)},
                       {"Wallet", account.phone}}));
  }
  return form("Link account", "", "Pay at " + merchantName_ + " with Zolva",
              merchantName_ +
                  " will be able to charge your wallet. You confirm each payment above " +
                  money(std::llround(ZLVSandboxVerificationLimit * 100)) + " yourself.",
              facts({{"Shop", merchantName_}, {"Wallet", account.phone}}));
}

ZLVSandboxAnswer ZLVWalletPages::decide(const ZLVSandboxRequest& request, std::string_view token) {
  const auto* approval = merchant_.approval(pageOf(request), token);
  if (const auto reason = closed(approval); !reason.empty()) return notice(reason);
  const bool isConfirmed = request.body == "decision=confirm";
  if (!isConfirmed && request.body != "decision=cancel") return notice("unclear");

  const auto result = merchant_.decide(*approval, isConfirmed);
  auto answer = notice(result);
  if (!approval->callbackURL.empty()) {
    answer.status = 303;
    answer.setHeader("Location", withResult(approval->callbackURL, result));
  }
  return answer;
}

ZLVSandboxAnswer ZLVWalletPages::overview(const ZLVSandboxRequest&, std::string_view) {
  const auto open = [](const ZLVMerchant::Approval& approval) { return !approval.isUsed; };
  std::vector<ZLVMerchant::Approval> waiting;
  std::ranges::copy_if(merchant_.approvals(), std::back_inserter(waiting), open);

  auto sections =
      section("Waiting for the user", "Nothing to activate or verify.", waiting,
              [&](const auto& approval) {
                const auto path = std::string(WalletPath) + approval.page + "/" + approval.token;
                const auto* order = merchant_.transaction(approval);
                return row(order ? "Verify " + order->orderID : "Activate",
                           merchant_.account(approval).phone, order ? money(order->amount) : "", "",
                           ZLVFillTemplate("<a href=\"{{path}}\">Open</a>", {{"path", path}}));
              }) +
      section("Accounts", "No account is linked yet.", merchant_.accounts(),
              [](const auto& account) {
                const auto& wallet = account.options.front();
                return row(account.phone, account.id,
                           wallet.token.empty() ? "" : money(wallet.balance), account.status);
              }) +
      section("Charges", "Nothing was charged yet.", merchant_.transactions(),
              [](const auto& order) {
                return row(order.orderID, order.time + " UTC", money(order.amount), order.status);
              }) +
      section("Analytics records", "No record was uploaded yet.", collector_.events(),
              [](const auto& event) {
                return row(event.name.empty() ? event.identity : event.name, event.record, "",
                           event.type);
              });
  return page(
      200, "Overview",
      ZLVFillTemplate(Overview, {{"address", merchant_.baseURL()}, {"sections", sections}}));
}
