#pragma once

#include <memory>
#include <utility>

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/dispatch.hpp>

#include <ZolvaCheckoutKit/ZLVAwait.h>

/// @file
/// The operations of `ZLVClient` with Boost.Asio's completion tokens, beside `ZLVAsioMainQueue`:
///
/// ```cpp
/// const auto account =
///     co_await ZLVAsio::async(ZLVAwait::enquireAccount(id), boost::asio::use_awaitable);
/// if (account) show(account->accountStatus().description());
/// ```

namespace ZLVAsio {

/// Starts `operation`, which answers with a `ZLVResult` as the token has it: a handler is called on
/// the main thread, or by the executor that is bound to it. Do not wait for a future on the main
/// thread, which makes it ready. What the operation throws for want of an argument leaves through
/// this call; with `use_awaitable`, which starts it later, through the context's `run`, and the
/// coroutine ends. Any thread.
template <class Record, class CompletionToken>
auto async(ZLVAwaitable<Record> operation, CompletionToken&& token) {
  return boost::asio::async_initiate<CompletionToken, void(ZLVResult<Record>)>(
      [](auto handler, ZLVAwaitable<Record> started) {
        // A handler moves, and a completion is copied.
        auto kept = std::make_shared<decltype(handler)>(std::move(handler));
        std::move(started).start([kept](ZLVResult<Record> result) {
          const auto executor = boost::asio::get_associated_executor(*kept);
          boost::asio::dispatch(executor,
                                [handler = std::move(*kept), result = std::move(result)]() mutable {
                                  std::move(handler)(std::move(result));
                                });
        });
      },
      token, std::move(operation));
}

}  // namespace ZLVAsio
