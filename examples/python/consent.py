#!/usr/bin/env python3
"""A Python application that asks for consent through the C functions of the SDK.

usage: consent.py LIBRARY SERVER DATA_FOLDER
"""
import ctypes
import sys
import threading

READY, GRANTED = 0, 1


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


StatusCallback = ctypes.CFUNCTYPE(None, ctypes.c_int32, ctypes.c_void_p)
PurposesCallback = ctypes.CFUNCTYPE(None, ctypes.POINTER(ctypes.POINTER(Purpose)), ctypes.c_size_t, ctypes.c_void_p)


def main(library, server, folder):
    sdk = ctypes.CDLL(library)
    sdk.quillon_is_purpose_allowed.argtypes = [ctypes.c_int64]
    platform = Platform(application_id=b"news-reader", data_directory=folder.encode(), vendor_url=server.encode())
    platform.size = ctypes.sizeof(platform)
    options = Options(app_url=server.encode(), cdn_url=server.encode(), tenant_id=b"demo-tenant", app_id=b"news-reader")
    options.size = ctypes.sizeof(options)
    if not sdk.quillon_configure(ctypes.byref(platform)) or not sdk.quillon_setup(ctypes.byref(options)):
        return "the options were refused"

    ready, answered = threading.Event(), threading.Event()
    # Callback objects must be kept as long as the SDK may call them.
    on_status = StatusCallback(lambda status, _: ready.set() if status == READY else None)
    on_stored = StatusCallback(lambda stored, _: answered.set() if stored else None)
    sdk.quillon_is_ready(on_status, None)
    if not ready.wait(20):
        return "no configuration could be had"
    if sdk.quillon_is_banner_due():
        sdk.quillon_accept_or_reject(1, on_stored, None)
        if not answered.wait(20):
            return "the answer was not stored"

    listed = threading.Event()

    def show(purposes, count, _):
        for i in range(count):
            purpose = purposes[i].contents
            print(purpose.name.decode(), "granted" if purpose.consent == GRANTED else "not granted", flush=True)
        listed.set()

    on_purposes = PurposesCallback(show)
    sdk.quillon_get_purposes(on_purposes, None)
    listed.wait(20)
    sdk.quillon_remove_listeners()
    sdk.quillon_settle(ctypes.c_int64(20000))
    return None if sdk.quillon_is_purpose_allowed(2) else "purpose 2 is not allowed"


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
