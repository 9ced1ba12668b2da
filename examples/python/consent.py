#!/usr/bin/env python3
"""A Python application that asks for consent through the C functions of the SDK: it sets the SDK up, waits until it is
ready, asks when the banner is due (here: a line of text, answered with yes), uploads the answer and tells what is allowed.
Exit status 0 when everything went as expected.

usage: consent.py LIBRARY SERVER DATA_FOLDER [again]
"""
import ctypes
import queue
import sys
import threading

READY, FETCHING, GRANTED = 0, 2, 1


class Platform(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("application_id", ctypes.c_char_p), ("data_directory", ctypes.c_char_p),
                ("vendor_url", ctypes.c_char_p), ("post_to_main_queue", ctypes.c_void_p),
                ("post_context", ctypes.c_void_p), ("consent_sink", ctypes.c_void_p), ("sink_context", ctypes.c_void_p)]


class Options(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("app_url", ctypes.c_char_p), ("cdn_url", ctypes.c_char_p),
                ("tenant_id", ctypes.c_char_p), ("app_id", ctypes.c_char_p), ("subject_id", ctypes.c_char_p),
                ("language_code", ctypes.c_char_p), ("location_code", ctypes.c_char_p),
                ("check_interval", ctypes.c_int64), ("log_level", ctypes.c_int32), ("testing_mode", ctypes.c_int32),
                ("allowed_domains", ctypes.c_void_p), ("allowed_domain_count", ctypes.c_size_t)]


class Purpose(ctypes.Structure):
    _fields_ = [("id", ctypes.c_int64), ("name", ctypes.c_char_p), ("description", ctypes.c_char_p),
                ("consent", ctypes.c_int32), ("is_essential", ctypes.c_int32), ("follows_device", ctypes.c_int32)]


class Banner(ctypes.Structure):
    _fields_ = [(name, ctypes.c_char_p) for name in
                ("heading", "text", "accept", "reject", "privacy_notice_text", "privacy_notice_link")]


StatusCallback = ctypes.CFUNCTYPE(None, ctypes.c_int32, ctypes.c_void_p)
BannerCallback = ctypes.CFUNCTYPE(None, ctypes.POINTER(Banner), ctypes.c_void_p)
PurposesCallback = ctypes.CFUNCTYPE(None, ctypes.POINTER(ctypes.POINTER(Purpose)), ctypes.c_size_t, ctypes.c_void_p)


def answer(function, callback_type, *arguments, read=lambda result: result):
    """Waits for a callback and returns its argument, converted while it is valid; None on timeout."""
    answers = queue.Queue()
    # ctypes callbacks must stay referenced as long as the SDK may call them.
    callback = callback_type(lambda *results: answers.put(read(*results[:-1])))
    kept.append(callback)
    function(*arguments, callback, None)
    try:
        return answers.get(timeout=20)
    except queue.Empty:
        return None


kept = []


def show_banner(banner):
    if not banner:
        return False
    texts = banner.contents
    print(texts.heading.decode(), f"[{texts.accept.decode()}] [{texts.reject.decode()}]", sep="\n", flush=True)
    return True


def list_purposes(purposes, count):
    """Prints the purposes; returns those that are neither granted nor follow a setting of the device."""
    refused = []
    for purpose in (purposes[i].contents for i in range(count)):
        is_granted = purpose.consent == GRANTED
        print(f"{purpose.name.decode()}:", "granted" if is_granted else "not granted", flush=True)
        if not is_granted and not purpose.follows_device:
            refused.append(purpose.id)
    return refused


def ask(sdk):
    if not answer(sdk.quillon_get_banner, BannerCallback, read=show_banner):
        return "there is no banner to show"
    if not answer(sdk.quillon_accept_or_reject, StatusCallback, 1):
        return "the answer could not be stored"
    if not answer(sdk.quillon_upload_pending_consents, StatusCallback):
        return "the answer could not be uploaded"
    print("uploaded", flush=True)
    return None


def main(library, server, folder, expected="first"):
    sdk = ctypes.CDLL(library)
    sdk.quillon_is_purpose_allowed.argtypes = [ctypes.c_int64]
    platform = Platform(application_id=b"news-reader", data_directory=folder.encode(), vendor_url=server.encode())
    platform.size = ctypes.sizeof(platform)
    options = Options(app_url=server.encode(), cdn_url=server.encode(), tenant_id=b"demo-tenant", app_id=b"news-reader",
                      language_code=b"de")
    options.size = ctypes.sizeof(options)
    if not sdk.quillon_configure(ctypes.byref(platform)) or not sdk.quillon_setup(ctypes.byref(options)):
        return "the options were refused"

    statuses, ready = [], threading.Event()

    def note(status, _):
        statuses.append(status)
        if status == READY:
            ready.set()

    on_status = StatusCallback(note)
    sdk.quillon_is_ready(on_status, None)
    if not ready.wait(20):
        return "no configuration could be had"
    sdk.quillon_remove_listeners()
    is_fetched, is_first_run = FETCHING in statuses, expected == "first"
    print("ready" if is_fetched else "ready (from cache)", flush=True)
    if is_fetched != is_first_run:
        return "expected the cached configuration" if is_fetched else "expected a download"

    is_due = bool(sdk.quillon_is_banner_due())
    if is_due != is_first_run:
        return "the banner's turn is not what was expected"
    fault = ask(sdk) if is_due else None
    if fault:
        return fault
    refused = answer(sdk.quillon_get_purposes, PurposesCallback, read=list_purposes)
    sdk.quillon_settle(ctypes.c_int64(20000))
    if refused is None or refused:
        return "an accepted purpose is not granted"
    return None if sdk.quillon_is_purpose_allowed(2) else "purpose 2 is not allowed"


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
