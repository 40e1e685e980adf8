// Every allocation of a call fails once, each in a call of its own.

// The thread sanitizer has these itself, and cannot be linked beside others.
#ifdef __has_feature
#if __has_feature(thread_sanitizer)
#define ZLV_FOREIGN_MEMORY
#endif
#endif
#ifndef ZLV_FOREIGN_MEMORY

#include <atomic>
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "Tests/C/FakeHost.h"

// NOLINTBEGIN(*-no-malloc,*-owning-memory): memory itself

namespace {

/// How many allocations of the library's succeed before one fails; none does below zero.
std::atomic<int> untilFailure{-1};

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  const bool fails = FakeHost::depth == 0 && untilFailure >= 0 && untilFailure-- == 0;
  void* const memory = fails ? nullptr : std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

// NOLINTEND(*-no-malloc,*-owning-memory)

TEST(BoundaryMemory, AnswersOnceWithoutIt) {
  auto& host = FakeHost::installed();
  Answers answers;
  const std::string body = R"({"account_id":"an account that is longer than short"})";
  const auto good = answerOf(200, body);
  int allocation = 0;
  for (bool hasFailed = true; hasFailed; ++allocation) {
    SCOPED_TRACE(allocation);
    answers = {};
    untilFailure = allocation;
    const auto result = zlv_enquire("acc", Answers::receive, &answers);
    if (!host.tasks.empty()) {
      const auto task = host.takeTask();
      if (zlv_task_answer(task.handle, &good) != ZLV_OK) {
        EXPECT_EQ(zlv_task_release(task.handle), ZLV_OK);
      }
    }
    host.runBlocks();
    hasFailed = untilFailure.exchange(-1) < 0;
    host.runBlocks();
    EXPECT_EQ(answers.count(), result == ZLV_OK ? 1U : 0U);
    EXPECT_TRUE(result == ZLV_OK || result == ZLV_NO_RESOURCES) << zlv_last_fault();
  }
  EXPECT_GT(allocation, 20);
  host.faults.clear();
}

#endif
