#include "Tests/Faults/Stage.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Tests/Faults/Certificates.h"

namespace {

RawServer::Reply good(const std::string& /*request*/) { return {Stage::goodAnswer()}; }

/// Resident memory of this process in KiB: "VmRSS" now, or "VmHWM" at most.
long memory(const std::string& kind) {
  std::ifstream status("/proc/self/status");
  for (std::string key; status >> key;) {
    long value = 0;
    if (key == kind + ":" && status >> value) return value;
  }
  return 0;
}

/// Checks that what happens in its lifetime takes a bounded amount of memory.
class MemoryCheck {
 public:
  explicit MemoryCheck(std::size_t maximumAnswerSize)
      : allowed_(static_cast<long>(maximumAnswerSize / 1024) * 8 + 32'768) {
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak starts again
    before_ = memory("VmRSS");
  }
  MemoryCheck(const MemoryCheck&) = delete;
  MemoryCheck& operator=(const MemoryCheck&) = delete;
  ~MemoryCheck() { EXPECT_LT(memory("VmHWM") - before_, allowed_) << "KiB of memory"; }

 private:
  long allowed_, before_;
};

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
      collector_(good),
      proxy_([](auto&) {
        return RawServer::Reply{"HTTP/1.1 502 Bad Gateway\r\n\r\n", RawServer::Then::Close};
      }) {
  std::ofstream(authorityFile_) << authority_.certificatePEM()
                                << Certificates::revocationList(revoked_, authority_);
  setenv("https_proxy", proxy_.url().c_str(), 1);
  setenv("no_proxy", "255.255.255.255,.invalid", 1);
  library_.emplace(collector_.url(), bystander_.url());
}

Stage::~Stage() {
  library_->endSession();
  std::filesystem::remove(authorityFile_);
}

std::string Stage::play(const Fault& fault) {
  if (!fault.isCutAnywhere) return cell(fault.what) + outcome(fault) + "|\n";
  std::string lines;
  std::string last;
  std::size_t first = 0;
  const auto size = fault.reply.bytes.size();
  for (std::size_t length = 0; length <= size + 1; ++length) {
    auto cut = fault;
    cut.reply.bytes.resize(std::min(length, size));
    const auto next = length > size ? "" : outcome(cut);
    if (next == last) continue;
    if (length > 0) {
      lines += cell(fault.what + " after " + std::to_string(first) +
                    (length - 1 == first ? "" : " to " + std::to_string(length - 1)) + " of " +
                    std::to_string(size) + " bytes") +
               last + "|\n";
    }
    first = length;
    last = next;
  }
  return lines;
}

std::string Stage::outcome(const Fault& fault) {
  SCOPED_TRACE(fault.what);
  useSession(fault);
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
  auto text = [&] {
    const MemoryCheck check(fault.maximumAnswerSize);
    return cells(library_->outcomeOf(fault.call));
  }();
  if (fault.telling == Fault::Telling::TimesSent) {
    const auto times = server.requests().size() - requestsBefore;
    text += "Sent " + (times == 1 ? "once" : std::to_string(times) + " times") + ". ";
  }
  if (fault.telling == Fault::Telling::SentElsewhere) text += sentElsewhere();

  faultsLeft = 0;
  const auto worksOn = works(fault.isServerLost ? bystander_.url() : server.url());
  return text + cell(worksOn ? fault.isServerLost ? "with another server" : "yes" : "NO");
}

std::string Stage::sentElsewhere() const {
  std::istringstream request(bystander_.requests().back());
  std::string line;
  std::getline(request, line);
  std::string text = "Sent there: `" + line.substr(0, line.rfind(' ')) + "` with ";
  while (std::getline(request, line) && line != "\r") {
    text += line.substr(0, line.find(':')) + ", ";
  }
  std::getline(request, line);
  return text + (line.empty() ? "no body. " : "and the body. ");
}

void Stage::useSession(const Fault& fault) {
  auto options = Library::options();
  options.CAFile = authorityFile_;
  options.maximumAnswerSize = fault.maximumAnswerSize;
  library_->setTimeoutInterval(fault.timeoutInterval);
  if (std::exchange(maximumAnswerSize_, fault.maximumAnswerSize) != fault.maximumAnswerSize) {
    library_->renewSession(options);
  }
}

bool Stage::works(const std::string& server) {
  library_->setTimeoutInterval(60);
  ZLVVendor::shared().setMerchantSeverURL(server);
  const auto outcome = library_->outcomeOf(&Library::enquire);
  return !outcome.error && outcome.record == R"({"account_id":"acc-1","metadata":{}})";
}
