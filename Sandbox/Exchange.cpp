#include <Sandbox/Exchange.h>
#include <boost/beast/core/string.hpp>

using boost::beast::iequals;

std::string_view ZLVSandboxRequest::path() const {
  return std::string_view(target).substr(0, target.find('?'));
}

std::string_view ZLVSandboxRequest::header(std::string_view name) const {
  for (const auto& [key, value] : headers) {
    if (iequals(key, name)) return value;
  }
  return {};
}

void ZLVSandboxAnswer::setHeader(std::string_view name, std::string_view value) {
  std::erase_if(headers, [&](const auto& header) { return iequals(header.first, name); });
  headers.emplace_back(name, value);
}

ZLVSandboxAnswer ZLVSandboxAnswer::JSON(unsigned status, std::string body) {
  return {status, {{"Content-Type", "application/json"}}, std::move(body)};
}
