#ifndef ZOLVACHECKOUTKIT_H
#define ZOLVACHECKOUTKIT_H

// ZolvaCheckoutKit for every language that can call C: C11, no type but numbers, texts, pointers
// and structs of these behind pointers.
//
// What holds everywhere here:
//
// Texts are UTF-8 and end with a NUL. A text that is passed in, to the library or to a function of
// the host's, is lent until that call returns, unless it says otherwise; whoever wants it longer
// copies it. Documents are JSON objects in such a text.
//
// The main thread is the one on which the host runs the library's blocks. A function says which
// threads may call it. A function of the host's may be called on threads that the host has never
// seen, where it says "any thread".
//
// Handles (`zlv_block`, `zlv_task`, `zlv_page`, `zlv_view`) are numbers, not addresses, though they
// look like pointers. One that is used up is never given out again for something else, and passing
// it once more does nothing and returns ZLV_GONE. Passing any other value, NULL included, is a
// fault. Each handle is used up by exactly one call, which its type names; one that never is keeps
// its memory until the process ends.
//
// Structs begin with their size. Whoever fills one in sets every byte to zero, then `size` to the
// sizeof of the struct, then what it wants. The library refuses a struct that is smaller than in
// the first version of this header, and one with anything but zeros behind what it knows. In a
// struct that the library fills in, read no field that `size` does not cover.
//
// Functions of the host's must return normally: no exception, no longjmp, no thread that ends.
// Whatever is NULL among them is done by the library itself on Linux; where it cannot be, on other
// systems, zlv_install says so.

#include <stddef.h>
#include <stdint.h>

#include <ZolvaCheckoutKit/C/zolvacheckoutkit_ports.h>

#if defined(_WIN32)
#if defined(ZLV_C_BUILDING)
#define ZLV_API __declspec(dllexport)
#else
#define ZLV_API __declspec(dllimport)
#endif
#else
#define ZLV_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(modernize-use-using): this is C

/// What a function returns. On anything but ZLV_OK it has done nothing, unless it says otherwise.
typedef int32_t zlv_result;
enum {
  ZLV_OK = 0,
  /// A mistake in the program that calls; zlv_last_fault tells which. Mend it, do not handle it.
  ZLV_FAULT = -1,
  /// The handle is used up already. In a race between two ends of one thing this is no mistake.
  ZLV_GONE = -2,
  /// The machine has no memory, thread or descriptor left; zlv_last_fault tells what failed.
  ZLV_NO_RESOURCES = -3,
  /// Something is still under way.
  ZLV_BUSY = -4,
};

/// Gives the library its platform, which it keeps until the process ends. Once, before anything
/// else but zlv_version and zlv_last_fault, on the main thread; it is then ready for every other
/// call, on any thread that is told so afterwards. The struct and its texts are copied.
///
/// ZLV_FAULT: installed already; `size`, `application_version` or a function missing; only some of
/// the functions that go together.
ZLV_API zlv_result zlv_install(const zlv_platform* platform);

/// The version of the library, such as "0.1.1"; never freed. Any thread.
ZLV_API const char* zlv_version(void);

/// Why the last call of this thread that did not return ZLV_OK did not; "" when none has failed
/// yet. Valid until this thread's next such call. Any thread.
ZLV_API const char* zlv_last_fault(void);

// ---- What the host asks of the library

/// Receives the one answer of an operation: `record`, what the library took of the server's answer,
/// as a JSON object under the server's keys, or `error`, the other being NULL.
///
///     {"domain": "com.zolva.checkoutkit", "code": 404, "description": "Account not found.",
///      "request_may_have_taken_effect": false, "user_info": {…}}
///
/// and, where the server gave reasons, "failure_reason". `description` is for the user to read.
/// Where `request_may_have_taken_effect` is true after a charge, ask your server what became of the
/// order before you charge again.
///
/// Main thread: inside zlv_block_run, zlv_main_queue_drain, zlv_run_until_idle or
/// zlv_handle_callback_url, and never inside the call that it was given to. It may call everything
/// here. Only where the host drops the block that the answer would come by, and the one that comes
/// in its place, it is called inside zlv_block_release, on that thread.
typedef void (*zlv_completion)(void* context, const char* record, const char* error);

/// Configures the library and announces the merchant to the analytics service. `merchant_id` is
/// required; `callback_url` is what the wallet returns the user through. With `is_logging_enabled`
/// (0 or 1) calls to the merchant's server are logged, **phone numbers, account ids and payment
/// tokens in the clear**. Main thread, before the operations; a second call replaces all four.
///
/// ZLV_FAULT: not installed, no merchant id, no fact that is required. The values are kept even
/// then.
ZLV_API zlv_result zlv_configure(const char* merchant_server_url, const char* merchant_id,
                                 const char* callback_url, int32_t is_logging_enabled);

// The operations. Each returns at once. Where it returns ZLV_OK, `completion` (NULL: nobody
// listens) is called exactly once, later, with `context`, whatever happens. Where it does not,
// `completion` is never called: ZLV_FAULT (not installed, not configured, an argument that is
// missing or no such JSON) and ZLV_GONE (the view) before anything is sent; but ZLV_NO_RESOURCES
// may come too late for that, so ask your server before you charge again. Any thread, several at
// once.

/// Links a wallet account. `partner_details`, which may be NULL:
///
///     {"phone_number": "7700900123", "country_code": "44"}
///
/// and, where it is not the configured callback URL, "redirect_url". Where the server asks for an
/// activation its page is shown over `view`, and the completion is called once the page is gone,
/// whatever the user did there: enquire the account to learn the outcome. With NULL as `view`, or
/// where a page cannot be shown there, the completion is called at once.
ZLV_API zlv_result zlv_link(const char* payment_type, const char* partner_details, zlv_view* view,
                            zlv_completion completion, void* context);

/// Fetches a linked account with its payment options. The id goes into the URL as it is.
ZLV_API zlv_result zlv_enquire(const char* account_id, zlv_completion completion, void* context);

/// Unlinks an account. The id goes into the URL as it is.
ZLV_API zlv_result zlv_disable(const char* account_id, zlv_completion completion, void* context);

/// Creates a charge that a linked account pays. `details`, of which only "item_details" may be left
/// out:
///
///     {"payment_type": "wallet",
///      "zolva": {"account_id": "…", "payment_option_token": "…"},
///      "transaction_details": {"gross_amount": 12.5, "order_id": "o-1", "currency": "EUR"},
///      "customer_details": {"phone": "+447700900123", "first_name": "…", "last_name": "…",
///                           "email": "…"},
///      "item_details": [{"id": "…", "name": "…", "price": 12.5, "quantity": 1, "category": "…"}]}
///
/// Every key within the four may be left out. "zolva" also takes "callback_url", where it is not
/// the configured one, and "enable_callback", which is true where it is not false. A verification
/// page is handled as zlv_link handles an activation. The request is sent once.
ZLV_API zlv_result zlv_charge(const char* details, zlv_view* view, zlv_completion completion,
                              void* context);

/// Takes every URL that the application is asked to open. One that contains the configured callback
/// URL closes the page on top of the host's views, so that its call completes; any other is
/// ignored, a text that is no URL too. Main thread.
///
/// ZLV_FAULT: not installed, NULL, or a tree of views that goes round.
ZLV_API zlv_result zlv_handle_callback_url(const char* url);

/// A handle for a view of the host's, any pointer but NULL. `release` (NULL: none) is called once
/// with it, when the handle is released and no call and no page needs the view any more: inside one
/// of the calls in which completions are called, zlv_view_release, or the call that ends a task.
/// Main thread. Returns NULL on a failure, which zlv_last_fault tells; `release` is not called
/// then.
ZLV_API zlv_view* zlv_view_create(void* host_view, void (*release)(void* host_view));

/// Lets the host's handle go. A call that was given it, and the page of that call, keep what they
/// need. Main thread.
ZLV_API zlv_result zlv_view_release(zlv_view* view);

// ---- What the host answers

/// Runs a block that `dispatch` was given. Main thread. A fault inside reaches `fault`; the block
/// counts as run and this returns ZLV_OK.
ZLV_API zlv_result zlv_block_run(zlv_block* block);

/// Drops a block unrun. A call whose answer was in it gets one more block for the error CANCELLED;
/// a page that was closed by it ends the call right here; the rest of what it was for does not
/// happen. Any thread; to be used only when the main thread runs no more blocks.
ZLV_API zlv_result zlv_block_release(zlv_block* block);

/// Answers a task. Any thread, also inside `send`. `answer` and all in it are copied; its request
/// is freed.
///
/// ZLV_FAULT: `answer` is NULL, too small, has a status code that is none, or user info that is no
/// JSON object. The task is still to be answered then.
ZLV_API zlv_result zlv_task_answer(zlv_task* task, const zlv_answer* answer);

/// Ends a task without an answer, which is an answer too: the error CANCELLED. Any thread.
ZLV_API zlv_result zlv_task_release(zlv_task* task);

/// Tells that a page has gone, by its button or in any other way of the host's; its call completes.
/// Any thread, also inside `show_page`.
ZLV_API zlv_result zlv_page_closed(zlv_page* page);

/// Answers `device_fact`, inside it; the last call counts. ZLV_FAULT: NULL, or not the JSON that
/// the fact is. ZLV_GONE: the question is over, or another thread's.
ZLV_API zlv_result zlv_text_set(zlv_text* answer, const char* text);

// ---- The library's own main queue and console, where there are no such functions of the host's

/// A descriptor that is readable (POLLIN) while a block is queued, to watch in the host's own loop,
/// never to read or close; -1 on a failure. The same until the process ends. Any thread.
ZLV_API int zlv_main_queue_descriptor(void);

/// Runs the blocks that are queued now, but none that they queue in turn, and never waits. Main
/// thread. After a block with a fault the others wait for the next call; the descriptor is
/// readable.
ZLV_API zlv_result zlv_main_queue_drain(void);

/// Takes turns until nothing of the library's is under way: every call is answered, its page gone,
/// every usage event uploaded or lost. To be called before the process ends. `turn` runs the host's
/// main loop until a block has run or `milliseconds` are over; NULL, where `dispatch` is NULL, is
/// the library's own queue. Main thread, also inside a completion.
///
/// ZLV_BUSY: something is still under way after `limit` milliseconds.
ZLV_API zlv_result zlv_run_until_idle(int64_t limit,
                                      void (*turn)(void* context, int64_t milliseconds),
                                      void* context);

/// A handle of the console's only view, to be released like any other; NULL, which zlv_last_fault
/// explains, where `show_page` is the host's. Main thread.
ZLV_API zlv_view* zlv_console_view(void);

/// Closes the page that the console showed last, as its user would. Main thread. ZLV_GONE: none is
/// shown.
ZLV_API zlv_result zlv_console_close_page(void);

// NOLINTEND(modernize-use-using)

#ifdef __cplusplus
}
#endif

#endif
