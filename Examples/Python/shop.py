"""A shop in Python, without a package, in which everything that the library asks of its machine is
Python's: threads with the standard library's HTTP client, a queue, windows, a browser.

    shop.py SERVER
"""

import ctypes
import html.parser
import json
import platform
import queue
import socket
import ssl
import sys
import threading
import urllib.error
import urllib.parse
import urllib.request

import zolva

library = zolva.load()


def check(result):
    if result != zolva.OK:
        raise RuntimeError(library.last_fault().decode())


# ---- HTTP: a thread for each request


class NoRedirects(urllib.request.HTTPRedirectHandler):
    """This merchant's server sends nobody elsewhere; a browser looks at where it is sent."""

    def redirect_request(self, *_):
        return None


opener = urllib.request.build_opener(urllib.request.ProxyHandler({}), NoRedirects)


def fetch(request, timeout=60):
    """Status, headers and body of whatever comes back."""
    try:
        answer = opener.open(request, timeout=timeout)
    except urllib.error.HTTPError as error:
        answer = error
    with answer:
        return answer.status, answer.headers, answer.read()


def error_code(error):
    reason = getattr(error, "reason", error)
    for kind, code in ((ConnectionRefusedError, zolva.CANNOT_CONNECT_TO_HOST),
                       (socket.gaierror, zolva.CANNOT_FIND_HOST),
                       (ssl.SSLCertVerificationError, zolva.SERVER_CERTIFICATE_UNTRUSTED),
                       (TimeoutError, zolva.TIMED_OUT)):
        if isinstance(reason, kind):
            return code
    return zolva.NETWORK_CONNECTION_LOST


def answer_task(task, request, timeout):
    answer = zolva.Answer(size=ctypes.sizeof(zolva.Answer))
    try:
        answer.status_code, _, body = fetch(request, timeout)
        answer.body, answer.body_length = body, len(body)
    except OSError as error:
        answer.error_domain = zolva.URL_ERROR_DOMAIN
        answer.error_code = error_code(error)
        answer.error_user_info = json.dumps({"NSLocalizedDescription": str(error)}).encode()
    check(library.task_answer(task, answer))


def send(_, task, request):
    given = request.contents
    headers = {given.header_names[i].decode(): given.header_values[i].decode()
               for i in range(given.header_count)}
    body = ctypes.string_at(given.body, given.body_length) if given.body else None
    if body is None and given.method == b"POST":
        body = b""
    made = urllib.request.Request(given.url.decode(), body, headers, method=given.method.decode())
    threading.Thread(target=answer_task, args=(task, made, given.timeout), daemon=True).start()


# ---- The main queue: the library's blocks and whatever else is to be done on this thread

main_queue = queue.SimpleQueue()


def dispatch(_, block):
    main_queue.put(lambda: check(library.block_run(block)))


def turn(_, milliseconds):
    try:
        main_queue.get(timeout=milliseconds / 1000)()
    except queue.Empty:
        pass


# ---- Windows: a stack of views, the last of which shows the shop and may present a page

STACK, SHOP, PAGE = 1, 2, 3
shown = []  # the page's handle


def view_kind(_, view, page):
    if view == PAGE:
        page[0] = shown[-1]
    return {STACK: zolva.VIEW_NAVIGATION_CONTROLLER, PAGE: zolva.VIEW_PAGE}.get(view, zolva.VIEW_OTHER)


# ---- The browser, and the user who sits before it


class Form(html.parser.HTMLParser):
    """The address of a page's form."""

    action = None

    def handle_starttag(self, tag, attributes):
        if tag == "form":
            self.action = dict(attributes).get("action", "")


decisions = []  # of the user: what to press on the next pages, None being the closing button


def use_page(page, url):
    decision = decisions.pop(0)
    print(f"  the user {'closes the page' if decision is None else 'presses ' + decision}")
    if decision is None:
        shown.remove(page)
        return check(library.page_closed(page))
    form = Form()
    form.feed(fetch(url)[2].decode())
    target = urllib.parse.urljoin(url, form.action)
    _, headers, _ = fetch(urllib.request.Request(target, f"decision={decision}".encode()))
    print("  the wallet leads to", headers["Location"])
    check(library.handle_callback_url(headers["Location"].encode()))


def show_page(_, request):
    page, url = request.contents.page, request.contents.url.decode()
    shown.append(page)
    main_queue.put(lambda: use_page(page, url))
    return 1


def hide_page(_, page, __):
    shown.remove(page)


# ---- The rest of the machine

facts = {zolva.FACT_BUNDLE_DISPLAY_NAME: "Corner Coffee", zolva.FACT_BUNDLE_SHORT_VERSION: "2.1",
         zolva.FACT_MACHINE: platform.machine(), zolva.FACT_NAME: platform.node() or "a computer",
         zolva.FACT_SYSTEM_VERSION: platform.release()}


def device_fact(_, fact, answer):
    if fact in facts:
        check(library.text_set(answer, facts[fact].encode()))


def install(analytics):
    host = zolva.Platform(size=ctypes.sizeof(zolva.Platform), analytics_root_url=analytics.encode())
    functions = {
        "dispatch": dispatch, "send": send, "device_fact": device_fact,
        "log": lambda _, line: print("log:", line.decode(), file=sys.stderr),
        "show_page": show_page, "hide_page": hide_page, "open_url": lambda _, url: 0,
        "key_window_root": lambda _: STACK, "view_kind": view_kind,
        "presented_view": lambda _, view: PAGE if view == SHOP and shown else None,
        "last_child_view": lambda _, view: SHOP,
        "fault": lambda _, text: print("fault:", text.decode()),
    }
    for name, function in functions.items():
        setattr(host, name, dict(zolva.Platform._fields_)[name](function))
    check(library.install(host))
    return host  # to be kept: the functions live in it


# ---- The journey


def call(what, operation, *arguments):
    """Starts an operation and serves the main queue until it is answered."""
    answers = []

    @zolva.Completion
    def completion(_, record, error):
        answers.append((record and json.loads(record), error and json.loads(error)))

    print(what)
    check(operation(*arguments, completion, None))
    while not answers:
        main_queue.get()()
    record, error = answers[0]
    if error:
        doubt = "it may have taken effect" if error["request_may_have_taken_effect"] else "nothing came of it"
        print(f"  {error['domain']} {error['code']}: {error['description']} ({doubt})")
    else:
        print(" ", record["status_code"], record.get("account_status") or record["transaction_status"])
    return record


def details(account, token, amount, order):
    return json.dumps({
        "payment_type": "zolva",
        "zolva": {"account_id": account, "payment_option_token": token},
        "transaction_details": {"gross_amount": amount, "order_id": order, "currency": "EUR"},
        "customer_details": {"phone": "+447700900123", "first_name": "Ada", "email": "ada@example.com"},
    }).encode()


def main(server):
    kept = install(server + "/")
    never = zolva.Completion(lambda *_: sys.exit("a call that was refused is answered"))
    if library.enquire(b"id", never, None) == zolva.FAULT:
        print("too early:", library.last_fault().decode())

    check(library.configure(server.encode(), b"M-1001", b"shop://done", 0))
    released = []
    release = zolva.Release(released.append)
    window = library.view_create(SHOP, release)
    user = json.dumps({"phone_number": "7700900123", "country_code": "44"}).encode()

    decisions.append("confirm")
    account = call("link", library.link, b"zolva", user, window)["account_id"]
    info = call("enquire", library.enquire, account.encode())
    token = info["metadata"]["payment_options"][0]["token"]

    call("charge EUR 12.50", library.charge, details(account, token, 12.5, "o-1"), window)
    decisions.append("confirm")
    call("charge EUR 250.00", library.charge, details(account, token, 250, "o-2"), window)
    decisions.append("cancel")
    call("charge EUR 150.00", library.charge, details(account, token, 150, "o-3"), window)
    decisions.append(None)
    call("charge EUR 175.00", library.charge, details(account, token, 175, "o-4"), window)
    call("charge an option that is none", library.charge, details(account, "none", 5, "o-5"), window)

    with socket.socket() as nobody:  # bound, but not listening
        nobody.bind(("127.0.0.1", 0))
        nowhere = f"http://127.0.0.1:{nobody.getsockname()[1]}"
        check(library.configure(nowhere.encode(), b"M-1001", b"shop://done", 0))
        call("charge without a server", library.charge, details(account, token, 5, "o-6"), window)
    check(library.configure(server.encode(), b"M-1001", b"shop://done", 0))
    call("unlink", library.disable, account.encode())

    check(library.view_release(window))
    print("the usage events are", "sent" if library.run_until_idle(5000, zolva.Turn(turn), None) == zolva.OK
          else "under way")
    assert released == [SHOP] and not shown and kept.size


if __name__ == "__main__":
    main(sys.argv[1])
