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

/// A piece of work for the main thread. Used up by zlv_block_run or zlv_block_release.
typedef struct zlv_block zlv_block;
/// An HTTP request that waits for its answer. Used up by zlv_task_answer or zlv_task_release.
typedef struct zlv_task zlv_task;
/// A page that is shown. Used up by zlv_page_closed, or by the library's call of `hide_page`.
typedef struct zlv_page zlv_page;
/// Something of the host's over which a page can be shown. Used up by zlv_view_release.
typedef struct zlv_view zlv_view;
/// Takes the answer of `device_fact`. No handle: valid during that call, on its thread only.
typedef struct zlv_text zlv_text;

// ---- What the library asks of the host
// ------------------------------------------------------------

/// An HTTP request. It and all it points at stay valid until its task is answered or released.
typedef struct zlv_request {
  size_t size;
  const char* method;  ///< "GET" or "POST".
  const char* url;     ///< http or https; to be sent as it is written.
  size_t header_count;
  const char* const* header_names;   ///< `header_count` texts, each name once, in no order.
  const char* const* header_values;  ///< `header_count` texts.
  const void* body;                  ///< NULL is no body; a POST then has one of length zero.
  size_t body_length;
  double timeout;  ///< Seconds without any progress, connecting included; then answer TIMED_OUT.
} zlv_request;

/// What came of a request: a status code and a body or, where `error_domain` is not NULL, an error.
typedef struct zlv_answer {
  size_t size;
  const void* body;  ///< The content as it is after any Content-Encoding; NULL is an empty one.
  size_t body_length;
  const char* error_domain;     ///< ZLV_URL_ERROR_DOMAIN, or the host's own.
  const char* error_user_info;  ///< A JSON object for the error, such as its description; or NULL.
  int64_t error_code;           ///< In ZLV_URL_ERROR_DOMAIN one of the codes below.
  int64_t status_code;          ///< 100 to 999.
} zlv_answer;

/// The domain and the usual codes of a call without an answer. After CANNOT_FIND_HOST,
/// CANNOT_CONNECT_TO_HOST, NOT_CONNECTED_TO_INTERNET and SERVER_CERTIFICATE_… the host tells its
/// user that nothing was charged: use them only where the request has not left this machine. Any
/// other code, known here or not, leaves it open.
#define ZLV_URL_ERROR_DOMAIN "NSURLErrorDomain"
enum {
  ZLV_URL_ERROR_UNKNOWN = -1,
  ZLV_URL_ERROR_CANCELLED = -999,
  ZLV_URL_ERROR_TIMED_OUT = -1001,
  ZLV_URL_ERROR_CANNOT_FIND_HOST = -1003,
  ZLV_URL_ERROR_CANNOT_CONNECT_TO_HOST = -1004,
  ZLV_URL_ERROR_NETWORK_CONNECTION_LOST = -1005,
  ZLV_URL_ERROR_TOO_MANY_REDIRECTS = -1007,
  ZLV_URL_ERROR_NOT_CONNECTED_TO_INTERNET = -1009,
  ZLV_URL_ERROR_BAD_SERVER_RESPONSE = -1011,
  ZLV_URL_ERROR_DATA_LENGTH_EXCEEDS_MAXIMUM = -1103,
  ZLV_URL_ERROR_SECURE_CONNECTION_FAILED = -1200,
  ZLV_URL_ERROR_SERVER_CERTIFICATE_UNTRUSTED = -1202,
};

/// A page to show.
typedef struct zlv_page_request {
  size_t size;
  zlv_page* page;                ///< The handle to close it with.
  void* host_view;               ///< What the host gave to zlv_view_create: show it over this.
  const char* url;               ///< http or https.
  int32_t animated;              ///< 0 or 1.
  int32_t dismiss_button_style;  ///< 0 done, 1 close, 2 cancel: the label of the closing button.
} zlv_page_request;

/// What a view of the host's is. A subclass of a class is none of it here, but ZLV_VIEW_OTHER.
enum {
  ZLV_VIEW_OTHER = 0,
  ZLV_VIEW_NAVIGATION_CONTROLLER = 1,  ///< Exactly the platform's stack of views.
  ZLV_VIEW_PAGE = 2,                   ///< Exactly what `show_page` has put on the screen.
};

/// A fact about the device or the application: a text, or a JSON text where it says so.
enum {
  ZLV_FACT_IDENTIFIER_FOR_VENDOR = 1,    ///< A UUID, the same for this application on this device.
  ZLV_FACT_MAIN_SCREEN_SIZE = 2,         ///< JSON, in points: {"width": 390, "height": 844}
  ZLV_FACT_BUNDLE_DISPLAY_NAME = 3,      ///< The application's name as the user sees it.
  ZLV_FACT_BUNDLE_SHORT_VERSION = 4,     ///< The application's version, "2.1". Required.
  ZLV_FACT_PREFERRED_LOCALIZATIONS = 5,  ///< JSON, the application's: ["de", "en"]
  ZLV_FACT_PREFERRED_LANGUAGES = 6,      ///< JSON, the user's: ["de-AT", "en"]
  ZLV_FACT_MACHINE = 7,                  ///< The hardware model.
  ZLV_FACT_NAME = 8,                     ///< The device's name. Required.
  ZLV_FACT_SYSTEM_VERSION = 9,           ///< The system's version, "12.4". Required.
  /// JSON, one entry a thread of the process, in thousandths of a processor, null for one that
  /// cannot be read: [{"cpu_usage": 12, "is_idle": false}, null]
  ZLV_FACT_THREADS = 10,
};

/// Everything that the library asks of the machine that it runs on.
typedef struct zlv_platform {
  size_t size;

  /// Passed to every function below, and to nothing else; must stay valid until the process ends.
  void* context;

  // Texts, or NULL. What is the library's own on Linux takes its facts from here.

  const char* application_name;        ///< As the user sees it.
  const char* application_version;     ///< "2.1". Required where `device_fact` is NULL.
  const char* application_identifier;  ///< "com.example.shop"; NULL: the name.
  const char* ca_file;                 ///< Where `send` is NULL: more certificate authorities, PEM.
  /// Base URL of the analytics service, ending in "/"; NULL: the usual one.
  const char* analytics_root_url;

  size_t maximum_answer_size;   ///< Where `send` is NULL: of an answer, in bytes; 0: 8 MiB.
  size_t maximum_decoded_size;  ///< Of an answer once it is decoded, in bytes; 0: 32 MiB.
  int32_t allows_cleartext;     ///< Where `send` is NULL: 1 allows http to other machines.
  int32_t reserved;             ///< 0

  // Functions.

  /// Runs `block` later on the main thread, in the order of the calls, by zlv_block_run. Must not
  /// run it inside this call nor wait for the main thread. Any thread, several at once, also inside
  /// a block. NULL: a queue that the host serves by zlv_main_queue_descriptor and
  /// zlv_main_queue_drain.
  void (*dispatch)(void* context, zlv_block* block);

  /// Sends `request` and answers `task`, once. Must not wait for the answer. Any thread, several at
  /// once.
  ///
  /// A request goes out once; only a GET may be sent again after a connection is lost. Follow
  /// redirects, at most 20, to http and https only and never from https to http; take none of the
  /// request's headers but Content-Type to another origin. Keep cookies in memory only, check
  /// certificates, and send http to other machines only where the application means to. NULL:
  /// libcurl.
  void (*send)(void* context, zlv_task* task, const zlv_request* request);

  /// Writes one line of the diagnostic log. It has no line break. Any thread, several at once.
  /// NULL: the syslog daemon.
  void (*log)(void* context, const char* line);

  /// Answers with zlv_text_set what `fact` (ZLV_FACT_…) is now, and with nothing where that is not
  /// known. Must not take long. Any thread, several at once; every call of the library asks. NULL:
  /// Linux' own facts with the application's from above.
  void (*device_fact)(void* context, int32_t fact, zlv_text* answer);

  /// Shows a page over a view, full screen, with a button to close it, and returns 1; or returns 0
  /// where it cannot, and `page` is used up. When the page has gone by any way but `hide_page`,
  /// tell it by zlv_page_closed, once. Main thread. NULL, then `hide_page` too: the URL is printed
  /// on standard error as "open URL", and zlv_console_close_page is the closing button.
  int32_t (*show_page)(void* context, const zlv_page_request* page);

  /// Takes a page off the screen. The handle is used up when this is called. Main thread.
  void (*hide_page)(void* context, zlv_page* page, int32_t animated);

  /// Hands a URL of a scheme that is no page's to the system and returns 1, or 0 where nobody takes
  /// it. Main thread. Asked by browsers that are the library's; no page of the host's leads here.
  /// NULL: as `show_page`.
  int32_t (*open_url)(void* context, const char* url);

  // The host's tree of views, in which zlv_handle_callback_url looks for the page: the four of
  // them, or all NULL, where the page that was shown last is taken for the topmost. The library
  // walks from the root: in a navigation controller to its last child, else to what the view
  // presents, until there is neither. A view is whatever the host likes, but not NULL, which is
  // none; it is lent until the walk is over. Main thread, inside zlv_handle_callback_url only.

  /// The root view of the window that has the keys, or NULL.
  void* (*key_window_root)(void* context);
  /// ZLV_VIEW_…; of a page the handle goes into `page`.
  int32_t (*view_kind)(void* context, void* host_view, zlv_page** page);
  /// What the view presents, or NULL.
  void* (*presented_view)(void* context, void* host_view);
  /// The last of a navigation controller's children, the top of its stack, or NULL.
  void* (*last_child_view)(void* context, void* host_view);

  /// Told of a fault that a block comes upon on the main thread, such as a device without a name;
  /// its text names what is missing. The call that it happened in is answered all the same. NULL:
  /// the text goes to the log.
  void (*fault)(void* context, const char* text);
} zlv_platform;

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
// ------------------------------------------------------------

/// Receives the one answer of an operation: `record`, the server's answer as a JSON object with its
/// own keys, or `error`, the other being NULL.
///
///     {"domain": "com.zolva.checkoutkit", "code": 404, "description": "Account not found.",
///      "request_may_have_taken_effect": false, "user_info": {…}}
///
/// `description` is for the user to read. Where `request_may_have_taken_effect` is true after a
/// charge, ask your server what became of the order before you charge again.
///
/// Main thread: inside zlv_block_run, zlv_main_queue_drain, zlv_run_until_idle or
/// zlv_handle_callback_url, and never inside the call that it was given to. It may call everything
/// here. Only where the host drops the blocks that the library gives it, the one with the answer
/// and the one that comes in its place, it is called inside zlv_block_release, on that thread.
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
// nothing was sent that could take effect twice, and `completion` is never called: ZLV_FAULT (not
// installed, not configured, an argument that is missing or no such JSON) or ZLV_NO_RESOURCES,
// after which a charge may have been sent all the same: ask your server. Any thread, several at
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
// ------------------------------------------------------------------------

/// Runs a block that `dispatch` was given. Main thread. A fault inside reaches `fault`; the block
/// counts as run and this returns ZLV_OK.
ZLV_API zlv_result zlv_block_run(zlv_block* block);

/// Drops a block unrun. A call whose answer was in it is answered by one more block, with
/// CANCELLED; the rest of what it was for does not happen. Any thread; to be used only when the
/// main thread runs no more blocks.
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

/// Answers `device_fact`; the last call counts. ZLV_FAULT: NULL, or not the JSON that the fact is.
ZLV_API zlv_result zlv_text_set(zlv_text* answer, const char* text);

// ---- The library's own main queue and console, where there are no such functions of the host's
// -----

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

/// The handle of the console's only view, where `show_page` is NULL; as zlv_view_create otherwise.
ZLV_API zlv_view* zlv_console_view(void);

/// Closes the page that the console showed last, as its user would. Main thread. ZLV_GONE: none is
/// shown.
ZLV_API zlv_result zlv_console_close_page(void);

#ifdef __cplusplus
}
#endif

#endif
