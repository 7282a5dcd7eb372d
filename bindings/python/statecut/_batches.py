"""Many questions by one call: their texts lie one behind the other in one block, and the numbers
that point into it are made by the column."""

import ctypes
from array import array
from collections.abc import Callable, Iterable, Iterator
from ctypes import c_char_p, c_void_p, cast
from itertools import accumulate, compress
from typing import Any, TypeVar

from ._calls import Owned, code_of, found, name_of, state_of, text_at
from ._library import CityNameRecord, NameRecord, ZipRecord, function
from ._records import City, made_cities

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
    """The records of a batch, by columns."""

    _SIZE = ctypes.sizeof(CityNameRecord)

    def __init__(self, states: list[str], names: list[str]) -> None:
        self._asked = states, names
        self._held = bytearray(len(names) * self._SIZE)
        self.room = (ctypes.c_char * len(self._held)).from_buffer(self._held)

    def _column(self, offset: int, item: str, width: int) -> list[int]:
        if not self._held:
            return []
        column: list[int] = memoryview(self._held).cast(item)[
            offset // width :: self._SIZE // width
        ].tolist()
        return column

    def keys(self) -> list[int]:
        """A key each; -1 for what was not found."""
        keys = self._column(CityNameRecord.key.offset, "I", 4)
        names = self._column(CityNameRecord.name.offset, _WORD, _WORD_BYTES)
        if 0 not in names:
            return keys
        return [key if name else -1 for key, name in zip(keys, names)]

    def made(self, wanted: list[bool]) -> list[City]:
        """The cities at the places that are wanted. What was found is what was asked for."""
        states, names = self._asked
        columns = (
            map(str.__str__, states),
            map(str.__str__, names),
            self._column(CityNameRecord.key.offset, "I", 4),
            self._column(CityNameRecord.city_key.offset, "I", 4),
            self._column(CityNameRecord.value.offset, "I", 4),
        )
        return made_cities(*(list(compress(column, wanted)) for column in columns))


def find_zips(handle: Owned | None, codes: Iterable[str]) -> Any:
    """A record each; one of what was not found has no bytes."""
    numbers = array("I", map(code_of, codes))
    answers = (ZipRecord * len(numbers))()
    found(_find_zips(handle, numbers.buffer_info()[0], len(numbers), answers), handle)
    return answers


def find_cities(handle: Owned | None, queries: Iterable[tuple[str, str]]) -> CityAnswers:
    states: list[str] = []
    names: list[str] = []
    for state, name in queries:
        states.append(state)
        names.append(name)
    held = _states(states)
    block, lengths = _blocked(names)
    asked = array(_WORD, bytes(3 * len(names) * _WORD_BYTES))
    asked[0::3] = array(_WORD, range(first := _address(held), first + len(held), 2))
    asked[1::3] = _places(block, lengths)
    asked[2::3] = array(_WORD, lengths)
    answers = CityAnswers(states, names)
    status = _find_cities(handle, asked.buffer_info()[0], len(names), answers.room)
    found(status, handle)
    return answers


def find_names(
    call: Any, handle: Owned | None, names: Iterable[str], make: Callable[[int, str], Item]
) -> list[Item | None]:
    """The streets or firms of the names."""
    names = list(names)
    block, lengths = _blocked(names)
    asked = array(_WORD, bytes(2 * len(lengths) * _WORD_BYTES))
    asked[0::2] = _places(block, lengths)
    asked[1::2] = array(_WORD, lengths)
    answers = (NameRecord * len(lengths))()
    found(call(handle, asked.buffer_info()[0], len(lengths), answers), handle)
    # What was found is what was asked for.
    return [
        make(answer.key, name) if answer.name else None
        for answer, name in zip(answers, map(str.__str__, names))
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
