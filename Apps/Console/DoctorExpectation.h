#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <boost/json/value.hpp>

#include "Apps/Console/DoctorSession.h"

/// What the library makes of an answer.
struct Judgement {
  enum Kind : std::uint8_t { Record, Refusal, Failure } kind;
  std::string text;
};

/// What was found wrong with an answer; without an aspect, nothing was.
struct Finding {
  std::string aspect{}, expected{}, came{};
};

/// A member that an answer has to have.
struct Member {
  std::string_view pointer;
  enum Kind : std::uint8_t { Text, Identifier, Amount } kind = Text;
};

/// What the answer to a call has to be like.
struct Expectation {
  Judgement::Kind judgement;
  /// The HTTP status, in words, from and to.
  std::string_view statuses;
  int lowest, highest;
  std::span<const Member> members{};
  /// The action that names the page of an answer with status 201.
  std::string_view action{};
  /// The call comes right behind another one, whose connection is to be there still.
  bool staysOpen = false;

  /// The first thing that is wrong. `answer` becomes the JSON of the answer.
  [[nodiscard]] Finding examine(const Exchange& exchange, const Judgement& made,
                                boost::json::value& answer) const;
};

/// The first member of `value` that is not as it has to be; `place` is where the value stands.
Finding missingMember(const boost::json::value& value, std::span<const Member> members,
                      const std::string& place = {});
