"""Many questions by one call: their texts lie one behind the other in one block, and the numbers
that point into it are made by the column."""

import ctypes
from array import array
from collections.abc import Callable, Iterable, Iterator
from ctypes import c_char_p, c_void_p, cast
from itertools import accumulate
from typing import Any, TypeVar

from ._calls import Owned, code_of, found, name_of, state_of, text_at
from ._library import CityNameRecord, NameRecord, ZipRecord, function

_find_zips = function("find_zips")
_find_cities = function("find_cities")
_next_zips = function("next_zips")
_next_cities = function("next_cities")
_next_names = function("next_names")

_WORD = next(code for code in "ILQ" if array(code).itemsize == ctypes.sizeof(c_void_p))
_WORD_BYTES = array(_WORD).itemsize
_SOME = 512  # items that a cursor gives at once

Item = TypeVar("Item")


def _address(block: bytes) -> int:
    return cast(c_char_p(block), c_void_p).value or 0


def _blocked(names: list[str]) -> tuple[bytes, list[int]]:
    """The names in one block, and their lengths."""
    try:
        return "".join(names).encode("latin-1"), list(map(len, names))
    except UnicodeEncodeError:
        held = list(map(name_of, names))
        return b"".join(held), list(map(len, held))


def _states(states: list[str]) -> bytes:
    try:
        if set(map(len, states)) <= {2}:
            return "".join(states).encode("latin-1")
    except UnicodeEncodeError:
        pass
    return b"".join(map(state_of, states))


def _places(block: bytes, lengths: list[int]) -> "array[int]":
    places = array(_WORD, accumulate(lengths, initial=_address(block)))
    places.pop()
    return places


class CityAnswers:
    """The records of a batch."""

    _SIZE = ctypes.sizeof(CityNameRecord)

    def __init__(self, count: int) -> None:
        self._held = bytearray(count * self._SIZE)
        self.room = (ctypes.c_char * len(self._held)).from_buffer(self._held)

    def keys(self) -> list[int]:
        """A key each; -1 for what was not found."""
        if not self._held:
            return []
        held = memoryview(self._held)
        keys = held.cast("I")[CityNameRecord.key.offset // 4 :: self._SIZE // 4].tolist()
        first = CityNameRecord.name.offset // _WORD_BYTES
        names = held.cast(_WORD)[first :: self._SIZE // _WORD_BYTES].tolist()
        if 0 not in names:
            return keys
        return [key if name else -1 for key, name in zip(keys, names)]

    def __getitem__(self, i: int) -> CityNameRecord:
        return CityNameRecord.from_buffer(self._held, i * self._SIZE)


def find_zips(handle: Owned | None, codes: Iterable[str]) -> Any:
    """A record each; one of what was not found has no bytes."""
    numbers = array("I", map(code_of, codes))
    answers = (ZipRecord * len(numbers))()
    found(_find_zips(handle, numbers.buffer_info()[0], len(numbers), answers), handle)
    return answers


def find_cities(handle: Owned | None, queries: Iterable[tuple[str, str]]) -> CityAnswers:
    pairs = list(queries)
    states = _states([state for state, _ in pairs])
    block, lengths = _blocked([name for _, name in pairs])
    asked = array(_WORD, bytes(3 * len(pairs) * _WORD_BYTES))
    asked[0::3] = array(_WORD, range(first := _address(states), first + len(states), 2))
    asked[1::3] = _places(block, lengths)
    asked[2::3] = array(_WORD, lengths)
    answers = CityAnswers(len(pairs))
    status = _find_cities(handle, asked.buffer_info()[0], len(pairs), answers.room)
    found(status, handle)
    return answers


def find_names(
    call: Any, handle: Owned | None, names: Iterable[str], make: Callable[[int, str], Item]
) -> list[Item | None]:
    """The streets or firms of the names."""
    block, lengths = _blocked(list(names))
    asked = array(_WORD, bytes(2 * len(lengths) * _WORD_BYTES))
    asked[0::2] = _places(block, lengths)
    asked[1::2] = array(_WORD, lengths)
    answers = (NameRecord * len(lengths))()
    found(call(handle, asked.buffer_info()[0], len(lengths), answers), handle)
    return [
        make(answer.key, text_at(answer.name, answer.length)) if answer.name else None
        for answer in answers
    ]


def _walked(advance: Any, cursor: Owned, record: Any) -> Iterator[Any]:
    items = (record * _SOME)()
    while count := advance(cursor, items, _SOME):
        yield from items[:count]


def walk_zips(cursor: Owned) -> Iterator[Any]:
    return _walked(_next_zips, cursor, ZipRecord)


def walk_cities(cursor: Owned) -> Iterator[Any]:
    return _walked(_next_cities, cursor, CityNameRecord)


def walk_names(cursor: Owned, make: Callable[[int, str], Item]) -> Iterator[Item]:
    for item in _walked(_next_names, cursor, NameRecord):
        yield make(item.key, text_at(item.name, item.length))
