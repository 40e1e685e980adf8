"""The C interface of ZolvaCheckoutKit as ctypes sees it: the declarations of its headers, no more."""

from ctypes import (CDLL, CFUNCTYPE, POINTER, Structure, c_char_p, c_double, c_int, c_int32, c_int64,
                    c_size_t, c_void_p)

OK, FAULT, GONE, NO_RESOURCES, BUSY = 0, -1, -2, -3, -4

URL_ERROR_DOMAIN = b"NSURLErrorDomain"
TIMED_OUT, CANNOT_FIND_HOST, CANNOT_CONNECT_TO_HOST = -1001, -1003, -1004
NETWORK_CONNECTION_LOST, SERVER_CERTIFICATE_UNTRUSTED = -1005, -1202

VIEW_OTHER, VIEW_NAVIGATION_CONTROLLER, VIEW_PAGE = 0, 1, 2

FACT_BUNDLE_DISPLAY_NAME, FACT_BUNDLE_SHORT_VERSION = 3, 4
FACT_MACHINE, FACT_NAME, FACT_SYSTEM_VERSION = 7, 8, 9


class Request(Structure):
    _fields_ = [("size", c_size_t), ("method", c_char_p), ("url", c_char_p),
                ("header_count", c_size_t), ("header_names", POINTER(c_char_p)),
                ("header_values", POINTER(c_char_p)), ("body", c_void_p),
                ("body_length", c_size_t), ("timeout", c_double)]


class Answer(Structure):
    _fields_ = [("size", c_size_t), ("body", c_char_p), ("body_length", c_size_t),
                ("error_domain", c_char_p), ("error_user_info", c_char_p),
                ("error_code", c_int64), ("status_code", c_int64)]


class PageRequest(Structure):
    _fields_ = [("size", c_size_t), ("page", c_void_p), ("host_view", c_void_p),
                ("url", c_char_p), ("animated", c_int32), ("dismiss_button_style", c_int32)]


Completion = CFUNCTYPE(None, c_void_p, c_char_p, c_char_p)
Turn = CFUNCTYPE(None, c_void_p, c_int64)
Release = CFUNCTYPE(None, c_void_p)


class Platform(Structure):
    _fields_ = [
        ("size", c_size_t), ("context", c_void_p),
        ("application_name", c_char_p), ("application_version", c_char_p),
        ("application_identifier", c_char_p), ("ca_file", c_char_p),
        ("analytics_root_url", c_char_p),
        ("maximum_answer_size", c_size_t), ("maximum_decoded_size", c_size_t),
        ("allows_cleartext", c_int32), ("reserved", c_int32),
        ("dispatch", CFUNCTYPE(None, c_void_p, c_void_p)),
        ("send", CFUNCTYPE(None, c_void_p, c_void_p, POINTER(Request))),
        ("log", CFUNCTYPE(None, c_void_p, c_char_p)),
        ("device_fact", CFUNCTYPE(None, c_void_p, c_int32, c_void_p)),
        ("show_page", CFUNCTYPE(c_int32, c_void_p, POINTER(PageRequest))),
        ("hide_page", CFUNCTYPE(None, c_void_p, c_void_p, c_int32)),
        ("open_url", CFUNCTYPE(c_int32, c_void_p, c_char_p)),
        ("key_window_root", CFUNCTYPE(c_void_p, c_void_p)),
        ("view_kind", CFUNCTYPE(c_int32, c_void_p, c_void_p, POINTER(c_void_p))),
        ("presented_view", CFUNCTYPE(c_void_p, c_void_p, c_void_p)),
        ("last_child_view", CFUNCTYPE(c_void_p, c_void_p, c_void_p)),
        ("fault", CFUNCTYPE(None, c_void_p, c_char_p)),
    ]


FUNCTIONS = {
    "install": (c_int32, POINTER(Platform)),
    "version": (c_char_p,),
    "last_fault": (c_char_p,),
    "configure": (c_int32, c_char_p, c_char_p, c_char_p, c_int32),
    "link": (c_int32, c_char_p, c_char_p, c_void_p, Completion, c_void_p),
    "enquire": (c_int32, c_char_p, Completion, c_void_p),
    "disable": (c_int32, c_char_p, Completion, c_void_p),
    "charge": (c_int32, c_char_p, c_void_p, Completion, c_void_p),
    "handle_callback_url": (c_int32, c_char_p),
    "view_create": (c_void_p, c_void_p, Release),
    "view_release": (c_int32, c_void_p),
    "block_run": (c_int32, c_void_p),
    "block_release": (c_int32, c_void_p),
    "task_answer": (c_int32, c_void_p, POINTER(Answer)),
    "task_release": (c_int32, c_void_p),
    "page_closed": (c_int32, c_void_p),
    "text_set": (c_int32, c_void_p, c_char_p),
    "main_queue_descriptor": (c_int,),
    "main_queue_drain": (c_int32,),
    "run_until_idle": (c_int32, c_int64, Turn, c_void_p),
    "console_view": (c_void_p,),
    "console_close_page": (c_int32,),
}


def load(path="libzolvacheckoutkit-c.so.0.1"):
    """The library, with its functions under their names without zlv_."""
    library = CDLL(path)
    for name, (result, *arguments) in FUNCTIONS.items():
        function = getattr(library, "zlv_" + name)
        function.restype = result
        function.argtypes = arguments
        setattr(library, name, function)
    return library
