#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVCertificateBundle.h>

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

RawServer::Reply hello(const std::string& /*request*/) { return {RawServer::response("hello")}; }

TEST_F(SecureSession, ChecksCertificates) {
  struct Case {
    const char* what = nullptr;
    TLSIdentity identity;
    bool isTrusting = false;
    int error = 0;
  };
  const TLSIdentity* issuer = &authority_;
  const Case cases[] = {
      {"good", TLSIdentity({}, issuer), true, 0},
      {"unknown authority", TLSIdentity({}, issuer), false,
       NSURLErrorServerCertificateHasUnknownRoot},
      {"expired", TLSIdentity({.validFromDays = -2, .validToDays = -1}, issuer), true,
       NSURLErrorServerCertificateHasBadDate},
      {"not yet valid", TLSIdentity({.validFromDays = 1, .validToDays = 2}, issuer), true,
       NSURLErrorServerCertificateNotYetValid},
      {"self-signed", TLSIdentity({}), true, NSURLErrorServerCertificateUntrusted},
      {"another name", TLSIdentity({.address = "127.0.0.2"}, issuer), true,
       NSURLErrorServerCertificateUntrusted},
  };
  for (const auto& item : cases) {
    RawServer server(hello, item.identity.serverContext());
    const auto answer =
        call(request(server.url(), "POST"), item.isTrusting ? trusting() : linuxOptions());
    EXPECT_EQ(code(answer), item.error) << item.what;
    EXPECT_EQ(server.requests().size(), item.error == 0 ? 1U : 0U) << item.what;
  }
}

TEST_F(SecureSession, AddsTheFileToTheSystemsAuthorities) {
  const TLSIdentity other({.isAuthority = true});
  const auto further = file_.string() + "-further";
  std::ofstream(further) << other.certificatePEM();
  const ZLVCertificateBundle bundle(file_.c_str(), further);
  std::filesystem::remove(further);
  std::stringstream all;
  all << std::ifstream(bundle.path()).rdbuf();
  EXPECT_EQ(all.str(), authority_.certificatePEM() + "\n" + other.certificatePEM());
  EXPECT_EQ(ZLVCertificateBundle(file_.c_str(), further).path(), further);
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
}

TEST_F(SecureSession, KeepsItsConnection) {
  const TLSIdentity identity({}, &authority_);
  RawServer server(hello, identity.serverContext());
  const auto session = makeSession(trusting());
  for (const char* method : {"GET", "POST", "POST", "GET"}) {
    EXPECT_EQ(call(*session, request(server.url(), method)).data, "hello");
  }
  EXPECT_EQ(server.connections(), 1);
}

}  // namespace
