"""The shared library: where it is, and what it gives out (statecut_c.h)."""

import ctypes
import os
import pathlib
import sysconfig
from ctypes import POINTER, c_char, c_char_p, c_int32, c_size_t, c_uint16, c_uint32, c_uint64
from ctypes import c_void_p
from typing import Any

NAME = "libstatecut.so.0"


class ErrorRecord(ctypes.Structure):
    _fields_ = [
        ("code", c_int32),
        ("number", c_int32),
        ("offset", c_uint64),
        ("table", c_char * 48),
        ("text", c_char * 464),
    ]


class OptionsRecord(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("range", c_char_p),
        ("mapped", c_int32),
        ("index_names", c_int32),
        ("index_city_zips", c_int32),
    ]


class InfoRecord(ctypes.Structure):
    _fields_ = [
        ("build_time", c_uint32),
        ("cut_time", c_uint32),
        ("is_cut", c_int32),
        ("version", c_char * 9),
        ("copyright", c_char * 5),
    ]


class ZipRecord(ctypes.Structure):
    _fields_ = [
        ("key", c_uint32),
        ("code", c_uint32),
        ("street_rba", c_uint32),
        ("po_box_rba", c_uint32),
        ("rural_route_rba", c_uint32),
        ("city_count", c_uint32),
        ("finance_key", c_uint32),
        ("state", c_uint16),  # two characters; 0 when it is not known
        ("state_end", c_uint16),
        ("bytes", c_void_p),
    ]


class CityNameRecord(ctypes.Structure):
    _fields_ = [
        ("key", c_uint32),
        ("city_key", c_uint32),
        ("value", c_uint32),
        ("state", c_uint16),  # two characters; 0 when it is not known
        ("state_end", c_uint16),
        ("name", c_void_p),
        ("length", c_size_t),
    ]


class CityRecord(ctypes.Structure):
    _fields_ = [
        ("key", c_uint32),
        ("name_usps", c_uint32),
        ("name_standard", c_uint32),
        ("zip_count", c_uint32),
        ("finance_key", c_uint32),
        ("bytes", c_void_p),
    ]


class PhoneticRecord(ctypes.Structure):
    _fields_ = [
        ("key", c_uint32),
        ("count", c_uint32),
        ("state", c_uint16),  # two characters; 0 when it is not known
        ("state_end", c_uint16),
        ("code", c_void_p),
        ("length", c_size_t),
    ]


class ShareRecord(ctypes.Structure):
    _fields_ = [("zip_count", c_uint32), ("key", c_uint32), ("rba", c_uint32)]


class NameRecord(ctypes.Structure):
    _fields_ = [("key", c_uint32), ("name", c_void_p), ("length", c_size_t)]


def _candidates() -> list[str]:
    """The library that STATECUT_LIBRARY names, or else: that of the prefix in which this package is
    installed (PREFIX/lib/python3/dist-packages/statecut), then the one that the loader finds."""
    named = os.environ.get("STATECUT_LIBRARY")
    if named:
        return [named]
    found = []
    parents = pathlib.Path(__file__).resolve().parents
    if len(parents) > 4 and parents[1].name == "dist-packages":
        lib = parents[3]
        multiarch = sysconfig.get_config_var("MULTIARCH")
        folders = [lib, lib.parent / "lib64"] + ([lib / multiarch] if multiarch else [])
        found = [str(folder / NAME) for folder in folders if (folder / NAME).exists()]
    return found + [NAME]


def _load() -> tuple[str, ctypes.CDLL, ctypes.PyDLL]:
    tried = []
    for path in _candidates():
        try:
            return path, ctypes.CDLL(path), ctypes.PyDLL(path)
        except OSError as error:
            tried.append(str(error))
    raise ImportError(
        f"{NAME} cannot be loaded ({'; '.join(tried)}); STATECUT_LIBRARY can name it"
    ) from None


LIBRARY, _long, _short = _load()

_STATUS = c_int32
_SIGNATURES: dict[str, tuple[Any, list[Any]]] = {
    "version": (c_char_p, []),
    "strerror": (c_char_p, [c_int32]),
    "open": (_STATUS, [c_char_p, POINTER(OptionsRecord), POINTER(c_void_p), POINTER(ErrorRecord)]),
    "open_bytes": (
        _STATUS,
        [c_char_p, c_size_t, POINTER(OptionsRecord), POINTER(c_void_p), POINTER(ErrorRecord)],
    ),
    "close": (None, [c_void_p]),
    "get_info": (_STATUS, [c_void_p, POINTER(InfoRecord)]),
    "states": (_STATUS, [c_void_p, c_void_p, c_size_t, POINTER(c_size_t)]),
    "index_names": (_STATUS, [c_void_p]),
    "index_city_zips": (_STATUS, [c_void_p]),
    "zip_by_code": (_STATUS, [c_void_p, c_uint32, POINTER(ZipRecord)]),
    "zip_by_key": (_STATUS, [c_void_p, c_uint32, POINTER(ZipRecord)]),
    "zip_cities": (_STATUS, [c_void_p, c_uint32, c_void_p, c_size_t, POINTER(c_size_t)]),
    "finance": (_STATUS, [c_void_p, c_uint32, POINTER(ShareRecord)]),
    "multi_zips": (_STATUS, [c_void_p, c_uint32, c_uint32, c_void_p]),
    "partition_bytes": (_STATUS, [c_void_p, c_uint32, c_int32, POINTER(c_uint32)]),
    "read_partition": (
        _STATUS,
        [c_void_p, c_uint32, c_int32, c_void_p, c_size_t, POINTER(c_size_t), POINTER(ErrorRecord)],
    ),
    "find_city": (_STATUS, [c_void_p, c_char_p, c_char_p, c_size_t, POINTER(CityNameRecord)]),
    "city_name_by_key": (_STATUS, [c_void_p, c_uint32, POINTER(CityNameRecord)]),
    "find_truncated_city": (
        _STATUS,
        [c_void_p, c_char_p, c_char_p, c_size_t, POINTER(CityNameRecord)],
    ),
    "find_phonetic": (_STATUS, [c_void_p, c_char_p, c_char_p, c_size_t, POINTER(PhoneticRecord)]),
    "phonetic_by_key": (_STATUS, [c_void_p, c_uint32, POINTER(PhoneticRecord)]),
    "city_by_key": (_STATUS, [c_void_p, c_uint32, POINTER(CityRecord)]),
    "city_share": (_STATUS, [c_void_p, c_uint32, c_int32, POINTER(ShareRecord)]),
    "city_zips": (
        _STATUS,
        [c_void_p, c_uint32, POINTER(POINTER(c_uint16)), POINTER(c_size_t)],
    ),
    "city_zip_entries": (_STATUS, [c_void_p, c_uint32, c_uint32, POINTER(c_void_p)]),
    "city_finance_keys": (_STATUS, [c_void_p, c_uint32, c_uint32, c_void_p]),
    "find_street": (_STATUS, [c_void_p, c_char_p, c_size_t, POINTER(NameRecord)]),
    "street_by_key": (_STATUS, [c_void_p, c_uint32, POINTER(NameRecord)]),
    "find_firm": (_STATUS, [c_void_p, c_char_p, c_size_t, POINTER(NameRecord)]),
    "firm_by_key": (_STATUS, [c_void_p, c_uint32, POINTER(NameRecord)]),
    "variations": (
        _STATUS,
        [c_void_p, c_int32, c_char_p, c_size_t, c_int32, c_void_p, c_size_t, POINTER(c_size_t)],
    ),
    "general_delivery": (_STATUS, [c_void_p, c_uint32, POINTER(c_void_p)]),
    "county": (_STATUS, [c_void_p, c_uint32, POINTER(c_void_p)]),
    "urbanization": (_STATUS, [c_void_p, c_uint32, POINTER(c_void_p)]),
    "find_zips": (_STATUS, [c_void_p, c_void_p, c_size_t, c_void_p]),
    "find_cities": (_STATUS, [c_void_p, c_void_p, c_size_t, c_void_p]),
    "find_streets": (_STATUS, [c_void_p, c_void_p, c_size_t, c_void_p]),
    "find_firms": (_STATUS, [c_void_p, c_void_p, c_size_t, c_void_p]),
    "cities": (_STATUS, [c_void_p, c_char_p, c_char_p, c_size_t, POINTER(c_void_p)]),
    "zips": (_STATUS, [c_void_p, POINTER(c_void_p)]),
    "city_names": (_STATUS, [c_void_p, POINTER(c_void_p)]),
    "streets": (_STATUS, [c_void_p, POINTER(c_void_p)]),
    "firms": (_STATUS, [c_void_p, POINTER(c_void_p)]),
    "next_zips": (c_size_t, [c_void_p, c_void_p, c_size_t]),
    "next_cities": (c_size_t, [c_void_p, c_void_p, c_size_t]),
    "next_names": (c_size_t, [c_void_p, c_void_p, c_size_t]),
    "cursor_close": (None, [c_void_p]),
}
# Other threads run during these, which read files or answer many questions. The others take less
# time than letting them run would.
_LONG = {
    "open",
    "open_bytes",
    "close",
    "index_names",
    "index_city_zips",
    "city_zips",
    "read_partition",
    "find_zips",
    "find_cities",
    "find_streets",
    "find_firms",
}


def function(name: str) -> Any:
    """A function of the library: "open" for statecut_open."""
    declared = getattr(_long if name in _LONG else _short, "statecut_" + name)
    declared.restype, declared.argtypes = _SIGNATURES[name]
    return declared


def names() -> list[str]:
    """What this package knows of the library."""
    return list(_SIGNATURES)


VERSION: str = function("version")().decode()
