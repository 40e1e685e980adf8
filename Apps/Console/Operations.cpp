#include "Apps/Console/Operations.h"

#include <cstdio>

namespace {

template <class Record>
int print(const Outcome<Record>& outcome) {
  ZLVDictionary document;
  if (const auto& error = outcome.error) {
    document.set("error", ZLVDictionary{{"domain", error->domain()},
                                        {"code", error->code()},
                                        {"mayHaveTakenEffect", error->requestMayHaveTakenEffect()},
                                        {"userInfo", error->userInfo()}});
  } else {
    document.set("result", outcome.record);  // described with its nested records as dictionaries
  }
  std::puts(ZLVValue(document).description().c_str());
  return outcome.error ? 1 : 0;
}

}  // namespace

int runOperation(Host& host, const LinkCommand& command) {
  return print(host.wait<ZLVLinkAccountResult>([&](auto completion) {
    ZLVClient::linkAccountWithPaymentType(
        command.paymentType,
        ZLVPartnerDetails::initWithPhoneNumber(command.phoneNumber, command.countryCode),
        host.viewController(), std::move(completion));
  }));
}

int runOperation(Host& host, const EnquireCommand& command) {
  return print(host.wait<ZLVAccountInfo>([&](auto completion) {
    ZLVClient::enquireAccountWithAccountID(command.accountID, std::move(completion));
  }));
}

int runOperation(Host& host, const UnlinkCommand& command) {
  return print(host.wait<ZLVDisableAccountResult>([&](auto completion) {
    ZLVClient::disableAccountWithAccountID(command.accountID, std::move(completion));
  }));
}

int runOperation(Host& host, const ChargeCommand& command) {
  return print(host.wait<ZLVTransactionResult>([&](auto completion) {
    ZLVClient::createTransactionWithPaymentType(
        command.paymentType, host.viewController(),
        ZLVZolvaDetails::initWithAccountID(command.accountID, command.paymentOptionToken),
        ZLVTransactionDetails::initWithGrossAmount(command.grossAmount, command.orderID,
                                                   command.currency),
        ZLVCustomerDetails::initWithPhoneNumber(command.phoneNumber, command.firstName,
                                                command.lastName, command.email),
        command.items, std::move(completion));
  }));
}
