#pragma once

// The published fakes under short names, and what the library's own tests read of an upload.

#include <ZolvaCheckoutKit/Testing/ZLVFakePlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h"

using FakeDevice = ZLVFakeDevice;
using FakeTask = ZLVFakeTask;

/// What happened, in order: events, browser steps and completions.
using Journal = std::vector<std::string>;

struct FakePlatform : ZLVFakePlatform {
  explicit FakePlatform(std::optional<std::string> root = "https://analytics.test/")
      : ZLVFakePlatform(std::move(root)) {
    device->deviceName = "Ad\xE9's phone";
    ui->root.reset();
  }

  static void configure() {
    ZLVClient::initWithMerchantServerURL("https://shop.test/pay/", "M1", "app://done", false);
  }

  /// The records of an upload.
  static ZLVArray recordsOf(const ZLVURLRequest& upload) {
    const auto body =
        std::get<ZLVValue>(ZLVJSONSerialization::JSONObjectWithData(*upload.HTTPBody));
    return *(*body.dictionary())["d"].array();
  }
  [[nodiscard]] ZLVArray lastUpload() const { return recordsOf(session.analytics.back().request); }

 private:
  void receive(ZLVFakeTask task) override {
    if (task.request.URL->absoluteString().ends_with("/1/upload")) {
      const auto records = recordsOf(task.request);
      const auto& name = (*records[0].dictionary())["evtName"];
      if (!name.isAbsent()) ui->journal.push_back(name.description());
    }
    ZLVFakePlatform::receive(std::move(task));
  }
};
