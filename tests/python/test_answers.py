"""Every answer is the one of statedb query: on sound, cut and damaged databases."""

import pathlib
import random
import unittest
from typing import Any

import statecut
import support


def zip_fields(record: str) -> tuple[int, int, int, int]:
    held = bytes.fromhex(record)
    numbers = (held[0:4], held[8:12], held[12:16], held[16:20])
    code, street, po_box, rural = (int.from_bytes(part, "little") for part in numbers)
    return code, street, po_box, rural


def text_of(found: statecut.Zip | statecut.CityData | None) -> str | None:
    return found.record.hex() if found and any(found.record) else None


def record_of(told: dict[str, Any]) -> str | None:
    """The record. One behind the end of a table, of which statedb tells zeros, is none."""
    record: str | None = told["record"]
    return record if record and record.strip("0") else None


def check_zip(test: unittest.TestCase, found: statecut.Zip | None, told: dict[str, Any]) -> None:
    test.assertEqual(text_of(found), record_of(told), told)
    if found and record_of(told):
        rbas = found.street_rba, found.po_box_rba, found.rural_route_rba
        test.assertEqual((int(found.code), *rbas), zip_fields(told["record"]))


def check_city(test: unittest.TestCase, found: statecut.City | None, record: str | None) -> None:
    if found is not None and record is None and found.name == "":
        return  # zeros
    test.assertEqual(found is None, record is None, (found, record))
    if found is None or record is None:
        return
    held = bytes.fromhex(record)
    length = min(held[3], 28)
    test.assertEqual(found.city_key, int.from_bytes(held[0:2], "little"))
    test.assertEqual(found.value, held[2])
    test.assertEqual(found.state, held[4:6].decode("latin-1"))
    test.assertEqual(found.name, held[6 : 6 + length].decode("latin-1"))


class Names:
    """What the sound database holds, and names that it does not hold."""

    def __init__(self) -> None:
        with statecut.Database(support.sound()[0]) as db:
            held = list(db.zips())
            self.zips = [z.code for z in held] + ["00001", "75204", "99999"]
            self.cities = [(c.state, c.name) for c in db.city_names()]
            self.cities += [("TX", ""), ("ZZ", "DALLAS"), ("TX", "DALLA"), ("TX", "X" * 29)]
            self.streets = [s.name for s in db.streets()][:100] + ["", "NO SUCH STREET", "M" * 29]
            self.firms = [f.name for f in db.firms()][:100] + ["", "NO SUCH FIRM", "M" * 41]


def compare(
    test: unittest.TestCase, db: statecut.Database, path: pathlib.Path, names: Names
) -> int:
    """How many answers were compared."""
    asked: list[tuple[Any, ...]] = []
    checks: list[Any] = []

    def ask(check: Any, *question: Any) -> None:
        asked.append(question)
        checks.append(check)

    for code, found in zip(names.zips, db.find_zips(names.zips), strict=True):
        test.assertEqual(found, db.zip(code))
        ask(lambda told, found=found: check_zip(test, found, told), "dbGetZipData", int(code))
    for (state, name), city in zip(names.cities, db.find_cities(names.cities), strict=True):
        test.assertEqual(city, db.city(state, name))
        ask(
            lambda told, city=city: check_city(test, city, record_of(told)),
            "dbFindCity",
            state,
            name,
        )
        try:
            short = db.truncated_city(state, name[:4])
        except statecut.Error as error:
            test.assertEqual(error.code, statecut.Code.AMBIGUOUS)
            short = None
        ask(
            lambda told, short=short: check_city(test, short, record_of(told)),
            "dbFindTruncCity",
            state,
            name[:4],
        )
    for name, street in zip(names.streets, db.find_streets(names.streets), strict=True):
        test.assertEqual(street, db.street(name))
        key = -1 if street is None else street.key
        ask(
            lambda told, key=key: test.assertEqual(told["result"], key, told),
            "dbFindStreetKey",
            name,
        )
    for name, firm in zip(names.firms, db.find_firms(names.firms), strict=True):
        test.assertEqual(firm, db.firm(name))
        key = -1 if firm is None else firm.key
        ask(lambda told, key=key: test.assertEqual(told["result"], key, told), "dbFindFirm", name)
    for key in range(1, 60):
        found = db.zip_by_key(key)
        ask(lambda told, found=found: check_zip(test, found, told), "dbGetZipDataFromKey", key)
        city = db.city_by_key(key)
        ask(lambda told, city=city: check_city(test, city, record_of(told)), "dbGetCityUSPS", key)
        data = db.city_data(key)
        ask(
            lambda told, data=data: test.assertEqual(text_of(data), record_of(told), told),
            "dbGetCityData",
            key,
        )
        if found is not None:
            cities = [c.key for c in db.zip_cities(found.code)]
            ask(
                lambda told, cities=cities: test.assertEqual(cities, named(db, told["keys"])),
                "dbGetCityKeysPtr",
                key,
            )
    ask_phonetics(test, db, ask)
    for check, told in zip(checks, support.answers(path, asked), strict=True):
        check(told)
    return len(checks)


def ask_phonetics(test: unittest.TestCase, db: statecut.Database, ask: Any) -> None:
    for key in range(1, 40):
        held = db.phonetic_by_key(key)
        if held is None:
            continue
        found = db.phonetic(held.state, held.code)
        index = found.key if found else -1
        ask(
            lambda told, index=index: test.assertEqual(told["index"], index, told),
            "dbFindCityPh",
            held.state,
            held.code,
        )


def named(db: statecut.Database, city_keys: list[int] | None) -> list[int]:
    datas = map(db.city_data, city_keys or [])
    cities = (db.city_by_key(data.name_usps) for data in datas if data is not None)
    return [city.key for city in cities if city is not None]


class Answers(unittest.TestCase):
    def test_of_a_sound_database_are_those_of_statedb(self) -> None:
        path = support.sound()[0]
        for index_names in (False, True):
            with statecut.Database(path, index_names=index_names) as db:
                self.assertGreater(compare(self, db, path, Names()), 400)

    def test_of_bytes_in_memory_are_those_of_their_file(self) -> None:
        path = support.sound()[0]
        with statecut.Database.from_bytes(path.read_bytes()) as db:
            compare(self, db, path, Names())

    def test_of_a_cut_are_those_of_statedb(self) -> None:
        path = support.cut()[0]
        with statecut.Database(path) as db:
            compare(self, db, path, Names())
            self.assertIsNotNone(db.city("TX", "DALLAS"))

    def test_of_damaged_databases_are_those_of_statedb_or_an_error(self) -> None:
        whole = support.sound()[0].read_bytes()
        filled = [at for at, byte in enumerate(whole) if byte != 0]
        names = Names()
        path = support.folder() / "damaged.dir"
        chance = random.Random(1)
        opened = refused = 0
        for _ in range(60):
            damaged = bytearray(whole)
            for _ in range(chance.choice((1, 2, 8))):
                damaged[chance.choice(filled)] = chance.randrange(256)
            path.write_bytes(damaged)
            try:
                db = statecut.Database(path)
            except statecut.Error as error:
                refused += 1
                self.assertIn(str(path), error.text)
                continue
            opened += 1
            with db:
                compare(self, db, path, names)
        self.assertGreater(opened, 5)
        self.assertGreater(refused, 0)

    def test_short_files_are_errors_that_name_the_file(self) -> None:
        whole = support.sound()[0].read_bytes()
        path = support.folder() / "short.dir"
        path.write_bytes(whole)
        statecut.Database(path).close()
        for size in (0, 1, 1023, len(whole) // 2):
            path.write_bytes(whole[:size])
            with self.assertRaises(statecut.Error) as caught:
                statecut.Database(path)
            self.assertIn(str(path), caught.exception.text)


if __name__ == "__main__":
    unittest.main()
