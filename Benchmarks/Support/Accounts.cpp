#include "Benchmarks/Support/Accounts.h"

std::string accountDocument(int paymentOptions) {
  std::string text =
      R"({"status_code":"200","payment_type":"zolva","account_id":"00000269-7836-49e5-bc65-e592afafec14",)"
      R"("account_status":"ENABLED","channel_response_code":"0",)"
      R"("channel_response_message":"Process service request successfully.",)"
      R"("metadata":{"payment_options":[)";
  for (int i = 0; i < paymentOptions; ++i) {
    if (i > 0) text += ',';
    text += R"({"name":"PAY_LATER","active":true,"balance":{"value":"350000.00","currency":"EUR"},)"
            R"("metadata":{"min_limit":"10000","tier":)" +
            std::to_string(i % 5) +
            R"(},"token":"eyJ0eXBlIjogIlpPTFZBX1dBTExFVCIsICJpZCI6ICIifQ==)" + std::to_string(i) +
            R"("})";
  }
  return text += "]}}";
}
