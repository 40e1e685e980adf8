#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include <ZolvaCheckoutKit/ZLVValue.h>

/// HTTP methods; any value beyond these is sent as DELETE.
enum ZLVHTTPMethod : std::uint64_t {
  ZLVHTTPMethodGet = 0,
  ZLVHTTPMethodPost = 1,
  ZLVHTTPMethodDelete = 2
};

/// Whom a call goes to. Analytics has headers of its own; only merchant calls are logged.
enum ZLVServiceType : std::uint64_t { ZLVServiceTypeMerchant = 0, ZLVServiceTypeAnalytics = 1 };

/// A property that may be read and written on several threads.
template <class Value>
class ZLVAtomicProperty {
 public:
  [[nodiscard]] Value get() const {
    const std::lock_guard lock(mutex_);
    return value_;
  }
  void set(Value value) {
    const std::lock_guard lock(mutex_);
    std::swap(value_, value);
  }

 private:
  mutable std::mutex mutex_;
  Value value_{};
};

/// Describes one HTTP call. Made for the call, kept until its answer has been handled.
class ZLVNetworkService {
 public:
  /// `parameters` is a dictionary or absent. Nothing is checked.
  static std::shared_ptr<ZLVNetworkService> initWithBaseURL(std::string baseURL, std::string path,
                                                            ZLVHTTPMethod method,
                                                            ZLVValue parameters,
                                                            ZLVServiceType type) {
    auto service = std::make_shared<ZLVNetworkService>();
    service->setBaseURL(std::move(baseURL));
    service->setPath(std::move(path));
    service->setMethod(method);
    service->setParameters(std::move(parameters));
    service->setServiceType(type);
    return service;
  }

  /// Scheme, host and any path prefix of the service.
  [[nodiscard]] std::string baseURL() const { return baseURL_.get(); }
  void setBaseURL(std::string value) { baseURL_.set(std::move(value)); }
  /// With or without "/" at its ends.
  [[nodiscard]] std::string path() const { return path_.get(); }
  void setPath(std::string value) { path_.set(std::move(value)); }
  [[nodiscard]] ZLVHTTPMethod method() const { return method_.get(); }
  void setMethod(ZLVHTTPMethod value) { method_.set(value); }
  /// The query of a GET, the JSON body of any other method; a dictionary or absent.
  [[nodiscard]] ZLVValue parameters() const { return parameters_.get(); }
  void setParameters(ZLVValue value) { parameters_.set(std::move(value)); }
  [[nodiscard]] ZLVServiceType serviceType() const { return serviceType_.get(); }
  void setServiceType(ZLVServiceType value) { serviceType_.set(value); }

 private:
  ZLVAtomicProperty<std::string> baseURL_;
  ZLVAtomicProperty<std::string> path_;
  ZLVAtomicProperty<ZLVHTTPMethod> method_;
  ZLVAtomicProperty<ZLVValue> parameters_;
  ZLVAtomicProperty<ZLVServiceType> serviceType_;
};
