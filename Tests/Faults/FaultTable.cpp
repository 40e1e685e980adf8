#include "Tests/Faults/FaultTable.h"

#include <cstdio>
#include <iterator>
#include <memory>
#include <semaphore>

#include <poll.h>

using Reply = RawServer::Reply;
using Then = RawServer::Then;
using namespace std::string_literals;

namespace {

constexpr std::size_t MiB = std::size_t{1024} * 1024;
constexpr double soon = 0.2;
const std::string head = "HTTP/1.1 200 OK\r\n";
const std::string body = R"({"account_id":"acc-1"})";
const std::string good = Stage::goodAnswer();

/// The answer with a JSON text as its body.
Reply json(const std::string& text, const std::string& status = "200 OK") {
  return {RawServer::response(text, status)};
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

Reply gzip(const std::string& text, const std::string& coding = "gzip") {
  return {RawServer::response(text, "200 OK", "Content-Encoding: " + coding + "\r\n")};
}

/// A server that the library trusts.
std::shared_ptr<SSL_CTX> trusted(Stage& stage) {
  return TLSIdentity({}, &stage.authority()).serverContext();
}

FaultSection brokenConnections(Stage& /*stage*/) {
  const auto refuse = [](RawServer& server) { server.stopListening(); };
  const auto nearlyAll = good.substr(0, good.size() - 1);
  const auto withoutLength = head + "\r\n" + body;
  const std::chrono::milliseconds pause(25);
  return {"Connections",
          {{.what = "refused", .arrange = refuse},
           {.what = "network unreachable", .url = "https://255.255.255.255"},
           {.what = "unknown host", .url = "https://" + std::string(64, 'x') + ".invalid"},
           {.what = "reset before the last byte, wherever",
            .reply = {nearlyAll, Then::Reset},
            .isCutAnywhere = true},
           {"reset after the last byte", {good, Then::Reset}},
           {.what = "closed before the last byte, wherever",
            .reply = {nearlyAll, Then::Close},
            .isCutAnywhere = true},
           {"closed after the last byte", {good, Then::Close}},
           {"closed, without Content-Length, whole", {withoutLength, Then::Close}},
           {"closed, without Content-Length, in the body",
            {withoutLength.substr(0, withoutLength.size() - 5), Then::Close}},
           {"stall before the answer", {"", Then::Stall}, soon},
           {"stall in the header", {good.substr(0, 20), Then::Stall}, soon},
           {"stall in the body", {nearlyAll, Then::Stall}, soon},
           {"byte after byte of a header line, without end",
            {head + "X-Slow: ", {}, "x", std::chrono::milliseconds(5)},
            soon},
           {"line after line of the header, each within the time-out, without end",
            {head, {}, "X-Slow: " + std::string(8000, 'x') + "\r\n", pause},
            0.5},
           {"closed in the header, after an answer 100",
            {"HTTP/1.1 100 Continue\r\n\r\n" + head + "X-A: a\r\n", Then::Close}},
           {"byte after byte of the body, each within the time-out, without end",
            {head + "\r\n", {}, " ", pause},
            2,
            100}}};
}

FaultSection brokenKeptConnections(Stage& /*stage*/) {
  const auto used = [](const std::string& what, auto call, Then then, int times = 1) {
    return Fault{.what = what,
                 .reply = {"", then},
                 .times = times,
                 .call = call,
                 .earlierReply = Reply{good},
                 .tellsTimesSent = true};
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
    const auto arrange = [gate](RawServer& server) {
      gate->release();
      for (const int client : server.clients()) {
        pollfd event{client, POLLIN, 0};
        poll(&event, 1, -1);
      }
    };
    const auto wait = [gate] { gate->acquire(); };
    return Fault{.what = what,
                 .reply = {good},
                 .call = &Library::charge,
                 .earlierReply = Reply{.bytes = good, .then = then, .gate = wait, .late = late},
                 .arrange = arrange,
                 .tellsTimesSent = true};
  };
  const auto forged = RawServer::response(R"({"transaction_status":"settlement"})");
  auto secure = idle("an answer that nobody asked for, over TLS", forged);
  secure.tls = trusted(stage);
  return {
      "A kept-alive connection says something, or breaks, before the next request",
      {idle("an answer that nobody asked for", forged), secure, idle("four bytes", "\r\n\r\n"),
       idle("answer 408, closed", RawServer::response("{}", "408 Request Timeout"), Then::Close),
       idle("closed", "", Then::Close), idle("reset", "", Then::Reset)}};
}

FaultSection brokenHTTP(Stage& /*stage*/) {
  const auto length = [](const std::string& size) { return "Content-Length: " + size + "\r\n"; };
  const auto rest = "\r\n" + body;
  const auto whole = length("22") + rest;
  const auto tooLarge = head + length("100") + rest;
  const auto hint = "HTTP/1.1 103 Early Hints\r\nLink: <a>\r\n\r\n"s;
  const auto forged = RawServer::response(R"({"account_id":"forged"})");
  return {
      "HTTP",
      {{"not HTTP", {"SSH-2.0-OpenSSH_9\r\n", Then::Close}},
       {"unknown version", {"HTTP/9.9 200 OK\r\n" + rest, Then::Close}},
       {"Content-Length too large, closed", {tooLarge, Then::Close}},
       {"Content-Length too large, kept open", {tooLarge, Then::Stall}, soon},
       {"Content-Length too small", {head + length("10") + rest}},
       {"Content-Length too small by a whole answer", {good + forged}},
       {"Content-Length negative", {head + length("-1") + rest}},
       {"Content-Length no number", {head + length("many") + rest}},
       {"Content-Length beyond 64 bits",
        {head + length("99999999999999999999") + rest, Then::Close}},
       {"two Content-Lengths that differ",
        {head + length("22") + length("10") + rest, Then::Close}},
       {"Content-Length beside chunks",
        {head + length("10") + "Transfer-Encoding: chunked\r\n\r\n16" + rest + "\r\n0\r\n\r\n"}},
       {"chunk size no number", {chunked("zz\r\n{}\r\n0\r\n\r\n")}},
       {"chunk size beyond 64 bits", {chunked("fffffffffffffffff\r\n{}")}},
       {"chunk longer than its size", {chunked("2\r\n{}{}\r\n0\r\n\r\n")}},
       {"no last chunk, closed", {chunked("2\r\n{}\r\n"), Then::Close}},
       {"unknown transfer coding", {head + "Transfer-Encoding: morse\r\n" + rest, Then::Close}},
       {"header line folded", {head + "X-A: a\r\n\tb\r\n" + whole}},
       {"Content-Length folded", {head + length("\r\n 22") + rest}},
       {"header line given twice", {head + "X-A: a\r\nX-A: b\r\n" + whole}},
       {"header line without a colon", {head + "nonsense\r\n" + whole}},
       {"NUL in the header", {head + "X-A: a\0b\r\n"s + whole}},
       {"header line of 1 MB", {head + "X-A: " + std::string(MiB, 'x') + "\r\n" + whole}},
       {"10,000 short header lines", {head + repeated("X: \r\n", 10'000) + whole}},
       {"header lines without end", {head, {}, repeated("X-A: endless\r\n", 100)}},
       {"10 answers 103 first", {repeated(hint, 10) + good}},
       {"answers 100 without end", {"", {}, repeated("HTTP/1.1 100 Continue\r\n\r\n", 100)}},
       {"answers 103 without end", {"", {}, repeated(hint, 100)}},
       {"chunk trailers without end", {chunked("0\r\n"), {}, repeated("X-A: endless\r\n", 100)}},
       {"chunk extension without end", {chunked("2;"), {}, std::string(1000, 'x')}, soon},
       {"a status of two digits", {"HTTP/2 99\r\n" + whole}},
       {"answer 101", {"HTTP/1.1 101 Switching Protocols\r\n" + rest, Then::Close}},
       {"answer 204", {"HTTP/1.1 204 No Content\r\n\r\n"}},
       {"an HTML error page", json("<html>Bad Gateway</html>", "502 Bad Gateway")},
       {"an error in JSON", json(R"({"status_message":"No such account"})", "404 Not Found")}}};
}

FaultSection largeAnswers(Stage& /*stage*/) {
  const auto spaced = [](std::size_t size) {
    return gzipped("printf '" + body + "%" + std::to_string(size - body.size()) + "s' ''");
  };
  const auto large = [](std::size_t size) { return json(body + std::string(size - 22, ' ')); };
  const auto small = spaced(23);
  auto damaged = small;
  damaged[20] = static_cast<char>(~damaged[20]);
  const std::string zeros = "head -c 100000000 /dev/zero";
  const std::string blank(MiB / 16, ' ');
  const auto nothing = head + "Content-Encoding: gzip\r\n\r\n" + small.substr(0, 10);
  return {
      "Size and compression",
      {{"as large as allowed", large(8 * MiB)},
       {"one byte larger than allowed", large(8 * MiB + 1)},
       {"100 MB, with 64 MiB allowed", large(100 * MiB), 60, 64 * MiB},
       {"100 MB, with more allowed", large(100 * MiB), 60, 128 * MiB},
       {"without end", {head + "\r\n", {}, blank}},
       {"chunks without end", {chunked(""), {}, repeated("2\r\n  \r\n", 1000)}},
       {"gzip, as large as allowed", gzip(spaced(8 * MiB))},
       {"gzip, one byte larger than allowed", gzip(spaced(8 * MiB + 1))},
       {"gzip cut", gzip(small.substr(0, 25))},
       {"gzip damaged", gzip(damaged)},
       {"no gzip at all", gzip("{}")},
       {"100 MB in a thousandth", gzip(gzipped(zeros))},
       {"100 MB in a thousandth, twice compressed", gzip(gzipped(zeros + " | gzip"), "gzip, gzip")},
       {"8 MB of empty arrays in a thousandth",
        gzip(gzipped("(echo '['; yes '[],') | tr -d '\\n' | head -c 8000000"))},
       {"gzip of nothing without end", {nothing, {}, repeated("\0\0\0\xFF\xFF"s, 1000)}},
       {"unknown coding", gzip("{}", "morse")},
       {"coding of many layers", gzip(small, repeated("gzip, ", 20) + "gzip")}}};
}

FaultSection redirects(Stage& stage) {
  const auto to = [](const std::string& location) {
    return Reply{RawServer::redirect(303, location)};
  };
  return {"Redirects",
          {{.what = "20 redirects", .reply = to("/again"), .times = 20},
           {.what = "to a server that is down, POST",
            .reply = to("http://127.0.0.1:1/"),  // nobody listens there
            .call = &Library::charge},
           {"a loop", to("/again")},
           {"to a file", to("file:///etc/passwd")},
           {"to the callback URL", to("app://done")},
           {"to no URL", to("http://[")},
           {"closed before the header's end",
            {"HTTP/1.1 302 Found\r\nLocation: /again\r\n", Then::Close}},
           {"without Location", json("{}", "302 Found")},
           {.what = "from https to http",
            .reply = to(stage.bystander().url("/")),
            .tls = trusted(stage)},
           {"to http elsewhere", to("http://shop.test/")}}};
}

FaultSection brokenJSON(Stage& /*stage*/) {
  const auto nested = [](std::size_t depth) {
    return json(R"({"account_id":"acc-1","a":)" + std::string(depth - 1, '[') +
                std::string(depth - 1, ']') + "}");
  };
  return {"JSON",
          {{"empty", json("")},
           {"an array", json("[{}]")},
           {"null", json("null")},
           {"invalid UTF-8", json("{\"account_id\":\"\xC3\x28\"}")},
           {"512 levels deep", nested(512)},
           {"513 levels deep", nested(513)},
           {"2^63", json(R"({"account_id":9223372036854775808})")},
           {"NaN", json(R"({"account_id":NaN})")},
           {"status_code 2^63", json(R"({"status_code":9223372036854775808})")},
           {"status_code -2^64", json(R"({"status_code":-18446744073709551616})")},
           {"status_code \"200 OK\"", json(R"({"status_code":"200 OK"})")}}};
}

FaultSection brokenTLS(Stage& stage) {
  const auto* authority = &stage.authority();
  const auto secure = [](const std::string& what, const TLSIdentity& identity) {
    return Fault{.what = what, .reply = {good}, .tls = identity.serverContext()};
  };
  const auto demanding = [&](const std::string& what, int version) {
    auto fault = secure(what, TLSIdentity({}, authority));
    SSL_CTX_set_max_proto_version(fault.tls.get(), version);
    SSL_CTX_set_verify(fault.tls.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
    return fault;
  };
  auto old = secure("TLS 1.0 only", TLSIdentity({}, authority));
  SSL_CTX_set_min_proto_version(old.tls.get(), TLS1_VERSION);
  SSL_CTX_set_max_proto_version(old.tls.get(), TLS1_VERSION);

  auto http2 = secure("HTTP/2 agreed on, something else spoken", TLSIdentity({}, authority));
  http2.reply = {"nonsense", Then::Close};
  const auto choose = [](SSL* /*connection*/, const unsigned char** chosen, unsigned char* size,
                         const unsigned char* /*offers*/, unsigned int /*offersSize*/,
                         void* /*argument*/) {
    static constexpr unsigned char protocol[] = {'h', '2'};
    *chosen = std::data(protocol);
    *size = std::size(protocol);
    return SSL_TLSEXT_ERR_OK;
  };
  SSL_CTX_set_alpn_select_cb(http2.tls.get(), choose, nullptr);

  const TLSIdentity stranger({.isAuthority = true});
  const auto withoutLength = head + "\r\n" + body;
  return {"TLS",
          {secure("trusted", TLSIdentity({}, authority)),
           secure("unknown authority", TLSIdentity({}, &stranger)),
           secure("self-signed", TLSIdentity({})),
           secure("expired", TLSIdentity({.validFromDays = -2, .validToDays = -1}, authority)),
           secure("not yet valid", TLSIdentity({.validFromDays = 1, .validToDays = 2}, authority)),
           secure("another name", TLSIdentity({.address = "127.0.0.2"}, authority)),
           demanding("a client certificate is demanded, TLS 1.2", TLS1_2_VERSION),
           demanding("a client certificate is demanded, TLS 1.3", TLS1_3_VERSION),
           old,
           {.what = "plain text on the TLS port",
            .reply = {"HTTP/1.1 400 Bad Request\r\n\r\n", Then::Close},
            .url = "https://127.0.0.1:"},
           {.what = "stall in the handshake",
            .reply = {"", Then::Stall},
            .timeoutInterval = soon,
            .url = "https://127.0.0.1:"},
           {.what = "closed without Content-Length and TLS's own end, in the body",
            .reply = {withoutLength.substr(0, withoutLength.size() - 5), Then::Close},
            .tls = trusted(stage)},
           http2}};
}

FaultSection brokenProxies(Stage& stage) {
  return {"Proxy (https_proxy)",
          {{.what = "refuses to connect", .url = "https://shop.test"},
           {.what = "down",
            .arrange = [&stage](RawServer&) { stage.proxy().stopListening(); },
            .url = "https://shop.test"}}};
}

}  // namespace

std::vector<FaultSection (*)(Stage&)> faultSections() {
  return {&brokenConnections, &brokenKeptConnections,
          &spoiltConnections, &brokenHTTP,
          &largeAnswers,      &redirects,
          &brokenJSON,        &brokenTLS,
          &brokenProxies};
}
