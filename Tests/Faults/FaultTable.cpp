#include "Tests/Faults/FaultTable.h"

#include <cstdio>
#include <memory>
#include <semaphore>

#include <poll.h>

#include "Tests/Faults/Certificates.h"

using Reply = RawServer::Reply;
using Then = RawServer::Then;
using Telling = Fault::Telling;
using namespace std::string_literals;

namespace {

constexpr std::size_t MiB = std::size_t{1024} * 1024;
constexpr double soon = 0.2;
const std::string head = "HTTP/1.1 200 OK\r\n";
const std::string good = Stage::goodAnswer();

/// The answer with a JSON text as its body.
Reply json(const std::string& body, const std::string& status = "200 OK") {
  return {RawServer::response(body, status)};
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  while (times-- > 0) all += text;
  return all;
}

std::string chunked(const std::string& chunks) {
  return head + "Transfer-Encoding: chunked\r\n\r\n" + chunks;
}

std::string gzipped(const std::string& command) {
  const std::unique_ptr<FILE, decltype(&pclose)> pipe(popen((command + " | gzip").c_str(), "r"),
                                                      &pclose);
  std::string packed;
  for (int byte = 0; (byte = getc(pipe.get())) != EOF;) packed += static_cast<char>(byte);
  return packed;
}

Reply gzip(const std::string& body, const std::string& coding = "gzip") {
  return {RawServer::response(body, "200 OK", "Content-Encoding: " + coding + "\r\n")};
}

}  // namespace

FaultSection brokenConnections(Stage& /*stage*/) {
  const auto refuse = [](RawServer& server) { server.stopListening(); };
  // Near 1 KB altogether.
  const std::string answer =
      RawServer::response(R"({"account_id":"acc-1"})" + std::string(950, ' '));
  const std::string noLength = head + "\r\n" + R"({"account_id":"acc-1"})";
  return {
      "Connections",
      {{.what = "refused", .arrange = refuse, .isServerLost = true},
       {.what = "network unreachable", .url = "https://255.255.255.255", .isServerLost = true},
       {.what = "unknown host",
        .url = "https://" + std::string(64, 'x') + ".invalid",
        .isServerLost = true},
       {.what = "reset", .reply = {answer, Then::Reset}, .isCutAnywhere = true},
       {.what = "closed", .reply = {answer, Then::Close}, .isCutAnywhere = true},
       {.what = "closed, without Content-Length, whole", .reply = {noLength, Then::Close}},
       {.what = "closed, without Content-Length, in the body",
        .reply = {noLength.substr(0, noLength.size() - 5), Then::Close}},
       {.what = "stall before the answer", .reply = {"", Then::Stall}, .timeoutInterval = soon},
       {.what = "stall in the header",
        .reply = {answer.substr(0, 20), Then::Stall},
        .timeoutInterval = soon},
       {.what = "stall in the body",
        .reply = {answer.substr(0, 500), Then::Stall},
        .timeoutInterval = soon},
       {.what = "byte after byte of a header line, without end",
        .reply = {head + "X-Slow: ", {}, "x", std::chrono::milliseconds(5)},
        .timeoutInterval = soon},
       {.what = "line after line of the header, each within the time-out, without end",
        .reply =
            {head, {}, "X-Slow: " + std::string(8000, 'x') + "\r\n", std::chrono::milliseconds(25)},
        .timeoutInterval = 0.5},
       {.what = "closed in the header, after an answer 100",
        .reply = {"HTTP/1.1 100 Continue\r\n\r\n" + head + "X-A: a\r\n", Then::Close}},
       {.what = "byte after byte of the body, each within the time-out, without end",
        .reply = {head + "\r\n", {}, " ", std::chrono::milliseconds(25)},
        .timeoutInterval = 2,
        .maximumAnswerSize = 100}}};
}

FaultSection brokenKeptConnections(Stage& /*stage*/) {
  const auto used = [](const std::string& what, auto call, Then then, int times = 1) {
    return Fault{.what = what,
                 .reply = {"", then},
                 .times = times,
                 .call = call,
                 .earlierReply = Reply{good},
                 .telling = Telling::TimesSent};
  };
  return {"A kept-alive connection breaks once the server has read the request",
          {used("POST, closed", &Library::charge, Then::Close),
           used("POST, reset", &Library::charge, Then::Reset),
           used("GET, closed", &Library::enquire, Then::Close),
           used("GET, reset", &Library::enquire, Then::Reset),
           used("GET, closed again and again", &Library::enquire, Then::Close, 100)}};
}

FaultSection spoiltConnections(Stage& stage) {
  const auto idle = [](const std::string& what, const std::string& late, Then then = Then::Keep) {
    const auto gate = std::make_shared<std::binary_semaphore>(0);
    return Fault{
        .what = what,
        .reply = {good},
        .call = &Library::charge,
        .earlierReply =
            Reply{.bytes = good, .then = then, .gate = [gate] { gate->acquire(); }, .late = late},
        .arrange =
            [gate](RawServer& server) {
              gate->release();
              for (const int client : server.clients()) {
                pollfd event{client, POLLIN, 0};
                poll(&event, 1, -1);
              }
            },
        .telling = Telling::TimesSent};
  };
  const auto forged = RawServer::response(R"({"transaction_status":"settlement"})");
  auto secure = idle("an answer that nobody asked for, over TLS", forged);
  secure.tls = TLSIdentity({}, &stage.authority()).serverContext();
  return {
      "A kept-alive connection says something, or breaks, before the next request",
      {idle("an answer that nobody asked for", forged), secure, idle("four bytes", "\r\n\r\n"),
       idle("answer 408, closed", RawServer::response("{}", "408 Request Timeout"), Then::Close),
       idle("closed", "", Then::Close), idle("reset", "", Then::Reset)}};
}

FaultSection brokenHTTP(Stage& /*stage*/) {
  const std::string body = R"({"account_id":"acc-1"})";
  const auto length = [](int size) { return "Content-Length: " + std::to_string(size) + "\r\n"; };
  return {
      "HTTP",
      {{.what = "not HTTP", .reply = {"SSH-2.0-OpenSSH_9\r\n", Then::Close}},
       {.what = "unknown version", .reply = {"HTTP/9.9 200 OK\r\n\r\n" + body, Then::Close}},
       {.what = "Content-Length too large, closed",
        .reply = {head + length(100) + "\r\n" + body, Then::Close}},
       {.what = "Content-Length too large, kept open",
        .reply = {head + length(100) + "\r\n" + body, Then::Stall},
        .timeoutInterval = soon},
       {.what = "Content-Length too small", .reply = {head + length(10) + "\r\n" + body}},
       {.what = "Content-Length too small by a whole answer",
        .reply = {good + RawServer::response(R"({"account_id":"forged"})")}},
       {.what = "Content-Length negative", .reply = {head + length(-1) + "\r\n" + body}},
       {.what = "Content-Length no number",
        .reply = {head + "Content-Length: many\r\n\r\n" + body}},
       {.what = "Content-Length beyond 64 bits",
        .reply = {head + "Content-Length: 99999999999999999999\r\n\r\n" + body, Then::Close}},
       {.what = "two Content-Lengths that differ",
        .reply = {head + length(22) + length(10) + "\r\n" + body, Then::Close}},
       {.what = "Content-Length beside chunks",
        .reply = {head + length(10) + "Transfer-Encoding: chunked\r\n\r\n16\r\n" + body +
                  "\r\n0\r\n\r\n"}},
       {.what = "chunk size no number", .reply = {chunked("zz\r\n{}\r\n0\r\n\r\n")}},
       {.what = "chunk size beyond 64 bits", .reply = {chunked("fffffffffffffffff\r\n{}")}},
       {.what = "chunk longer than its size", .reply = {chunked("2\r\n{}{}\r\n0\r\n\r\n")}},
       {.what = "no last chunk, closed", .reply = {chunked("2\r\n{}\r\n"), Then::Close}},
       {.what = "unknown transfer coding",
        .reply = {head + "Transfer-Encoding: morse\r\n\r\n" + body, Then::Close}},
       {.what = "header line folded",
        .reply = {head + "X-A: a\r\n\tb\r\n" + length(22) + "\r\n" + body}},
       {.what = "Content-Length folded", .reply = {head + "Content-Length:\r\n 22\r\n\r\n" + body}},
       {.what = "header line given twice",
        .reply = {head + "X-A: a\r\nX-A: b\r\n" + length(22) + "\r\n" + body}},
       {.what = "header line without a colon",
        .reply = {head + "nonsense\r\n" + length(22) + "\r\n" + body}},
       {.what = "NUL in the header",
        .reply = {head + "X-A: a\0b\r\n"s + length(22) + "\r\n" + body}},
       {.what = "1 MB of header lines",
        .reply = {head + repeated("X-A: " + std::string(993, 'x') + "\r\n", 1000) + length(22) +
                  "\r\n" + body}},
       {.what = "header line of 1 MB",
        .reply = {head + "X-A: " + std::string(MiB, 'x') + "\r\n" + length(22) + "\r\n" + body}},
       {.what = "10,000 short header lines",
        .reply = {head + repeated("X: \r\n", 10'000) + length(22) + "\r\n" + body}},
       {.what = "header lines without end", .reply = {head, {}, repeated("X-A: endless\r\n", 100)}},
       {.what = "10 answers 103 first",
        .reply = {repeated("HTTP/1.1 103 Early Hints\r\nLink: <a>\r\n\r\n", 10) + good}},
       {.what = "100,000 answers 100 first",
        .reply = {repeated("HTTP/1.1 100 Continue\r\n\r\n", 100'000) + good}},
       {.what = "answers 100 without end",
        .reply = {"", {}, repeated("HTTP/1.1 100 Continue\r\n\r\n", 100)}},
       {.what = "answers 103 without end",
        .reply = {"", {}, repeated("HTTP/1.1 103 Early Hints\r\nLink: <a>\r\n\r\n", 100)}},
       {.what = "chunk trailers without end",
        .reply = {chunked("0\r\n"), {}, repeated("X-A: endless\r\n", 100)}},
       {.what = "chunk extension without end",
        .reply = {chunked("2;"), {}, std::string(1000, 'x')},
        .timeoutInterval = soon},
       {.what = "a status of two digits", .reply = {"HTTP/2 99\r\n" + length(22) + "\r\n" + body}},
       {.what = "answer 101",
        .reply = {"HTTP/1.1 101 Switching Protocols\r\n\r\n" + body, Then::Close}},
       {.what = "answer 204", .reply = {"HTTP/1.1 204 No Content\r\n\r\n"}},
       {.what = "an HTML error page", .reply = json("<html>Bad Gateway</html>", "502 Bad Gateway")},
       {.what = "an error in JSON",
        .reply = json(R"({"status_message":"No such account"})", "404 Not Found")}}};
}

FaultSection largeAnswers(Stage& /*stage*/) {
  const std::string small = gzipped("printf '{\"account_id\":\"acc-1\"}'");
  const std::string zeros = "head -c 100000000 /dev/zero";
  auto damaged = small;
  damaged[20] = static_cast<char>(~damaged[20]);
  const std::string blank(MiB / 16, ' ');
  const auto large = [&](std::size_t size) {
    return head + "Content-Length: " + std::to_string(size) + "\r\n\r\n" +
           R"({"account_id":"acc-1"})" + std::string(size - 22, ' ');
  };
  return {
      "Size and compression",
      {{.what = "as large as allowed", .reply = {large(8 * MiB)}},
       {.what = "one byte larger than allowed", .reply = {large(8 * MiB + 1)}},
       {.what = "100 MB, with 64 MiB allowed",
        .reply = {head + "Content-Length: 104857600\r\n\r\n", {}, blank},
        .maximumAnswerSize = 64 * MiB},
       {.what = "100 MB, with more allowed",
        .reply = {large(100 * MiB)},
        .maximumAnswerSize = 128 * MiB},
       {.what = "without end", .reply = {head + "\r\n", {}, blank}},
       {.what = "chunks without end", .reply = {chunked(""), {}, repeated("2\r\n  \r\n", 1000)}},
       {.what = "gzip", .reply = gzip(small)},
       {.what = "gzip cut", .reply = gzip(small.substr(0, 25))},
       {.what = "gzip damaged", .reply = gzip(damaged)},
       {.what = "no gzip at all", .reply = gzip("{}")},
       {.what = "100 MB in a thousandth", .reply = gzip(gzipped(zeros))},
       {.what = "100 MB in a thousandth, twice compressed",
        .reply = gzip(gzipped(zeros + " | gzip"), "gzip, gzip")},
       {.what = "8 MB of empty arrays in a thousandth",
        .reply = gzip(gzipped("(echo '['; yes '[],') | tr -d '\\n' | head -c 8000000"))},
       {.what = "8 MB of empty objects in a thousandth",
        .reply = gzip(gzipped("(echo '['; yes '{},') | tr -d '\\n' | head -c 8000000"))},
       {.what = "gzip of nothing without end",
        .reply = {head + "Content-Encoding: gzip\r\n\r\n" + small.substr(0, 10),
                  {},
                  repeated("\0\0\0\xFF\xFF"s, 1000)}},
       {.what = "unknown coding", .reply = gzip("{}", "morse")},
       {.what = "coding of many layers", .reply = gzip(small, repeated("gzip, ", 20) + "gzip")}}};
}

FaultSection redirects(Stage& stage) {
  const auto to = [](const std::string& what, const std::string& location, int status = 302) {
    return Fault{.what = what, .reply = {RawServer::redirect(status, location)}};
  };
  const auto elsewhere = [&](const std::string& what, int status, auto call) {
    auto fault = to(what, stage.bystander().url("/elsewhere"), status);
    fault.call = call;
    fault.telling = Telling::SentElsewhere;
    return fault;
  };
  auto fewer = to("20 redirects", "/again");
  fewer.times = 20;
  auto insecure = to("from https to http", stage.bystander().url("/"));
  insecure.tls = TLSIdentity({}, &stage.authority()).serverContext();
  const std::string loopback = "http://127.0.0.1:1/";  // nobody listens there
  auto lost = to("to a server that is down, POST", loopback, 303);
  lost.call = &Library::charge;
  return {"Redirects",
          {fewer,
           lost,
           to("a loop", "/again"),
           to("to ftp", "ftp://127.0.0.1/"),
           to("to a file", "file:///etc/passwd"),
           to("to the callback URL", "app://done"),
           to("to no URL", "http://["),
           {.what = "closed before the header's end",
            .reply = {"HTTP/1.1 302 Found\r\nLocation: /again\r\n", Then::Close}},
           {.what = "without Location", .reply = json("{}", "302 Found")},
           insecure,
           to("to http elsewhere", "http://shop.test/"),
           elsewhere("to another origin, GET", 302, &Library::enquire),
           elsewhere("to another origin, POST, 302", 302, &Library::charge),
           elsewhere("to another origin, POST, 307", 307, &Library::charge)}};
}

FaultSection brokenJSON(Stage& /*stage*/) {
  const auto value = [](const std::string& what, const std::string& text) {
    return Fault{.what = what, .reply = json("{\"account_id\":" + text + "}")};
  };
  const auto body = [](const std::string& what, const std::string& text) {
    return Fault{.what = what, .reply = json(text)};
  };
  const auto nested = [&](int depth) {
    return body(std::to_string(depth) + " levels deep",
                R"({"account_id":"acc-1","a":)" +
                    std::string(static_cast<std::size_t>(depth) - 1, '[') +
                    std::string(static_cast<std::size_t>(depth) - 1, ']') + "}");
  };
  return {"JSON",
          {body("empty", ""),
           body("cut", "{\"account_id\":"),
           body("two values", "{}{}"),
           body("an array", "[{}]"),
           body("null", "null"),
           value("invalid UTF-8", "\"\xC3\x28\""),
           value("overlong UTF-8", "\"\xC0\xAF\""),
           value("a surrogate in UTF-8", "\"\xED\xA0\x80\""),
           value("a lone surrogate, escaped", R"("\ud800")"),
           value("surrogates in the wrong order, escaped", R"("\udc00\ud800")"),
           value("NUL", "\"a\0b\""s),
           value("NUL, escaped", R"("a\u0000b")"),
           body("NUL behind the value", "{}\0"s),
           body("byte-order mark", "\xEF\xBB\xBF{\"account_id\":\"acc-1\"}"),
           body("two byte-order marks", "\xEF\xBB\xBF\xEF\xBB\xBF{}"),
           body("UTF-16", "\xFF\xFE{\0}\0"s),
           nested(512),
           nested(513),
           body("100,000 brackets", std::string(100'000, '[')),
           body("a key given twice", R"({"account_id":"first","account_id":"last"})"),
           value("2^63 - 1", "9223372036854775807"),
           value("2^63", "9223372036854775808"),
           value("2^64 - 1", "18446744073709551615"),
           value("2^64", "18446744073709551616"),
           value("-2^63", "-9223372036854775808"),
           value("-2^63 - 1", "-9223372036854775809"),
           value("1e400", "1e400"),
           value("a number of 100,000 digits", std::string(100'000, '9')),
           value("NaN", "NaN"),
           body("status_code 2^63", R"({"status_code":9223372036854775808})"),
           body("status_code -2^64", R"({"status_code":-18446744073709551616})"),
           body("status_code \"200 OK\" in an answer 500", R"({"status_code":"200 OK"})")}};
}

FaultSection brokenTLS(Stage& stage) {
  const auto* authority = &stage.authority();
  const auto secure = [](const std::string& what, const TLSIdentity& identity) {
    return Fault{
        .what = what, .reply = {good}, .tls = identity.serverContext(), .isServerLost = true};
  };
  auto trusted = secure("trusted", TLSIdentity({}, authority));
  trusted.isServerLost = false;
  auto truncated = trusted;
  truncated.what = "closed without Content-Length and TLS's own end, whole";
  truncated.reply = {head + "\r\n" + R"({"account_id":"acc-1"})", Then::Close};
  auto cut = truncated;
  cut.what = "closed without Content-Length and TLS's own end, in the body";
  cut.reply.bytes.resize(cut.reply.bytes.size() - 5);

  const auto changed = [&](const std::string& what, const TLSIdentity& next) {
    auto fault = trusted;
    fault.what = what;
    fault.earlierReply = Reply{good, Then::Close};
    fault.tls = Certificates::withoutResumption(TLSIdentity({}, authority).serverContext());
    fault.arrange = [context = fault.tls, next = next.serverContext()](RawServer&) {
      Certificates::change(*context, *next);
    };
    return fault;
  };
  auto changedToBad = changed("the certificate is replaced by a self-signed one between two calls",
                              TLSIdentity({}));
  changedToBad.isServerLost = true;

  auto http2 = secure("HTTP/2 agreed on, something else spoken", TLSIdentity({}, authority));
  Certificates::agreeOnHTTP2(*http2.tls);
  http2.reply = {"nonsense", Then::Close};

  const auto demanding = [&](const std::string& what, int version) {
    auto fault = secure(what, TLSIdentity({}, authority));
    SSL_CTX_set_max_proto_version(fault.tls.get(), version);
    SSL_CTX_set_verify(fault.tls.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
    return fault;
  };

  auto old = secure("TLS 1.0 only", TLSIdentity({}, authority));
  SSL_CTX_set_min_proto_version(old.tls.get(), TLS1_VERSION);
  SSL_CTX_set_max_proto_version(old.tls.get(), TLS1_VERSION);

  return {"TLS",
          {trusted,
           secure("unknown authority", TLSIdentity({}, &static_cast<const TLSIdentity&>(
                                                           TLSIdentity({.isAuthority = true})))),
           secure("self-signed", TLSIdentity({})),
           secure("expired", TLSIdentity({.validFromDays = -2, .validToDays = -1}, authority)),
           secure("not yet valid", TLSIdentity({.validFromDays = 1, .validToDays = 2}, authority)),
           secure("another name", TLSIdentity({.address = "127.0.0.2"}, authority)),
           secure("revoked, by a list beside the authority (revocation is not checked)",
                  stage.revoked()),
           demanding("a client certificate is demanded, TLS 1.2", TLS1_2_VERSION),
           demanding("a client certificate is demanded, TLS 1.3", TLS1_3_VERSION),
           old,
           {.what = "plain text on the TLS port",
            .reply = {"HTTP/1.1 400 Bad Request\r\n\r\n", Then::Close},
            .url = "https://127.0.0.1:",
            .isServerLost = true},
           {.what = "stall in the handshake",
            .reply = {"", Then::Stall},
            .url = "https://127.0.0.1:",
            .timeoutInterval = soon,
            .isServerLost = true},
           changed("the certificate is renewed between two calls", TLSIdentity({}, authority)),
           changedToBad,
           truncated,
           cut,
           http2}};
}

FaultSection brokenProxies(Stage& stage) {
  return {"Proxy (https_proxy)",
          {{.what = "refuses to connect", .url = "https://shop.test", .isServerLost = true},
           {.what = "down",
            .arrange = [&stage](RawServer&) { stage.proxy().stopListening(); },
            .url = "https://shop.test",
            .isServerLost = true}}};
}
