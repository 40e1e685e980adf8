// What a host can do wrong, or in another order, and what the header says becomes of it.

#include <array>
#include <atomic>
#include <thread>

#include "Tests/C/BoundaryFixture.h"

namespace {

class BoundaryBefore : public Boundary {
  void SetUp() override {}
};

TEST_F(BoundaryBefore, RefusesWhatIsNoPlatform) {
  EXPECT_STREQ(zlv_version(), "0.1.1");
  EXPECT_STREQ(zlv_last_fault(), "");
  // Everything before there is one.
  const std::array results{
      zlv_install(nullptr),
      zlv_configure("https://shop.test", "M-1", "shop://done", 0),
      zlv_link("zolva", nullptr, nullptr, Answers::receive, &answers),
      zlv_enquire("acc", Answers::receive, &answers),
      zlv_disable("acc", Answers::receive, &answers),
      zlv_charge("{}", nullptr, Answers::receive, &answers),
      zlv_handle_callback_url("shop://done"),
      zlv_block_run(nullptr),
      zlv_block_release(nullptr),
      zlv_task_answer(nullptr, nullptr),
      zlv_task_release(nullptr),
      zlv_page_closed(nullptr),
      zlv_view_release(nullptr),
      zlv_text_set(nullptr, nullptr),
      zlv_main_queue_drain(),
      zlv_run_until_idle(1, nullptr, nullptr),
      zlv_console_close_page(),
  };
  for (std::size_t i = 0; i < results.size(); ++i) EXPECT_EQ(results.at(i), ZLV_FAULT) << i;
  EXPECT_STRNE(zlv_last_fault(), "");
  EXPECT_EQ(zlv_main_queue_descriptor(), -1);
  EXPECT_EQ(zlv_console_view(), nullptr);
  EXPECT_EQ(zlv_view_create(this, nullptr), nullptr);
  EXPECT_EQ(answers.count(), 0U);

  FakeHost fake;
  const auto refused = [&](auto spoil, const char* text) {
    auto platform = fake.platform();
    spoil(platform);
    expectFault(zlv_install(&platform), text);
  };
  refused([](auto& platform) { platform.size = 0; }, "size");
  refused([](auto& platform) { platform.size = sizeof platform - 1; }, "size");
  refused([](auto& platform) { platform.hide_page = nullptr; }, "hide_page");
  refused([](auto& platform) { platform.view_kind = nullptr; }, "view_kind");
  refused([](auto& platform) { platform.presented_view = nullptr; }, "presented_view");
  refused([](auto& platform) { platform.last_child_view = nullptr; }, "last_child_view");
  refused([](auto& platform) { platform.show_page = nullptr, platform.hide_page = nullptr; },
          "show_page");
  refused([](auto& platform) { platform.device_fact = nullptr; }, "no ");

  // A later version's, which is taken as long as nothing of it is used.
  struct Later {
    zlv_platform known;
    void* added;
  } later{host().platform(), &fake};
  later.known.size = sizeof later;
  expectFault(zlv_install(&later.known), "later version");
  later.added = nullptr;
  expectFault(zlv_install(&later.known), "installed already");
}

TEST_F(Boundary, AnswersOnceHoweverTheHostDoes) {
  const std::string body = account;
  const auto good = answerOf(200, body);
  auto failed = sized<zlv_answer>();
  failed.error_domain = "com.example.http";
  failed.error_code = -7;
  failed.error_user_info = R"({"NSLocalizedDescription":"No \"way\"."})";
  struct Way {
    const char* name;
    std::function<void(zlv_task*)> answer;
    bool isInside;
    std::string expected;
  };
  const auto answered = [&](zlv_task* task) { EXPECT_EQ(zlv_task_answer(task, &good), ZLV_OK); };
  const std::string cancelled =
      R"({"code":-999,"description":"The call ended before it was answered.",)"
      R"("domain":"NSURLErrorDomain","request_may_have_taken_effect":true,)"
      R"("user_info":{"NSLocalizedDescription":"The call ended before it was answered."}})";
  const Way ways[] = {
      {"once", answered, false, account},
      {"inside the call", answered, true, account},
      {"from another thread", [&](auto* task) { std::thread(answered, task).join(); }, false,
       account},
      {"from another thread inside the call",
       [&](auto* task) { std::thread(answered, task).join(); }, true, account},
      {"released", [](auto* task) { EXPECT_EQ(zlv_task_release(task), ZLV_OK); }, false, cancelled},
      {"released inside the call", [](auto* task) { EXPECT_EQ(zlv_task_release(task), ZLV_OK); },
       true, cancelled},
      {"with an error", [&](auto* task) { EXPECT_EQ(zlv_task_answer(task, &failed), ZLV_OK); },
       false,
       R"({"code":-7,"description":"No \"way\".","domain":"com.example.http",)"
       R"("request_may_have_taken_effect":true,)"
       R"("user_info":{"NSLocalizedDescription":"No \"way\"."}})"},
  };
  for (const auto& way : ways) {
    SCOPED_TRACE(way.name);
    answers = {};
    if (way.isInside) host().onSend = [&](const auto& task) { way.answer(task.handle); };
    const auto task = enquire();
    host().onSend = nullptr;
    if (!way.isInside) way.answer(task.handle);
    EXPECT_EQ(answers.count(), 0U);
    EXPECT_EQ(zlv_task_answer(task.handle, &good), ZLV_GONE);
    EXPECT_EQ(zlv_task_release(task.handle), ZLV_GONE);
    host().runBlocks();
    ASSERT_EQ(answers.count(), 1U);
    EXPECT_EQ(answers.records.empty() ? answers.errors[0] : answers.records[0], way.expected);
  }
}

TEST_F(Boundary, AnAnswerThatIsNoneLeavesTheTask) {
  const auto task = enquire();
  const auto refused = [&](auto spoil, const char* text) {
    auto answer = sized<zlv_answer>();
    spoil(answer);
    expectFault(zlv_task_answer(task.handle, &answer), text);
  };
  expectFault(zlv_task_answer(task.handle, nullptr), "no answer");
  refused([](auto& answer) { answer.size -= 1; }, "size");
  for (const auto status : {0, 99, 1000, -200}) {
    refused([&](auto& answer) { answer.status_code = status; }, "status code");
  }
  refused([](auto& answer) { answer.status_code = 200, answer.body_length = 1; }, "body");
  for (const auto* const info : {"", "[]", "{", "nonsense"}) {
    refused([&](auto& answer) { answer.error_domain = "d", answer.error_user_info = info; },
            "user info");
  }
  const std::string body = account;
  const auto good = answerOf(200, body);
  // Not this kind of handle, or no handle at all.
  auto* const page = reinterpret_cast<zlv_page*>(task.handle);  // NOLINT(*-cast)
  expectFault(zlv_page_closed(page), "zlv_page");
  for (const auto number : {std::uintptr_t{1}, ~std::uintptr_t{0}, std::uintptr_t(&good)}) {
    auto* const stray = reinterpret_cast<zlv_task*>(number / 4 * 4 + 1);  // NOLINT
    expectFault(zlv_task_answer(stray, &good), "zlv_task");
  }
  EXPECT_EQ(zlv_task_answer(task.handle, &good), ZLV_OK);
  host().runBlocks();
  EXPECT_EQ(answers.records, std::vector<std::string>{account});
}

TEST_F(Boundary, AnswersOnceWhateverBecomesOfTheBlocks) {
  const std::string body = account;
  const auto good = answerOf(200, body);
  for (const int dropped : {0, 1, 2}) {
    SCOPED_TRACE(dropped);
    answers = {};
    ASSERT_EQ(zlv_task_answer(enquire().handle, &good), ZLV_OK);
    for (int i = 0; i < dropped; ++i) {
      auto* const block = host().nextBlock();
      EXPECT_EQ(answers.count(), 0U);
      EXPECT_EQ(zlv_block_release(block), ZLV_OK);
      EXPECT_EQ(zlv_block_run(block), ZLV_GONE);
      EXPECT_EQ(zlv_block_release(block), ZLV_GONE);
    }
    if (auto* const block = host().nextBlock()) {
      EXPECT_EQ(zlv_block_run(block), ZLV_OK);
      EXPECT_EQ(zlv_block_run(block), ZLV_GONE);
    }
    host().runBlocks();
    EXPECT_EQ(answers.count(), 1U);
    EXPECT_EQ(answers.records.size(), dropped == 0 ? 1U : 0U);
    if (dropped > 0) {
      EXPECT_NE(answers.errors.at(0).find("\"code\":-999"), std::string::npos);
    }
  }
}

TEST_F(Boundary, AFaultOfTheMainThreadReachesTheHost) {
  const auto task = enquire();
  const auto facts = std::exchange(host().facts, {});
  const std::string body = account;
  const auto good = answerOf(200, body);
  EXPECT_EQ(zlv_task_answer(task.handle, &good), ZLV_OK);
  host().runBlocks();
  EXPECT_EQ(answers.count(), 1U);
  ASSERT_FALSE(host().faults.empty());
  EXPECT_NE(host().faults[0].find("no application version"), std::string::npos);
  expectFault(zlv_enquire("acc", Answers::receive, &answers), "no application version");
  host().facts = facts;
  EXPECT_EQ(answers.count(), 1U);
}

TEST_F(Boundary, DocumentsAreReadAsTheHeaderSays) {
  struct Row {
    const char* details;
    const char* fault;
  };
  const Row rows[] = {
      {nullptr, "no details"},
      {"", "details"},
      {"{", "details"},
      {"[]", "no object"},
      {"{}", "no payment type"},
      {R"({"payment_type": 1})", "no text under \"payment_type\""},
      {R"({"payment_type": "zolva", "zolva": []})", "no object under \"zolva\""},
      {R"({"payment_type": "zolva", "zolva": null})", "no wallet details"},
      {R"({"payment_type": "zolva", "zolva": {}, "transaction_details": {}})", "customer details"},
      {R"({"payment_type": "zolva", "item_details": {}})", "no list under \"item_details\""},
      {R"({"payment_type": "zolva", "item_details": [1]})", "no object under \"item_details\""},
      {"{\"payment_type\": \"\xFF\"}", "details"},
  };
  for (const auto& row : rows) {
    expectFault(zlv_charge(row.details, nullptr, Answers::receive, &answers), row.fault);
  }
  expectFault(zlv_link(nullptr, partner, nullptr, Answers::receive, &answers), "payment type");
  expectFault(zlv_link("zolva", "[]", nullptr, Answers::receive, &answers), "partner details");
  expectFault(zlv_enquire(nullptr, Answers::receive, &answers), "account id");
  expectFault(zlv_handle_callback_url(nullptr), "URL");
  EXPECT_EQ(zlv_handle_callback_url("shop://done?[no URL"), ZLV_OK);
  EXPECT_TRUE(host().tasks.empty());
  EXPECT_EQ(answers.count(), 0U);

  const auto sent = [&](zlv_result result) {
    EXPECT_EQ(result, ZLV_OK) << zlv_last_fault();
    const auto task = host().takeTask();
    EXPECT_EQ(zlv_task_release(task.handle), ZLV_OK);
    return task.method + ' ' + task.url + ' ' + task.body;
  };
  EXPECT_EQ(sent(zlv_link("zolva", partner, nullptr, nullptr, nullptr)),
            R"(POST https://shop.test/pay/v2/pay/account {"payment_type":"zolva","zolva_partner":)"
            R"({"country_code":"44","phone_number":"7700900123","redirect_url":"shop://done"}})");
  EXPECT_EQ(sent(zlv_charge(R"({"payment_type": "zolva", "transaction_details":
      {"gross_amount": 12.50, "order_id": null}, "zolva": {"account_id": "acc",
      "enable_callback": false, "callback_url": "shop://other"}, "item_details": [{"id": "1"}],
      "customer_details": {"phone": "1", "first_name": "Ada", "email": "a@b.c"}})",
                            nullptr, nullptr, nullptr)),
            R"(POST https://shop.test/pay/v2/charge {"customer_details":{"email":"a@b.c",)"
            R"("first_name":"Ada","phone":"1"},"item_details":[{"id":"1"}],"payment_type":"zolva",)"
            R"("transaction_details":{"gross_amount":12.5},"zolva":{"account_id":"acc",)"
            R"("callback_url":"shop://other","enable_callback":false}})");
  host().runBlocks();
}

TEST_F(Boundary, ManyThreadsAtOnce) {
  constexpr std::size_t threads = 4;
  constexpr std::size_t calls = 100;
  const std::string body = account;
  std::array<Answers, threads * calls> each;
  // Two that end the same task, while the main thread runs the blocks.
  host().onSend = [&](const auto& task) {
    std::thread other([&] { zlv_task_release(task.handle); });
    const auto good = answerOf(200, body);
    zlv_task_answer(task.handle, &good);
    other.join();
  };
  std::atomic<std::size_t> running = threads;
  std::vector<std::thread> callers;
  callers.reserve(threads);
  for (std::size_t i = 0; i < threads; ++i) {
    callers.emplace_back([&, i] {
      for (std::size_t call = 0; call < calls; ++call) {
        zlv_enquire("acc", Answers::receive, &each.at(i * calls + call));
      }
      --running;
    });
  }
  while (running > 0) host().runBlocks();
  for (auto& caller : callers) caller.join();
  host().runBlocks();
  host().onSend = nullptr;
  host().tasks.clear();
  for (const auto& one : each) EXPECT_EQ(one.count(), 1U);
  const auto turn = [](void* context, std::int64_t) { FakeHost::of(context).runBlocks(); };
  EXPECT_EQ(zlv_run_until_idle(1000, turn, &host()), ZLV_OK);
  expectFault(zlv_run_until_idle(1000, nullptr, nullptr), "no turn");
  const auto open = enquire();
  EXPECT_EQ(zlv_run_until_idle(0, turn, &host()), ZLV_BUSY);
  EXPECT_EQ(zlv_task_release(open.handle), ZLV_OK);
  host().runBlocks();
}

}  // namespace
