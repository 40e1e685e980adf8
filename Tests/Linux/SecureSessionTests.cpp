#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSession.h>

#include "Tests/Linux/SessionFixture.h"
#include "Tests/Support/TLSIdentity.h"

namespace {

/// A private authority whose certificate is in a file of its own.
class SecureSession : public testing::Test {
 protected:
  SecureSession() { std::ofstream(file_) << authority_.certificatePEM(); }
  ~SecureSession() override { std::filesystem::remove(file_); }

  [[nodiscard]] ZLVLinuxOptions trusting() const {
    auto options = linuxOptions();
    options.CAFile = file_;
    return options;
  }

  const TLSIdentity authority_{{.isAuthority = true}};
  const std::filesystem::path file_ =
      std::filesystem::temp_directory_path() / ("zolva-authority-" + std::to_string(getpid()));
};

std::string contents(const std::filesystem::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_F(SecureSession, AsksTheSystemsFolderForTheAuthority) {
  const std::filesystem::path folder = file_.string() + "-folder";
  std::filesystem::create_directory(folder);
  const TLSIdentity identity({}, &authority_);
  const auto askedIn = [&](const std::optional<std::string>& hostFile) {
    RawServer server(hello, identity.serverContext());
    ZLVCurlSession session({.CAFile = hostFile, .maximumAnswerSize = 100, .authorities = folder});
    return code(call(session, request(server.url())));
  };
  const TLSIdentity another({.isAuthority = true, .organization = "Another"});
  const auto add = [&folder](const TLSIdentity& authority) {
    std::ofstream(folder / (authority.nameHash() + ".0")) << authority.certificatePEM();
  };
  add(another);
  EXPECT_EQ(askedIn({}), NSURLErrorServerCertificateHasUnknownRoot);
  EXPECT_EQ(askedIn(file_), 0);  // beside the folder's
  add(authority_);
  EXPECT_EQ(askedIn({}), 0);
  std::filesystem::remove_all(folder);
}

TEST_F(SecureSession, AddsTheFileToTheSystemsAuthorities) {
  // Where there is no folder of them.
  ZLVCurlSession session({.CAFile = file_, .maximumAnswerSize = 100, .authorities = "/no/such"});
  call(session, request("http://127.0.0.1:1/"));
  std::vector<std::string> bundles;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    const std::string target = std::filesystem::read_symlink(entry, gone);
    if (target.starts_with("/memfd:certificate")) bundles.push_back(contents(entry));
  }
  const auto system = contents("/etc/ssl/certs/ca-certificates.crt");
  EXPECT_EQ(bundles, std::vector{system + "\n" + authority_.certificatePEM()});
}

TEST_F(SecureSession, NeverGoesOnInCleartext) {
  RawServer cleartext(hello);
  const TLSIdentity identity({}, &authority_);
  const auto target = cleartext.url();
  RawServer server([&](auto&) { return Reply{RawServer::redirect(307, target)}; },
                   identity.serverContext());
  auto options = trusting();
  options.allowsCleartext = true;
  const auto answer = call(request(server.url()), options);
  EXPECT_EQ(code(answer), NSURLErrorAppTransportSecurityRequiresSecureConnection);
  EXPECT_EQ(answer.error->userInfo()[NSURLErrorFailingURLStringErrorKey].text(), target);
  EXPECT_EQ(cleartext.connections(), 0);
}

TEST_F(SecureSession, NamesACAFileThatCannotBeRead) {
  auto options = linuxOptions();
  options.CAFile = "/no/such/file";
  const TLSIdentity identity({}, &authority_);
  RawServer server(hello, identity.serverContext());
  const auto answer = call(request(server.url()), options);
  EXPECT_EQ(code(answer), NSURLErrorSecureConnectionFailed);
  EXPECT_NE(answer.error->debugDescription().find("/no/such/file"), std::string::npos);
  EXPECT_TRUE(server.requests().empty());
}

TEST_F(SecureSession, KeepsItsConnection) {
  const TLSIdentity identity({}, &authority_);
  RawServer server(hello, identity.serverContext());
  const auto session = makeSession(trusting());
  for (const char* method : {"GET", "POST", "POST", "GET"}) {
    EXPECT_EQ(call(*session, request(server.url(), method)).data, "hello");
  }
  EXPECT_EQ(server.connections(), 1);

  // And what was agreed on with the server.
  const auto context = identity.serverContext();
  RawServer closing([](auto&) { return Reply{RawServer::response(""), Then::Close}; }, context);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(code(call(*session, request(closing.url()))), 0);
  EXPECT_EQ(SSL_CTX_sess_hits(context.get()), 2);
}

TEST_F(SecureSession, ConnectsAhead) {
  const TLSIdentity identity({}, &authority_);
  for (const bool isSecure : {false, true}) {
    for (const bool isEnded : {false, true}) {
      const auto context = identity.serverContext();
      RawServer server(hello, isSecure ? context : nullptr);
      auto options = trusting();
      options.connectsAheadTo = server.url("/no/matter");
      const auto session = makeSession(options);
      const auto isThere = [&] {
        return server.clients().size() == 1 && server.connections() == 1 &&
               (!isSecure || SSL_CTX_sess_accept_good(context.get()) == 1);
      };
      while (!isThere()) std::this_thread::yield();
      // A request for another server is answered after the connection is put by.
      RawServer other(hello);
      call(*session, request(other.url()));
      EXPECT_TRUE(server.requests().empty());
      // As if the server had, behind what it has said of its own.
      if (isEnded) shutdown(server.clients().front(), SHUT_RD);
      for (const char* method : {"POST", "GET"}) {
        EXPECT_EQ(call(*session, request(server.url(), method)).data, "hello") << isSecure;
      }
      EXPECT_EQ(server.connections(), isEnded ? 2 : 1) << isSecure;
      EXPECT_EQ(server.requests().size(), 2U);
    }
  }
  // Where there is nobody, nothing comes of it.
  auto options = trusting();
  options.connectsAheadTo = "https://127.0.0.1:1/";
  RawServer server(hello, identity.serverContext());
  EXPECT_EQ(call(*makeSession(options), request(server.url())).data, "hello");
}

}  // namespace
