#include "Tests/Faults/Stage.h"

#include <atomic>
#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

RawServer::Reply good(const std::string& /*request*/) { return {Stage::goodAnswer()}; }

/// How many bytes there are for each that is used.
#ifdef __has_feature
#if __has_feature(thread_sanitizer)
#define ZLV_BYTES_FOR_EACH 5
#endif
#endif
#ifndef ZLV_BYTES_FOR_EACH
#define ZLV_BYTES_FOR_EACH 1
#endif

/// Resident memory of this process in KiB: "VmRSS" now, or "VmHWM" at most.
long memory(const std::string& kind) {
  std::ifstream status("/proc/self/status");
  for (std::string key; status >> key;) {
    long value = 0;
    if (key == kind + ":" && status >> value) return value;
  }
  return 0;
}

/// A cell of the document's table.
std::string cell(const std::string& text) { return "| " + text + " "; }

std::string cells(const Library::Outcome& outcome) {
  if (!outcome.error) return cell("") + cell("") + cell("the record `" + outcome.record + "`");
  return cell(outcome.error->domain()) + cell(std::to_string(outcome.error->code())) +
         cell(outcome.error->localizedDescription());
}

}  // namespace

std::string Stage::goodAnswer() { return RawServer::response(R"({"account_id":"acc-1"})"); }

Stage::Stage()
    : authorityFile_(std::filesystem::temp_directory_path() /
                     ("zolva-faults-" + std::to_string(getpid()))),
      bystander_(good),
      proxy_([](auto&) {
        return RawServer::Reply{"HTTP/1.1 502 Bad Gateway\r\n\r\n", RawServer::Then::Close};
      }) {
  std::ofstream(authorityFile_) << authority_.certificatePEM();
  setenv("https_proxy", proxy_.url().c_str(), 1);
  setenv("no_proxy", "255.255.255.255,.invalid", 1);
  library_.emplace(bystander_.url(), bystander_.url());
}

Stage::~Stage() {
  library_->endSession();
  std::filesystem::remove(authorityFile_);
}

std::string Stage::play(const Fault& fault) {
  const auto text = outcome(fault);
  for (auto cut = fault; fault.isCutAnywhere && !cut.reply.bytes.empty();) {
    cut.reply.bytes.pop_back();
    EXPECT_EQ(outcome(cut), text) << "after " << cut.reply.bytes.size() << " bytes";
  }
  return cell(fault.what) + text + "|\n";
}

std::string Stage::outcome(const Fault& fault) {
  SCOPED_TRACE(fault.what);
  auto options = Library::options();
  options.CAFile = authorityFile_;
  options.maximumAnswerSize = fault.maximumAnswerSize;
  library_->renewSession(options);
  std::atomic<int> faultsLeft = 0;
  std::atomic<bool> isEarlier = fault.earlierReply.has_value();
  RawServer server(
      [&](auto& request) {
        if (faultsLeft > 0) return --faultsLeft, fault.reply;
        return isEarlier ? *fault.earlierReply : good(request);
      },
      fault.tls);
  if (isEarlier) {
    EXPECT_TRUE(works(server.url()));
  }
  isEarlier = false;
  if (fault.arrange) fault.arrange(server);
  const auto requestsBefore = server.requests().size();

  faultsLeft = fault.times;
  auto url = fault.url.empty() ? server.url() : fault.url;
  if (url.ends_with(':')) url += std::to_string(server.port());
  ZLVVendor::shared().setMerchantSeverURL(url);
  library_->setTimeoutInterval(fault.timeoutInterval);
  std::ofstream("/proc/self/clear_refs") << 5;  // the memory's peak starts again
  const auto memoryBefore = memory("VmRSS");
  auto text = cells(library_->outcomeOf(fault.call));
  const auto allowed =
      (static_cast<long>(fault.maximumAnswerSize / 1024) * 8 + 32'768) * ZLV_BYTES_FOR_EACH;
  EXPECT_LT(memory("VmHWM") - memoryBefore, allowed) << "KiB of memory";
  if (fault.tellsTimesSent) {
    const auto times = server.requests().size() - requestsBefore;
    text += "Sent " + (times == 1 ? "once" : std::to_string(times) + " times") + ". ";
  }

  faultsLeft = 0;
  const auto* on = works(url) ? "yes" : works(bystander_.url()) ? "with another server" : "NO";
  return text + cell(on);
}

bool Stage::works(const std::string& server) {
  library_->setTimeoutInterval(60);
  ZLVVendor::shared().setMerchantSeverURL(server);
  const auto outcome = library_->outcomeOf(&Library::enquire);
  return !outcome.error && outcome.record == R"({"account_id":"acc-1","metadata":{}})";
}
