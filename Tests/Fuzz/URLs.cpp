// Joining and parsing URLs, and query strings. The lines of the input: a base URL, a path, and then
// the keys and values of parameters in turn.

#include <algorithm>
#include <map>

#include <strings.h>

#include <ZolvaCheckoutKit/Core/Helpers/core_parse.h>
#include <ZolvaCheckoutKit/Core/Helpers/encode.h>
#include <ZolvaCheckoutKit/Core/Network/ZLVRequestBuilder.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

#include "Tests/Fuzz/Fuzz.h"

namespace {

using Parameters = std::map<std::string, std::string>;

void checkURL(const std::string& text) {
  const auto url = ZLVURL::URLWithString(text);
  if (!url) return;
  promise(url->absoluteString() == text, "A URL is kept as it was written.", text);
  promise(std::ranges::all_of(text, [](char c) { return c > ' ' && c <= '~'; }) &&
              text.find_first_of("\"<>\\^`{|}") == std::string::npos,
          "A URL has none but a URL's characters.", text);

  const auto colon = text.find_first_of(":/?#");
  const bool hasScheme = colon != std::string::npos && text[colon] == ':';
  const auto scheme = text.substr(0, hasScheme ? colon : 0);
  promise(strcasecmp(url->scheme().c_str(), scheme.c_str()) == 0,
          "The scheme stands before the first colon.", text);
  const auto authority = "//" + text.substr(std::min(text.size(), text.find("//") + 2));
  promise(url->host().empty() || authority.find(url->host()) != std::string::npos,
          "The host stands in the authority.", text);

  const auto whole = ZLVURL::URLWithString(text.substr(0, text.find('#')) + "#end");
  promise(whole && whole->scheme() == url->scheme() && whole->host() == url->host(),
          "A fragment changes no other part.", text);
}

void checkJoining(const std::string& base, const std::string& path) {
  const auto joined = ZLVRequestBuilder::combineBaseURL(base, path);
  promise(base.ends_with('/') || ZLVRequestBuilder::combineBaseURL(base + '/', path) == joined,
          "One slash joins.", joined);
  const auto slashes = [](std::string_view text) { return std::ranges::count(text, '/'); };
  const auto dropped = slashes(base) + slashes(path) + 1 - slashes(joined);
  promise(dropped >= 0 && dropped <= 3 &&
              base.size() + path.size() + 1 - joined.size() == static_cast<std::size_t>(dropped),
          "Nothing but slashes is dropped.", joined);
}

std::string percentEncoded(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    const auto byte = static_cast<std::uint8_t>(c);
    encoded.append({'%', digits[byte >> 4], digits[byte & 0xF]});
  }
  return encoded;
}

Parameters readQuery(std::string_view query) {
  Parameters parameters;
  while (!query.empty()) {
    const auto piece = query.substr(0, query.find('&'));
    const auto equals = piece.find('=');
    promise(equals != std::string_view::npos, "A piece of a query has a value.", piece);
    parameters.emplace(piece.substr(0, equals), piece.substr(equals + 1));
    query.remove_prefix(std::min(query.size(), piece.size() + 1));
  }
  return parameters;
}

void checkQuery(const Parameters& parameters) {
  const auto isPlain = [](const std::string& text) {
    return text.find_first_of("&=") == std::string::npos;
  };
  ZLVDictionary dictionary;
  Parameters expected;
  for (const auto& [key, value] : parameters) {
    const auto encoded = percentEncoded(value);
    const auto decoded = encode::ZLVURLEncodedString(encoded);
    promise(ZLVIsUTF8(value) ? decoded == value : !decoded,
            "What is escaped reads back the same, if it is text.", value);
    if (!isPlain(key) || !isPlain(value)) continue;
    dictionary.set(key, encoded);
    expected.emplace(key, decoded.value_or("(null)"));
  }
  const auto query = core_parse::queryStringValue(dictionary);
  promise(readQuery(query) == expected, "A query reads back the same.", query);
}

void checkRequestURL(const std::string& text, const Parameters& parameters) {
  ZLVDictionary dictionary;
  for (const auto& [key, value] : parameters) dictionary.set(key, value);
  const auto post = ZLVRequestBuilder::buildURL(text, ZLVHTTPMethodPost, dictionary);
  promise(post == ZLVURL::URLWithString(text), "Only a GET has its parameters in the URL.", text);
  const auto get = ZLVRequestBuilder::buildURL(text, ZLVHTTPMethodGet, dictionary);
  promise(!get || get->absoluteString().starts_with(text + '?'), "The query follows the URL.",
          text);
  promise(!get || !post || get->host() == post->host(), "A query does not change the host.", text);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto lines = linesOf(textOf(data, size), 2);
  Parameters parameters;
  for (std::size_t i = 2; i + 1 < lines.size(); i += 2) parameters[lines[i]] = lines[i + 1];

  for (const auto& line : lines) checkURL(line);
  checkJoining(lines[0], lines[1]);
  checkQuery(parameters);
  checkRequestURL(ZLVRequestBuilder::combineBaseURL(lines[0], lines[1]), parameters);
  return 0;
}
