// A shop in C11 with a poll loop of its own. HTTP, the main queue, the log and the device's facts are
// the library's; pages are shown by a command of the user's.
//
//     shop SERVER COMMAND
//
// COMMAND shows the page whose address is in $PAGE, and when the user is through prints the address
// that the page led to: how this host is "opened" with a URL.

#define _POSIX_C_SOURCE 200809L

#include <poll.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <ZolvaCheckoutKit/C/zolvacheckoutkit.h>

enum { TEXT = 256, PATIENCE_MS = 10000 };

static const char *browser_command;
static FILE *browser; // the page on the screen
static zlv_page *page;
static zlv_view *window;
static char account_id[TEXT];
static char option_token[TEXT];

static void check(zlv_result result) {
  if (result == ZLV_OK) return;
  fprintf(stderr, "shop: %s\n", zlv_last_fault());
  exit(1);
}

// The first text under a key, or "". A host with a JSON library uses that.
static void copy_text(const char *json, const char *key, char *text) {
  char quoted[TEXT];
  snprintf(quoted, sizeof quoted, "\"%s\":\"", key);
  const char *start = strstr(json, quoted);
  start = start != NULL ? start + strlen(quoted) : "";
  snprintf(text, TEXT, "%.*s", (int)strcspn(start, "\""), start);
}

// ---- Pages

static int32_t show_page(void *context, const zlv_page_request *request) {
  (void)context;
  printf("a page of the wallet\n");
  setenv("PAGE", request->url, 1);
  fflush(NULL);
  browser = popen(browser_command, "r");
  page = request->page;
  return browser != NULL;
}

static void hide_page(void *context, zlv_page *hidden, int32_t animated) {
  (void)context, (void)hidden, (void)animated;
  pclose(browser);
  browser = NULL;
}

// The browser has printed a URL, or has been closed without one.
static void read_browser(void) {
  char url[TEXT] = "";
  if (fgets(url, sizeof url, browser) != NULL) {
    url[strcspn(url, "\n")] = '\0';
    printf("opened with: %s\n", url);
    check(zlv_handle_callback_url(url));
  }
  if (browser == NULL) return;
  pclose(browser);
  browser = NULL;
  check(zlv_page_closed(page));
}

// ---- The journey: each answer starts the next call

static void print_outcome(const char *call, const char *record, const char *error) {
  char text[TEXT];
  if (error != NULL) {
    copy_text(error, "description", text);
    printf("%s failed: %s\n", call, text);
    return;
  }
  copy_text(record, "account_status", text);
  if (*text == '\0') copy_text(record, "transaction_status", text);
  printf("%s: %s\n", call, text);
}

static void unlinked(void *context, const char *record, const char *error) {
  (void)context;
  print_outcome("unlink", record, error);
}

static void charge(const char *amount, zlv_completion completion);

static void charged_more(void *context, const char *record, const char *error) {
  (void)context;
  print_outcome("charge of EUR 250.00", record, error);
  check(zlv_disable(account_id, unlinked, NULL));
}

static void charged(void *context, const char *record, const char *error) {
  (void)context;
  print_outcome("charge of EUR 12.50", record, error);
  charge("250", charged_more);
}

static void charge(const char *amount, zlv_completion completion) {
  char details[8 * TEXT];
  snprintf(details, sizeof details,
           "{\"payment_type\": \"zolva\","
           " \"zolva\": {\"account_id\": \"%s\", \"payment_option_token\": \"%s\"},"
           " \"transaction_details\":"
           "   {\"gross_amount\": %s, \"order_id\": \"order-%s\", \"currency\": \"EUR\"},"
           " \"customer_details\": {\"phone\": \"+447700900123\", \"first_name\": \"Ada\","
           "   \"email\": \"ada@example.com\"}}",
           account_id, option_token, amount, amount);
  check(zlv_charge(details, window, completion, NULL));
}

static void enquired(void *context, const char *record, const char *error) {
  (void)context;
  print_outcome("enquire", record, error);
  if (record == NULL) return;
  copy_text(record, "token", option_token);
  if (*option_token != '\0') {
    charge("12.5", charged);
  } else {
    check(zlv_disable(account_id, unlinked, NULL)); // an account that is not activated
  }
}

static void linked(void *context, const char *record, const char *error) {
  (void)context;
  print_outcome("link", record, error);
  if (record == NULL) return;
  copy_text(record, "account_id", account_id);
  check(zlv_enquire(account_id, enquired, NULL));
}

// ---- The loop

// One turn, also for zlv_run_until_idle: waits for the library or the browser, and serves both.
static void turn(void *context, int64_t milliseconds) {
  (void)context;
  struct pollfd events[2] = {{.fd = zlv_main_queue_descriptor(), .events = POLLIN}};
  nfds_t count = 1;
  if (browser != NULL) events[count++] = (struct pollfd){.fd = fileno(browser), .events = POLLIN};
  if (poll(events, count, (int)milliseconds) <= 0) return;
  if (events[0].revents != 0) check(zlv_main_queue_drain());
  if (count == 2 && events[1].revents != 0 && browser != NULL) read_browser();
}

int main(int argc, char **argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: shop SERVER COMMAND\n");
    return 2;
  }
  browser_command = argv[2];
  char analytics[TEXT]; // the sandbox takes the usage events as well
  snprintf(analytics, sizeof analytics, "%s/", argv[1]);

  const zlv_platform platform = {
      .size = sizeof platform,
      .application_name = "Corner Coffee",
      .application_version = "2.1",
      .analytics_root_url = analytics,
      .show_page = show_page,
      .hide_page = hide_page,
  };
  check(zlv_install(&platform));
  check(zlv_configure(argv[1], "M-1001", "shop://done", 0));
  window = zlv_view_create(&window, NULL);

  check(zlv_link("zolva", "{\"phone_number\": \"7700900123\", \"country_code\": \"44\"}", window,
                 linked, NULL));
  // A host with more to do than this turns its loop until its user quits, and then only waits for
  // what is left.
  if (zlv_run_until_idle(PATIENCE_MS, turn, NULL) != ZLV_OK) {
    fprintf(stderr, "shop: something is still under way\n");
    return 1;
  }
  return zlv_view_release(window) == ZLV_OK ? 0 : 1;
}
