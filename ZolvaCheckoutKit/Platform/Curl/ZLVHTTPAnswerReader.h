#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/ZLVError.h>

/// Takes an answer in, piece by piece as it comes, until it costs more than it may.
class ZLVHTTPAnswerReader {
 public:
  /// `maximumSize` is that of the body in bytes, whether as sent or decompressed.
  explicit ZLVHTTPAnswerReader(std::size_t maximumSize) : maximumSize_(maximumSize) {}

  /// A line with its end, of trailers and of answers that only announce another one as well.
  void takeHeaderLine(std::string_view line);

  /// A piece of the body, decompressed.
  void takeBody(std::string_view piece);

  /// So many bytes of the body have been received so far. They may be compressed, and come to
  /// nothing.
  void takeReceived(std::size_t bytes);

  /// Why no more is taken.
  [[nodiscard]] std::optional<NSURLError> error() const { return error_; }

  /// Whether the header of the latest answer has come to its end.
  [[nodiscard]] bool isHeaderWhole() const { return isHeaderWhole_; }

  [[nodiscard]] std::string& body() { return body_; }

 private:
  std::size_t maximumSize_;
  std::size_t headerSize_ = 0;
  bool isHeaderWhole_ = false;
  std::string body_;
  std::optional<NSURLError> error_;
};
