"""What lookups give back. Nothing in here points into a database: it may be kept for ever.

Keys number the records of a table. An `rba` is a byte offset in the range file, 0 for none.
`record` is the record as it stands in the file.
"""

import datetime
from collections import deque
from dataclasses import dataclass, field, fields
from itertools import repeat
from typing import Any


@dataclass(frozen=True, slots=True)
class City:
    """A city name. `city_key` leads to its data, 0 for none."""

    state: str
    name: str
    key: int
    city_key: int
    value: int


_NEW: Any = object.__new__
_CITY_SLOTS = [getattr(City, each.name).__set__ for each in fields(City)]


def made_cities(*columns: list[Any]) -> list[City]:
    """Cities of columns in the order of the fields. A frozen field is set by its slot, which takes
    a third of the time that __init__ takes."""
    cities: list[City] = list(map(_NEW, repeat(City, len(columns[0]))))
    for put, column in zip(_CITY_SLOTS, columns):
        deque(map(put, cities, column), maxlen=0)
    return cities


@dataclass(frozen=True, slots=True)
class CityData:
    """A city. `name_usps` and `name_standard` are keys of its names."""

    key: int
    name_usps: int
    name_standard: int
    zip_count: int
    finance_key: int
    record: bytes = field(repr=False)


@dataclass(frozen=True, slots=True)
class Zip:
    """A ZIP code. `state` is None where it is not known, as in a cut."""

    code: str
    state: str | None
    key: int
    city_count: int
    finance_key: int
    street_rba: int
    po_box_rba: int
    rural_route_rba: int
    record: bytes = field(repr=False)


@dataclass(frozen=True, slots=True)
class Street:
    """A street name. Its key is the offset of the name in its table."""

    key: int
    name: str


@dataclass(frozen=True, slots=True)
class Firm:
    """The name of a firm. Its key is the offset of the name in its table."""

    key: int
    name: str


@dataclass(frozen=True, slots=True)
class Phonetic:
    """A phonetic key of city names."""

    state: str
    code: str
    key: int
    count: int


@dataclass(frozen=True, slots=True)
class Share:
    """A partition that several ZIP codes share. `key` is the start of the list of their keys."""

    zip_count: int
    key: int
    rba: int


@dataclass(frozen=True, slots=True)
class Info:
    """What a database says of itself. `cut_time` is None when it is no cut."""

    version: str
    copyright: str
    build_time: datetime.datetime
    cut_time: datetime.datetime | None
