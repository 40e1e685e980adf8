#include <new>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVHTTPAnswerReader.h>

namespace {

/// Less than any libcurl accepts, so that all of them refuse the same.
constexpr std::size_t maximumHeaderSize = std::size_t{256} * 1024;

}  // namespace

void ZLVHTTPAnswerReader::takeHeaderLine(std::string_view line) {
  if (line.starts_with("HTTP/")) isHeaderWhole_ = false;
  if (line == "\r\n" || line == "\n") isHeaderWhole_ = true;
  headerSize_ += line.size();
  if (headerSize_ > maximumHeaderSize) error_ = NSURLErrorDataLengthExceedsMaximum;
}

void ZLVHTTPAnswerReader::takeBody(std::string_view piece) {
  if (piece.size() > maximumSize_ - body_.size()) {
    error_ = NSURLErrorDataLengthExceedsMaximum;
    return;
  }
  try {
    body_.append(piece);
  } catch (const std::bad_alloc&) {  // nothing may pass through libcurl, which is C
    error_ = NSURLErrorResourceUnavailable;
  }
}

void ZLVHTTPAnswerReader::takeReceived(std::size_t bytes) {
  if (bytes > maximumSize_) error_ = NSURLErrorDataLengthExceedsMaximum;
}
