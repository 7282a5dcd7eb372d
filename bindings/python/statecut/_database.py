"""The database."""

import datetime
import enum
import os
import types
from collections.abc import Iterable, Iterator
from ctypes import POINTER, byref, c_char, c_size_t, c_uint16, c_uint32, c_void_p
from ctypes import create_string_buffer, string_at
from typing import Any

from . import _batches
from ._calls import (
    Owned,
    begun,
    code_of,
    found,
    is_key,
    listed,
    name_of,
    opened,
    pathed,
    read,
    state_of,
    state_text,
    text_at,
)
from ._error import Code, Error
from ._library import (
    CityNameRecord,
    CityRecord,
    InfoRecord,
    NameRecord,
    OptionsRecord,
    PhoneticRecord,
    ShareRecord,
    ZipRecord,
    function,
)
from ._records import City, CityData, Firm, Info, Phonetic, Share, Street, Zip

_FUNCTIONS = types.SimpleNamespace(
    **{
        name: function(name)
        for name in """
        get_info states index_names index_city_zips zip_by_code zip_by_key zip_cities finance
        multi_zips partition_bytes read_partition find_city city_name_by_key find_truncated_city
        find_phonetic phonetic_by_key city_by_key city_share city_zips city_zip_entries
        city_finance_keys find_street street_by_key find_firm firm_by_key variations
        general_delivery county urbanization find_streets find_firms cities zips city_names streets
        firms""".split()
    }
)
_find_city = _FUNCTIONS.find_city

_ZIP_BYTES = 52
_CITY_BYTES = 36
_CITY_ZIP_BYTES = 6
_GENERAL_DELIVERY_BYTES = 4
_SMALL_TABLE_BYTES = 32


class PartitionKind(enum.IntEnum):
    """What a partition of the range file holds."""

    PO_BOX = 0
    STREET = 1
    RURAL_ROUTE = 2


class VariationKind(enum.IntEnum):
    """What a variation of a street name is."""

    PHONETIC = 0
    STANDARD = 1


def _time(seconds: int) -> datetime.datetime:
    return datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc)


def _zip(answer: Any) -> Zip:
    return Zip(
        f"{answer.code:05d}",
        state_text(answer.state) if answer.state else None,
        answer.key,
        answer.city_count,
        answer.finance_key,
        answer.street_rba,
        answer.po_box_rba,
        answer.rural_route_rba,
        string_at(answer.bytes, _ZIP_BYTES),
    )


class Database:
    """A database that is open until it is closed or nobody has it any more.

    `range` is the range file of the pair, for `partition`. `mapped` maps the file instead of
    reading it, for files that nobody touches: one that is shortened then ends the process.
    `index_names` makes lookups by name faster for some milliseconds at the opening.

    Calls on a closed database raise an Error with Code.ARGUMENT; an iterator that has begun goes
    on.
    """

    def __init__(
        self,
        path: str | bytes | os.PathLike[str],
        range: str | bytes | os.PathLike[str] | None = None,
        *,
        mapped: bool = False,
        index_names: bool = False,
    ) -> None:
        self._handle: Owned | None = None
        self._open(pathed(path), False, range, mapped, index_names)

    @classmethod
    def from_bytes(
        cls,
        reference: bytes,
        range: str | bytes | os.PathLike[str] | None = None,
        *,
        index_names: bool = False,
    ) -> "Database":
        """A database of the bytes of a reference file."""
        made = cls.__new__(cls)
        made._handle = None
        made._open(bytes(reference), True, range, False, index_names)
        return made

    def _open(
        self,
        source: bytes,
        in_memory: bool,
        range: str | bytes | os.PathLike[str] | None,
        mapped: bool,
        index_names: bool,
    ) -> None:
        options = OptionsRecord()
        options.range = None if range is None else pathed(range)
        options.mapped = int(mapped)
        options.index_names = int(index_names)
        # Records of city names by their keys, as far as they were asked for.
        self._cities: dict[int, City] = {}
        self._handle = opened(source, in_memory, options)

    def close(self) -> None:
        """Closes the database as soon as no call and no iterator uses it. May be called twice."""
        self._handle = None

    @property
    def closed(self) -> bool:
        return self._handle is None

    def __enter__(self) -> "Database":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    # What it says of itself.

    def info(self) -> Info:
        answer = InfoRecord()
        found(_FUNCTIONS.get_info(self._handle, byref(answer)), self._handle)
        cut_time = _time(answer.cut_time) if answer.is_cut else None
        version, copyright = answer.version.decode("latin-1"), answer.copyright.decode("latin-1")
        return Info(version, copyright, _time(answer.build_time), cut_time)

    def is_cut(self) -> bool:
        return self.info().cut_time is not None

    def states(self) -> list[str]:
        """The states of the city names, sorted; of a cut, its states."""
        states = listed(_FUNCTIONS.states, self._handle, c_char * 3)
        return [state.value.decode("latin-1") for state in states]

    def index_names(self) -> None:
        """Makes an index of all names, with which lookups by name take a third of the time."""
        found(_FUNCTIONS.index_names(self._handle), self._handle)

    # ZIP codes, as texts of five digits. Nothing is found for other texts.

    def zip(self, code: str) -> Zip | None:
        answer = ZipRecord()
        status = _FUNCTIONS.zip_by_code(self._handle, code_of(code), byref(answer))
        return _zip(answer) if found(status, self._handle) else None

    def zip_by_key(self, key: int) -> Zip | None:
        answer = ZipRecord()
        return _zip(answer) if self._by_key("zip_by_key", key, answer) else None

    def zips(self) -> Iterator[Zip]:
        """All ZIP codes, ascending."""
        return map(_zip, _batches.walk_zips(begun(_FUNCTIONS.zips, self._handle)))

    def find_zips(self, codes: Iterable[str]) -> list[Zip | None]:
        """An answer for each code, by one call."""
        answers = _batches.find_zips(self._handle, codes)
        return [_zip(answer) if answer.bytes else None for answer in answers]

    def zip_cities(self, code: str) -> list[City]:
        """The cities of a ZIP code, in its order."""
        found_zip = self.zip(code)
        if found_zip is None:
            return []
        keys = listed(_FUNCTIONS.zip_cities, self._handle, c_uint16, found_zip.key)
        datas = (self.city_data(key) for key in keys)
        names = (self.city_by_key(data.name_usps) for data in datas if data is not None)
        return [name for name in names if name is not None]

    def finance(self, index: int) -> Share | None:
        """A finance entry: a partition that ZIP codes share."""
        answer = ShareRecord()
        return self._share(answer) if self._by_key("finance", index, answer) else None

    def multi_zips(self, start: int, count: int) -> list[int] | None:
        """`count` ZIP keys of the lists of ZIP codes; None when the table does not hold them."""
        return self._keys("multi_zips", start, count)

    def partition_size(self, code: str, kind: PartitionKind) -> int | None:
        """The bytes of a partition, 0 for none; None when it is not known, as in a cut."""
        found_zip = self.zip(code)
        if found_zip is None:
            return 0
        size = c_uint32()
        kind = PartitionKind(kind)
        call = _FUNCTIONS.partition_bytes
        status = call(self._handle, found_zip.key, kind, byref(size))
        if status == Code.UNKNOWN:
            return None
        return size.value if found(status, self._handle) else 0

    def partition(self, code: str, kind: PartitionKind, size: int | None = None) -> bytes:
        """Reads a partition from the range file. A cut does not know how long it is: at most `size`
        bytes are read of it, which begin with the partition."""
        known = self.partition_size(code, kind)
        wanted = known if known is not None else size
        if wanted is None:
            raise Error(Code.UNKNOWN, "a cut does not know the sizes of partitions; give one")
        found_zip = self.zip(code)
        if found_zip is None:
            raise Error(Code.NO_PARTITION, "there is no such ZIP code")
        buffer = create_string_buffer(max(wanted, 1))
        arguments = found_zip.key, PartitionKind(kind), buffer, wanted
        got = read(_FUNCTIONS.read_partition, self._handle, *arguments)
        return buffer.raw[:got]

    # Cities.

    def city(self, state: str, name: str) -> City | None:
        text = name_of(name)
        answer = CityNameRecord()
        handle = self._handle
        status = _find_city(handle, state_of(state), text, len(text), answer)
        if status and not found(status, handle):
            return None
        key = answer.key
        made = self._cities.get(key)
        if made is None:
            # What was found is what was asked for.
            made = City(
                str.__str__(state), str.__str__(name), key, answer.city_key, answer.value
            )
            self._cities[key] = made
        return made

    def city_by_key(self, key: int) -> City | None:
        answer = CityNameRecord()
        return self._city(answer) if self._by_key("city_name_by_key", key, answer) else None

    def truncated_city(self, state: str, name: str) -> City | None:
        """The one city whose name begins with `name`. An Error with Code.AMBIGUOUS: several do."""
        answer = CityNameRecord()
        call = _FUNCTIONS.find_truncated_city
        return self._city(answer) if self._in_state(call, state, name, answer) else None

    def cities(self, state: str, pattern: str) -> Iterator[City]:
        """The cities of a state that fit: "SAN" and "SAN*" begin with SAN, "*SAN" ends with it,
        "*SAN*" holds it."""
        text = name_of(pattern)
        cursor = begun(_FUNCTIONS.cities, self._handle, state_of(state), text, len(text))
        return map(self._city, _batches.walk_cities(cursor))

    def city_names(self) -> Iterator[City]:
        """All city names, by state and name."""
        cursor = begun(_FUNCTIONS.city_names, self._handle)
        return map(self._city, _batches.walk_cities(cursor))

    def find_cities(self, queries: Iterable[tuple[str, str]]) -> list[City | None]:
        """An answer for each pair of state and name, by one call."""
        answers = _batches.find_cities(self._handle, queries)
        keys = answers.keys()
        cities = list(map(self._cities.get, keys))
        wanted = [city is None and key >= 0 for city, key in zip(cities, keys)]
        if True in wanted:
            for city in answers.made(wanted):
                self._cities[city.key] = city
            cities = list(map(self._cities.get, keys))
        return cities

    def city_data(self, city_key: int) -> CityData | None:
        answer = CityRecord()
        if not self._by_key("city_by_key", city_key, answer):
            return None
        return CityData(
            answer.key,
            answer.name_usps,
            answer.name_standard,
            answer.zip_count,
            answer.finance_key,
            string_at(answer.bytes, _CITY_BYTES),
        )

    def city_zips(self, city_key: int) -> list[str]:
        """The ZIP codes that have a city, ascending. The first call makes an index of them all."""
        keys = POINTER(c_uint16)()
        count = c_size_t()
        handle = self._handle
        if not is_key(city_key):
            return []
        status = _FUNCTIONS.city_zips(handle, city_key, byref(keys), byref(count))
        if not found(status, handle):
            return []
        zips = map(self.zip_by_key, keys[: count.value])
        return [found_zip.code for found_zip in zips if found_zip is not None]

    def city_share(self, city_key: int, kind: PartitionKind) -> Share | None:
        """The partition of a kind that the ZIP codes of a city share."""
        answer = ShareRecord()
        if not is_key(city_key):
            return None
        call = _FUNCTIONS.city_share
        status = call(self._handle, city_key, PartitionKind(kind), byref(answer))
        return self._share(answer) if found(status, self._handle) else None

    def city_zip_entries(self, start: int, count: int) -> list[bytes] | None:
        """`count` entries of the ZIP codes of cities; None when the table does not hold them."""
        place = c_void_p()
        if not (is_key(start) and is_key(count)):
            return None
        status = _FUNCTIONS.city_zip_entries(self._handle, start, count, byref(place))
        if not found(status, self._handle):
            return None
        held = string_at(place.value or 0, count * _CITY_ZIP_BYTES)
        return [held[at : at + _CITY_ZIP_BYTES] for at in range(0, len(held), _CITY_ZIP_BYTES)]

    def city_finance_keys(self, start: int, count: int) -> list[int] | None:
        """`count` finance keys of cities; None when the table does not hold them."""
        return self._keys("city_finance_keys", start, count)

    def phonetic(self, state: str, code: str) -> Phonetic | None:
        answer = PhoneticRecord()
        call = _FUNCTIONS.find_phonetic
        return self._phonetic(answer) if self._in_state(call, state, code, answer) else None

    def phonetic_by_key(self, key: int) -> Phonetic | None:
        answer = PhoneticRecord()
        return self._phonetic(answer) if self._by_key("phonetic_by_key", key, answer) else None

    # Streets and firms.

    def street(self, name: str) -> Street | None:
        answer = NameRecord()
        is_found = self._name("find_street", name, answer)
        return Street(answer.key, str.__str__(name)) if is_found else None

    def street_by_key(self, key: int) -> Street | None:
        answer = NameRecord()
        return Street(*self._named(answer)) if self._by_key("street_by_key", key, answer) else None

    def streets(self) -> Iterator[Street]:
        """All street names, in the order of their keys."""
        return _batches.walk_names(begun(_FUNCTIONS.streets, self._handle), Street)

    def find_streets(self, names: Iterable[str]) -> list[Street | None]:
        """An answer for each name, by one call."""
        return _batches.find_names(_FUNCTIONS.find_streets, self._handle, names, Street)

    def variations(self, kind: VariationKind, name: str, scf: int | None = None) -> list[int]:
        """The keys of the streets that a variation of a name stands for. With an SCF only those
        that are served there or everywhere."""
        if scf is not None and not 0 <= scf <= 0xFFFF:
            raise ValueError("an SCF is a number from 0 to 65535")
        text = name_of(name)
        arguments = VariationKind(kind), text, len(text), -1 if scf is None else scf
        return list(listed(_FUNCTIONS.variations, self._handle, c_uint32, *arguments))

    def firm(self, name: str) -> Firm | None:
        answer = NameRecord()
        is_found = self._name("find_firm", name, answer)
        return Firm(answer.key, str.__str__(name)) if is_found else None

    def firm_by_key(self, key: int) -> Firm | None:
        answer = NameRecord()
        return Firm(*self._named(answer)) if self._by_key("firm_by_key", key, answer) else None

    def firms(self) -> Iterator[Firm]:
        """All names of firms, in the order of their keys."""
        return _batches.walk_names(begun(_FUNCTIONS.firms, self._handle), Firm)

    def find_firms(self, names: Iterable[str]) -> list[Firm | None]:
        """An answer for each name, by one call."""
        return _batches.find_names(_FUNCTIONS.find_firms, self._handle, names, Firm)

    # Records of small tables, by position.

    def general_delivery(self, key: int) -> bytes | None:
        return self._bytes("general_delivery", key, _GENERAL_DELIVERY_BYTES)

    def county(self, position: int) -> bytes | None:
        return self._bytes("county", position, _SMALL_TABLE_BYTES)

    def urbanization(self, position: int) -> bytes | None:
        return self._bytes("urbanization", position, _SMALL_TABLE_BYTES)

    # How calls are made.

    def _by_key(self, call: str, key: int, answer: Any) -> bool:
        handle = self._handle
        asked = key if is_key(key) else 0
        is_found = found(getattr(_FUNCTIONS, call)(handle, asked, byref(answer)), handle)
        return is_found and asked == key

    def _in_state(self, call: Any, state: str, text: str, answer: Any) -> bool:
        name = name_of(text)
        handle = self._handle
        return found(call(handle, state_of(state), name, len(name), byref(answer)), handle)

    def _name(self, call: str, name: str, answer: Any) -> bool:
        text = name_of(name)
        handle = self._handle
        return found(getattr(_FUNCTIONS, call)(handle, text, len(text), byref(answer)), handle)

    def _keys(self, call: str, start: int, count: int) -> list[int] | None:
        if not (is_key(start) and 0 <= count <= 0xFFFF):
            return None
        keys = (c_uint16 * count)()
        handle = self._handle
        status = getattr(_FUNCTIONS, call)(handle, start, count, keys)
        return list(keys) if found(status, handle) else None

    def _bytes(self, call: str, key: int, size: int) -> bytes | None:
        place = c_void_p()
        return string_at(place.value or 0, size) if self._by_key(call, key, place) else None

    def _city(self, answer: Any) -> City:
        made = City(
            state_text(answer.state),
            text_at(answer.name, answer.length),
            answer.key,
            answer.city_key,
            answer.value,
        )
        self._cities[made.key] = made
        return made

    @staticmethod
    def _named(answer: Any) -> tuple[int, str]:
        return answer.key, text_at(answer.name, answer.length)

    @staticmethod
    def _phonetic(answer: Any) -> Phonetic:
        state = state_text(answer.state)
        return Phonetic(state, text_at(answer.code, answer.length), answer.key, answer.count)

    @staticmethod
    def _share(answer: Any) -> Share:
        return Share(answer.zip_count, answer.key, answer.rba)
