// What stands in on Linux for the functions that a host leaves out: here the main queue and the
// console. The library's HTTP session is the other backend's tests' affair, and the examples'.

#include <gtest/gtest.h>
#include <poll.h>

#include "Tests/C/FakeHost.h"

namespace {

bool isReadable() {
  pollfd event{zlv_main_queue_descriptor(), POLLIN, 0};
  return poll(&event, 1, 0) == 1;
}

TEST(BuiltIn, QueueAndConsole) {
  FakeHost host;
  auto platform = host.platform();
  platform.dispatch = nullptr;
  platform.device_fact = nullptr;
  platform.application_version = "2.1";
  platform.fault = nullptr;
  platform.log = [](void* context, const char* line) {
    FakeHost::of(context).faults.emplace_back(line);
  };
  platform.show_page = nullptr;
  platform.hide_page = nullptr;
  EXPECT_EQ(zlv_install(&platform), ZLV_FAULT) << "views without pages";
  platform.key_window_root = nullptr;
  platform.view_kind = nullptr;
  platform.presented_view = nullptr;
  platform.last_child_view = nullptr;
  ASSERT_EQ(zlv_install(&platform), ZLV_OK) << zlv_last_fault();
  ASSERT_EQ(zlv_configure("https://shop.test/pay", "M-1", "shop://done", 0), ZLV_OK);
  EXPECT_EQ(zlv_view_create(&host, nullptr), nullptr);
  auto* const view = zlv_console_view();
  ASSERT_NE(view, nullptr) << zlv_last_fault();

  const std::string body = R"({"status_code":"201","actions":[{"name":"activation-deeplink",
                                                               "url":"https://wallet.test/a"}]})";
  const auto answer = answerOf(201, body);
  for (const bool isCallback : {false, true}) {
    Answers answers;
    EXPECT_EQ(zlv_console_close_page(), ZLV_GONE);
    ASSERT_EQ(zlv_link("zolva", nullptr, view, Answers::receive, &answers), ZLV_OK);
    ASSERT_EQ(zlv_task_answer(host.takeTask().handle, &answer), ZLV_OK);
    EXPECT_TRUE(isReadable());
    EXPECT_EQ(zlv_run_until_idle(1, nullptr, nullptr), ZLV_BUSY);
    EXPECT_EQ(answers.count(), 0U);
    EXPECT_EQ(isCallback ? zlv_handle_callback_url("shop://done") : zlv_console_close_page(),
              ZLV_OK);
    EXPECT_EQ(zlv_run_until_idle(60'000, nullptr, nullptr), ZLV_OK);
    EXPECT_EQ(answers.records.size(), 1U);
    EXPECT_FALSE(isReadable());
  }
  EXPECT_EQ(zlv_view_release(view), ZLV_OK);

  // A fault without a function for it goes to the log, and the queue goes on.
  Answers answers;
  ASSERT_EQ(zlv_enquire("acc", Answers::receive, &answers), ZLV_OK);
  const std::string list = R"({"metadata": []})";
  const auto misfit = answerOf(200, list);
  ASSERT_EQ(zlv_task_answer(host.takeTask().handle, &misfit), ZLV_OK);
  EXPECT_EQ(zlv_main_queue_drain(), ZLV_OK);
  EXPECT_EQ(zlv_run_until_idle(60'000, nullptr, nullptr), ZLV_OK);
  EXPECT_EQ(answers.errors.size(), 1U);
  ASSERT_EQ(host.faults.size(), 1U);
  EXPECT_NE(host.faults[0].find("ZLVAccountMetadata"), std::string::npos) << host.faults[0];
}

}  // namespace
