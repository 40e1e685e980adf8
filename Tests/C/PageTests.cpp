// A host's pages and its facts, in whatever order they come and go.

#include <thread>

#include "Tests/C/BoundaryFixture.h"

namespace {

TEST_F(Boundary, APageEndsOnceHoweverItGoes) {
  FakeHost::View stack{ZLV_VIEW_NAVIGATION_CONTROLLER};
  FakeHost::View shop;
  FakeHost::View page{ZLV_VIEW_PAGE};
  FakeHost::View sheet;
  stack.child = &shop;
  shop.presented = &page;
  int released = 0;
  enum class End { Closed, Callback, Refused, ClosedInside, CallbackInside, Dropped };
  for (const auto end : {End::Closed, End::Callback, End::Refused, End::ClosedInside,
                         End::CallbackInside, End::Dropped}) {
    SCOPED_TRACE(static_cast<int>(end));
    answers = {};
    host().pages.clear();
    host().hidden.clear();
    host().root = nullptr;
    released = 0;
    auto* const view = zlv_view_create(&released, [](void* gone) { ++*static_cast<int*>(gone); });
    host().onShow = [&](const auto& shown) {
      EXPECT_EQ(shown.view, &released);
      EXPECT_EQ(shown.url, "https://wallet.test/a");
      page.page = shown.handle;
      host().root = &stack;
      if (end == End::ClosedInside) {
        EXPECT_EQ(zlv_page_closed(shown.handle), ZLV_OK);
      }
      if (end == End::CallbackInside) {
        EXPECT_EQ(zlv_handle_callback_url("shop://done"), ZLV_OK);
      }
      return end == End::Refused ? 0 : 1;
    };
    showPage(view);
    ASSERT_EQ(host().pages.size(), 1U);
    const bool isOpen = end == End::Closed || end == End::Callback || end == End::Dropped;
    EXPECT_EQ(answers.count(), isOpen ? 0U : 1U);

    if (isOpen) {
      // A second page over the same view is not shown, and its call is answered.
      showPage(view);
      EXPECT_EQ(host().pages.size(), 1U);
      EXPECT_EQ(std::exchange(answers, {}).count(), 1U);
      // The host's own handle is not what keeps the page, and another's URL closes nothing.
      EXPECT_EQ(zlv_view_release(view), ZLV_OK);
      EXPECT_EQ(zlv_view_release(view), ZLV_GONE);
      EXPECT_EQ(zlv_link("zolva", partner, view, Answers::receive, &answers), ZLV_GONE);
      EXPECT_EQ(zlv_handle_callback_url("other://done"), ZLV_OK);
      // Nor does the callback where the page is not on top, or is of a class of its own.
      page.presented = &sheet;
      EXPECT_EQ(zlv_handle_callback_url("shop://done"), ZLV_OK);
      page.presented = nullptr;
      page.kind = ZLV_VIEW_OTHER;
      EXPECT_EQ(zlv_handle_callback_url("shop://done"), ZLV_OK);
      page.kind = ZLV_VIEW_PAGE;
      stack.kind = ZLV_VIEW_OTHER;
      EXPECT_EQ(zlv_handle_callback_url("shop://done"), ZLV_OK);
      stack.kind = ZLV_VIEW_NAVIGATION_CONTROLLER;
      page.presented = &shop;
      expectFault(zlv_handle_callback_url("shop://done"), "go round");
      page.presented = nullptr;
      EXPECT_EQ(answers.count() + static_cast<std::size_t>(released), 0U);
    }
    if (end == End::Closed || end == End::Dropped) {
      std::thread([&] { EXPECT_EQ(zlv_page_closed(page.page), ZLV_OK); }).join();
      EXPECT_EQ(answers.count(), 0U);
      if (end == End::Dropped) {
        EXPECT_EQ(zlv_block_release(host().nextBlock()), ZLV_OK);
      }
    } else if (end == End::Callback) {
      EXPECT_EQ(zlv_handle_callback_url("shop://done?status=ok"), ZLV_OK);
    }
    host().runBlocks();
    EXPECT_EQ(answers.records.size(), 1U);
    EXPECT_EQ(answers.count(), 1U);
    const bool isHidden = end == End::Callback || end == End::CallbackInside;
    EXPECT_EQ(host().hidden.size(), isHidden ? 1U : 0U);
    // A handle that is used up is known as such, by the walk too.
    EXPECT_EQ(zlv_page_closed(page.page), ZLV_GONE);
    EXPECT_EQ(zlv_handle_callback_url("shop://done"), ZLV_OK);
    if (!isOpen) {
      EXPECT_EQ(zlv_view_release(view), ZLV_OK);
    }
    EXPECT_EQ(released, 1);
    host().onShow = nullptr;
  }
  host().root = nullptr;
}

TEST_F(Boundary, FactsAreTakenWhileTheyAreAsked) {
  struct Row {
    std::int32_t fact;
    const char* text;
    zlv_result result;
  };
  const Row rows[] = {
      {ZLV_FACT_NAME, "a device", ZLV_OK},
      {ZLV_FACT_NAME, nullptr, ZLV_FAULT},
      {ZLV_FACT_NAME, "\xFF", ZLV_OK},
  };
  zlv_text* kept = nullptr;
  for (const auto& row : rows) {
    host().onFact = [&](std::int32_t fact, zlv_text* answer) {
      if (fact != row.fact) return;
      EXPECT_EQ(zlv_text_set(answer, row.text), row.result);
      std::thread([=] { EXPECT_EQ(zlv_text_set(answer, "x"), ZLV_GONE); }).join();
      kept = answer;
    };
    EXPECT_EQ(zlv_task_release(enquire().handle), ZLV_OK);
    host().onFact = nullptr;
    EXPECT_EQ(zlv_text_set(kept, "x"), ZLV_GONE);
  }
  host().runBlocks();
}

}  // namespace
