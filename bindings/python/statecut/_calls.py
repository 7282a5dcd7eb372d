"""Calls of the library: its handles, its statuses, its texts."""

import ctypes
import os
import sys
from collections.abc import Sequence
from ctypes import byref, c_size_t, c_void_p, string_at
from typing import Any

from ._error import Code, Error
from ._library import ErrorRecord, OptionsRecord, function

_NOT_FOUND = int(Code.NOT_FOUND)
_open = function("open")
_open_bytes = function("open_bytes")
_strerror = function("strerror")
_LAST_KEY = 0xFFFFFFFF
NO_NAME = bytes(64)  # longer than any name
NO_STATE = bytes(2)


class Owned(c_void_p):
    """A handle that is closed when nobody has it any more: a call that runs keeps it."""

    def __init__(self, close: Any, kept: object = None) -> None:
        super().__init__()
        self._close = close
        self.kept = kept  # outlives the handle

    def __del__(self) -> None:
        if self.value:
            self._close(self)
            self.value = None


_close = function("close")
_cursor_close = function("cursor_close")


def raised(status: int) -> Error:
    """The error of a call that tells no more than its status."""
    return Error(Code(status), _strerror(status).decode())


def _told(error: ErrorRecord, status: int) -> Error:
    if not error.text:
        return raised(status)
    text = os.fsdecode(error.text)
    return Error(Code(status), text, error.number, os.fsdecode(error.table), error.offset)


def pathed(path: str | bytes | os.PathLike[str]) -> bytes:
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError("a zero byte in a path")
    return name


def opened(source: bytes, in_memory: bool, options: OptionsRecord) -> Owned:
    """A database of a file, or of the bytes of one."""
    options.size = ctypes.sizeof(options)
    handle = Owned(_close, source if in_memory else None)
    error = ErrorRecord()
    if in_memory:
        status = _open_bytes(source, len(source), byref(options), byref(handle), byref(error))
    else:
        status = _open(source, byref(options), byref(handle), byref(error))
    if status:
        raise _told(error, status)
    return handle


def found(status: int, handle: Owned | None) -> bool:
    """Whether a call found something; raises what is neither."""
    if status == 0:
        return True
    if status == _NOT_FOUND:
        return False
    if handle is None:
        raise Error(Code.ARGUMENT, "the database is closed")
    raise raised(status)


def read(call: Any, handle: Owned | None, *arguments: Any) -> int:
    """What a call that fills an error record and a number of bytes read tells."""
    got = c_size_t()
    error = ErrorRecord()
    status = call(handle, *arguments, byref(got), byref(error))
    if status and handle is not None:
        raise _told(error, status)
    found(status, handle)
    return got.value


def is_key(key: int) -> bool:
    """False for a number that the library would take for another."""
    return 0 <= key <= _LAST_KEY


def begun(begin: Any, handle: Owned | None, *arguments: Any) -> Owned:
    """A cursor; it keeps the database open."""
    cursor = Owned(_cursor_close, handle)
    found(begin(handle, *arguments, byref(cursor)), handle)
    return cursor


def text_at(place: int | None, length: int) -> str:
    return string_at(place or 0, length).decode("latin-1") if length else ""


def state_text(state: int) -> str:
    return state.to_bytes(2, sys.byteorder).decode("latin-1")


def latin(text: str) -> bytes | None:
    """A text as the library takes it; None for one that no file can hold."""
    try:
        return str.encode(text, "latin-1")
    except UnicodeEncodeError:
        return None


def name_of(name: str) -> bytes:
    """As latin; what no file can hold becomes a name that none holds."""
    text = latin(name)
    return NO_NAME if text is None else text


def state_of(state: str) -> bytes:
    """Two characters; NO_STATE for other texts."""
    text = latin(state)
    return text if text is not None and len(text) == 2 else NO_STATE


def code_of(zip_code: str) -> int:
    """The number of a ZIP code; 0, which is none, for other texts."""
    is_code = len(zip_code) == 5 and str.isdigit(zip_code) and zip_code.isascii()
    return int(zip_code) if is_code else 0


def listed(call: Any, handle: Owned | None, item: Any, *arguments: Any) -> Sequence[Any]:
    """A list from a call that stores as many items as there is room for and tells their count."""
    count = c_size_t()
    items = (item * 64)()
    if not found(call(handle, *arguments, items, 64, byref(count)), handle):
        return []
    if count.value > 64:
        items = (item * count.value)()
        found(call(handle, *arguments, items, count.value, byref(count)), handle)
    return list(items[: count.value])
