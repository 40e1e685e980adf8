#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVOptionalText.h>
#include <ZolvaCheckoutKit/ZLVRequestRecords.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

// The JSON documents of the interface. What a host writes wrong is a fault that names the call.

ZLVValue ZLVValueOfText(std::string_view text, std::string_view call, std::string_view what);
ZLVDictionary ZLVObjectOfText(std::string_view text, std::string_view call, std::string_view what);

/// Nothing for NULL.
std::shared_ptr<ZLVPartnerDetails> ZLVPartnerDetailsOfText(const char* text);

/// What a charge is made of; what the document leaves out is absent.
struct ZLVCharge {
  ZLVOptionalText paymentType;
  std::shared_ptr<ZLVZolvaDetails> zolva;
  std::shared_ptr<ZLVTransactionDetails> transaction;
  std::shared_ptr<ZLVCustomerDetails> customer;
  ZLVRecords<ZLVItemDetails> items;
};
ZLVCharge ZLVChargeOfText(const char* text);

std::string ZLVTextOfRecord(const ZLVMappable& record);
std::string ZLVTextOfError(const ZLVError& error);
