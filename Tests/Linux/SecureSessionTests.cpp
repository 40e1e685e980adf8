#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVCertificateBundle.h>

#include "Tests/Linux/SessionFixture.h"
#include "Tests/Support/TLSIdentity.h"

using Then = RawServer::Then;

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
  std::stringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

RawServer::Reply hello(const std::string& /*request*/) { return {RawServer::response("hello")}; }

TEST_F(SecureSession, AddsTheFileToTheSystemsAuthorities) {
  const TLSIdentity other({.isAuthority = true});
  const auto further = file_.string() + "-further";
  std::ofstream(further) << other.certificatePEM();
  const ZLVCertificateBundle bundle(file_.c_str(), further);
  std::filesystem::remove(further);
  EXPECT_EQ(contents(bundle.path()), authority_.certificatePEM() + "\n" + other.certificatePEM());
  EXPECT_EQ(ZLVCertificateBundle(file_.c_str(), further).path(), further);
}

TEST_F(SecureSession, TrustsTheFileBesideTheSystemsAuthorities) {
  const auto session = makeSession(trusting());
  call(*session, request("http://127.0.0.1:1/"));
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
  RawServer server([&](auto&) { return RawServer::Reply{RawServer::redirect(307, target)}; },
                   identity.serverContext());
  auto options = trusting();
  options.allowsCleartext = true;
  const auto answer = call(request(server.url()), options);
  EXPECT_EQ(code(answer), NSURLErrorAppTransportSecurityRequiresSecureConnection);
  EXPECT_EQ(answer.error->userInfo()[NSURLErrorFailingURLStringErrorKey].text(), target);
  EXPECT_EQ(cleartext.connections(), 0);
}

TEST_F(SecureSession, TellsWhyThereIsNoSecureConnection) {
  RawServer cleartext([](auto&) { return RawServer::Reply{}; });
  const auto https = "https://127.0.0.1:" + std::to_string(cleartext.port());
  cleartext.stopListening();
  EXPECT_EQ(code(call(request(https))), NSURLErrorCannotConnectToHost);

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
  RawServer closing(
      [](auto&) {
        return RawServer::Reply{RawServer::response(""), Then::Close};
      },
      context);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(code(call(*session, request(closing.url()))), 0);
  EXPECT_EQ(SSL_CTX_sess_hits(context.get()), 2);
}

}  // namespace
