#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <boost/json.hpp>

/// An amount of money in hundredths.
using ZLVSandboxMoney = std::int64_t;

/// Such as "12.50".
std::string ZLVMoneyText(ZLVSandboxMoney amount);

/// Reads a JSON body field by field and notes what is wrong with it. A path names a field from the
/// top, as in "zolva_partner.phone_number" or "item_details.0.price". Of a body that is not a JSON
/// object nothing else is said.
class ZLVJSONForm {
 public:
  explicit ZLVJSONForm(std::string_view text, std::vector<std::string> problems = {});

  /// The text there, which must not be empty.
  std::string text(std::string_view path);
  /// The text there, or empty when there is none.
  std::string optionalText(std::string_view path);
  /// The URL there, or empty when there is none.
  std::string URL(std::string_view path);
  bool flag(std::string_view path);
  double number(std::string_view path);
  /// The number there, which must come to something in hundredths.
  double positive(std::string_view path);
  /// The number of elements of the list there.
  std::size_t count(std::string_view path);
  [[nodiscard]] bool has(std::string_view path) const { return find(path) != nullptr; }

  void require(bool condition, std::string problem);
  /// What is wrong so far, in the order of reading.
  [[nodiscard]] const std::vector<std::string>& problems() const { return problems_; }

 private:
  [[nodiscard]] const boost::json::value* find(std::string_view path) const;

  boost::json::value body_;
  bool isReadable_ = true;
  std::vector<std::string> problems_;
};
