#pragma once

/// The rule that a request with effects goes out once, for one hop.
///
/// Where a connection breaks that was used before, libcurl sends the request again on another one,
/// whether or not the server had read it. It tells before: when it wants a socket, and when it is
/// about to send. Both times it is refused what it must not do, and the call fails as one that may
/// have been carried out.
class ZLVSendOnce {
 public:
  /// Only a request without effects is repeatable.
  explicit ZLVSendOnce(bool isRepeatable) : isRepeatable_(isRepeatable) {}

  /// libcurl is about to send the request, or to connect for that.
  void ask() {
    if (state_ == State::Sent && !isRepeatable_) state_ = State::Refused;
  }
  [[nodiscard]] bool isRefused() const { return state_ == State::Refused; }

  void noteSent() { state_ = State::Sent; }

  /// Whether a server may have read the request.
  [[nodiscard]] bool isSent() const { return state_ != State::Unsent; }

 private:
  enum class State { Unsent, Sent, Refused };

  bool isRepeatable_;
  State state_ = State::Unsent;
};
