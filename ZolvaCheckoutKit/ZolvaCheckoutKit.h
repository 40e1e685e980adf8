#pragma once

// The library's whole public interface. A host also includes the header of its platform.

#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>
#include <ZolvaCheckoutKit/Platform/ZLVDeviceWrapper.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVAccountRecords.h>
#include <ZolvaCheckoutKit/ZLVClient.h>
#include <ZolvaCheckoutKit/ZLVEnquiryRecords.h>
#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVOptionalText.h>
#include <ZolvaCheckoutKit/ZLVRequestRecords.h>
#include <ZolvaCheckoutKit/ZLVTransactionRecords.h>
#include <ZolvaCheckoutKit/ZLVURL.h>
#include <ZolvaCheckoutKit/ZLVValue.h>
#include <ZolvaCheckoutKit/ZLVVendor.h>
#include <ZolvaCheckoutKit/ZLVVersion.h>
