#ifndef ZOLVACHECKOUTKIT_PORTS_H
#define ZOLVACHECKOUTKIT_PORTS_H

// What the library asks of its host: part of zolvacheckoutkit.h, which says what holds for all of
// it.

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(modernize-use-using): this is C

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

/// An HTTP request. It and all it points at stay valid until its task is answered or released.
typedef struct zlv_request {
  size_t size;                       ///< Of this struct, in bytes.
  const char* method;                ///< "GET" or "POST".
  const char* url;                   ///< http or https; to be sent as it is written.
  size_t header_count;               ///< How many there are.
  const char* const* header_names;   ///< `header_count` texts, each name once, in no order.
  const char* const* header_values;  ///< `header_count` texts.
  const void* body;                  ///< NULL is no body; a POST then has one of length zero.
  size_t body_length;                ///< In bytes.
  double timeout;  ///< Seconds without any progress, connecting included; then answer TIMED_OUT.
} zlv_request;

/// What came of a request: a status code and a body or, where `error_domain` is not NULL, an error.
typedef struct zlv_answer {
  size_t size;         ///< Of this struct, in bytes.
  const void* body;    ///< The content as it is after any Content-Encoding; NULL is an empty one.
  size_t body_length;  ///< In bytes.
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
  size_t size;                   ///< Of this struct, in bytes.
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
  size_t size;  ///< Of this struct, in bytes.

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

// NOLINTEND(modernize-use-using)

#ifdef __cplusplus
}
#endif

#endif
