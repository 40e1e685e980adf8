#pragma once

// A host in C over a platform of its own, and its calls.

#include <string>

#include <gtest/gtest.h>

#include "Tests/C/FakeHost.h"

inline constexpr const char* account = R"({"account_id":"acc","metadata":{},"status_code":"200"})";
inline constexpr const char* partner = R"({"phone_number": "7700900123", "country_code": "44"})";

inline std::string withPage(const std::string& action) {
  return R"({"status_code":"201","actions":[{"name":")" + action +
         R"(","url":"https://wallet.test/a"}]})";
}

class Boundary : public testing::Test {
 protected:
  void SetUp() override { host(); }

  static FakeHost& host() { return FakeHost::installed(); }

  FakeHost::Task enquire() {
    EXPECT_EQ(zlv_enquire("acc", Answers::receive, &answers), ZLV_OK) << zlv_last_fault();
    return host().takeTask();
  }

  void expectFault(zlv_result result, const std::string& text) {
    EXPECT_EQ(result, ZLV_FAULT);
    EXPECT_NE(std::string(zlv_last_fault()).find(text), std::string::npos) << zlv_last_fault();
  }

  /// Links with a page over `view`.
  void showPage(zlv_view* view) {
    ASSERT_EQ(zlv_link("zolva", partner, view, Answers::receive, &answers), ZLV_OK);
    const auto body = withPage("activation-deeplink");
    const auto answer = answerOf(201, body);
    ASSERT_EQ(zlv_task_answer(host().takeTask().handle, &answer), ZLV_OK);
    host().runBlocks();
  }

  Answers answers;
};
