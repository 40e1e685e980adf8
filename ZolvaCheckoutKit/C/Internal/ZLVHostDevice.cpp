#include <algorithm>
#include <utility>

#include <ZolvaCheckoutKit/C/Internal/ZLVDocuments.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostDevice.h>

struct zlv_text {
  std::int32_t fact = 0;
  ZLVValue value;
};

namespace {

constexpr std::string_view widthKey = "width";
constexpr std::string_view heightKey = "height";
constexpr std::string_view cpuUsageKey = "cpu_usage";
constexpr std::string_view isIdleKey = "is_idle";

/// The fact that this thread is just asking for.
thread_local zlv_text* asked = nullptr;

template <class Is>
bool isListOf(const ZLVValue& value, Is is) {
  const auto* list = value.array();
  return list != nullptr && std::all_of(list->begin(), list->end(), is);
}

bool isSize(const ZLVValue& value) {
  const auto* size = value.dictionary();
  return size != nullptr && (*size)[widthKey].isNumber() && (*size)[heightKey].isNumber();
}

bool isThread(const ZLVValue& value) {
  const auto* thread = value.dictionary();
  return value.isNull() || (thread != nullptr && (*thread)[cpuUsageKey].isNumber());
}

/// The fact as its text has it; throws a fault where that is not what it should be.
ZLVValue parsed(std::int32_t fact, std::string_view text) {
  constexpr std::string_view call = "zlv_text_set";
  bool (*isRight)(const ZLVValue&) = nullptr;
  switch (fact) {
    case ZLV_FACT_MAIN_SCREEN_SIZE:
      isRight = isSize;
      break;
    case ZLV_FACT_PREFERRED_LOCALIZATIONS:
    case ZLV_FACT_PREFERRED_LANGUAGES:
      isRight = [](const ZLVValue& value) {
        return isListOf(value, [](const ZLVValue& entry) { return entry.text().has_value(); });
      };
      break;
    case ZLV_FACT_THREADS:
      isRight = [](const ZLVValue& value) { return isListOf(value, isThread); };
      break;
    default:
      return text;
  }
  auto value = ZLVValueOfText(text, call, "fact");
  if (!isRight(value)) ZLVThrowFault(call, "this is not the JSON that the fact is");
  return value;
}

}  // namespace

ZLVValue ZLVHostDevice::fact(std::int32_t fact) const {
  zlv_text answer{fact, {}};
  auto* const outer = std::exchange(asked, &answer);
  host_.device_fact(host_.context, fact, &answer);
  asked = outer;
  return std::move(answer.value);
}

std::optional<std::string> ZLVHostDevice::text(std::int32_t fact) const {
  const auto value = this->fact(fact);
  if (const auto text = value.text()) return std::string(*text);
  return std::nullopt;
}

std::vector<std::string> ZLVHostDevice::texts(std::int32_t fact) const {
  std::vector<std::string> texts;
  const auto value = this->fact(fact);
  if (const auto* list = value.array()) {
    for (const auto& entry : *list) texts.emplace_back(*entry.text());
  }
  return texts;
}

std::optional<std::string> ZLVHostDevice::identifierForVendor() const {
  return text(ZLV_FACT_IDENTIFIER_FOR_VENDOR);
}

std::optional<ZLVSize> ZLVHostDevice::mainScreenSize() const {
  const auto value = fact(ZLV_FACT_MAIN_SCREEN_SIZE);
  const auto* size = value.dictionary();
  if (size == nullptr) return std::nullopt;
  return ZLVSize{*(*size)[widthKey].number(), *(*size)[heightKey].number()};
}

std::optional<std::string> ZLVHostDevice::bundleDisplayName() const {
  return text(ZLV_FACT_BUNDLE_DISPLAY_NAME);
}

std::optional<std::string> ZLVHostDevice::bundleShortVersion() const {
  return text(ZLV_FACT_BUNDLE_SHORT_VERSION);
}

std::vector<std::string> ZLVHostDevice::preferredLocalizations() const {
  return texts(ZLV_FACT_PREFERRED_LOCALIZATIONS);
}

std::vector<std::string> ZLVHostDevice::preferredLanguages() const {
  return texts(ZLV_FACT_PREFERRED_LANGUAGES);
}

std::optional<std::string> ZLVHostDevice::machine() const { return text(ZLV_FACT_MACHINE); }

std::optional<std::string> ZLVHostDevice::name() const { return text(ZLV_FACT_NAME); }

std::optional<std::string> ZLVHostDevice::systemVersion() const {
  return text(ZLV_FACT_SYSTEM_VERSION);
}

std::optional<ZLVDevice::Threads> ZLVHostDevice::threads() const {
  const auto value = fact(ZLV_FACT_THREADS);
  const auto* list = value.array();
  if (list == nullptr) return std::nullopt;
  Threads threads;
  for (const auto& entry : *list) {
    auto& thread = threads.emplace_back();
    if (const auto* usage = entry.dictionary()) {
      thread = {static_cast<int>((*usage)[cpuUsageKey].integerValue()),
                (*usage)[isIdleKey].boolean().value_or(false)};
    }
  }
  return threads;
}

zlv_result zlv_text_set(zlv_text* answer, const char* text) {
  return ZLVResultOf([&] {
    ZLVRequired(text, "zlv_text_set", "text");
    if (answer == nullptr) ZLVThrowFault("zlv_text_set", "no answer");
    if (answer != asked) throw ZLVGone();
    answer->value = parsed(answer->fact, text);
  });
}
