"""The interface: what it takes, what it gives back, what it refuses."""

import concurrent.futures
import dataclasses
import gc
import os
import pathlib
import pickle
import re
import subprocess
import sys
import unittest
from collections.abc import Callable
from typing import Any

import statecut
import support
from statecut import Code, PartitionKind, VariationKind, _library


class Records(unittest.TestCase):
    def setUp(self) -> None:
        self.db = statecut.Database(*support.sound())
        self.addCleanup(self.db.close)

    def test_a_zip_code_is_five_digits_of_text(self) -> None:
        found = self.db.zip("75203")
        assert found is not None
        self.assertEqual((found.code, found.state), ("75203", "TX"))
        others = ("", "7520", "075203", " 75203", "75203\n", "+7520", "٧٥٢٠٣", "abcde", "00000")
        for other in others:
            self.assertIsNone(self.db.zip(other), other)
            self.assertEqual(self.db.find_zips([other, "75203"]), [None, found], other)
        with self.assertRaises(TypeError):
            self.db.zip(75203)  # type: ignore[arg-type]

    def test_records_are_frozen_hashable_and_outlive_the_database(self) -> None:
        city = self.db.city("TX", "DALLAS")
        assert city is not None
        self.db.close()
        gc.collect()
        self.assertEqual((city.state, city.name), ("TX", "DALLAS"))
        with self.assertRaises(dataclasses.FrozenInstanceError):
            city.name = "AUSTIN"  # type: ignore[misc]
        self.assertEqual({city: 1}[pickle.loads(pickle.dumps(city))], 1)

    def test_iterators_give_whole_tables(self) -> None:
        zips = list(self.db.zips())
        self.assertEqual([z.code for z in zips], sorted(z.code for z in zips))
        self.assertEqual(zips, self.db.find_zips(z.code for z in zips))
        cities = list(self.db.city_names())
        self.assertEqual(cities, self.db.find_cities((c.state, c.name) for c in cities))
        streets = list(self.db.streets())
        self.assertGreater(len(streets), 20)
        self.assertEqual(streets, [self.db.street_by_key(s.key) for s in streets])
        firms = list(self.db.firms())
        self.assertEqual(firms, self.db.find_firms(f.name for f in firms))

    def test_patterns_give_the_cities_that_fit(self) -> None:
        texas = [c for c in self.db.city_names() if c.state == "TX"]
        patterns: list[tuple[str, Callable[[str], bool]]] = [
            ("SP*", lambda name: name.startswith("SP")),
            ("SP", lambda name: name.startswith("SP")),
            ("*SE", lambda name: name.endswith("SE")),
            ("*RIN*", lambda name: "RIN" in name),
        ]
        for pattern, fits in patterns:
            self.assertEqual(
                list(self.db.cities("TX", pattern)), [c for c in texas if fits(c.name)], pattern
            )
        self.assertTrue(list(self.db.cities("TX", "SP*")))
        for pattern in ("", "*", "**", "\u4e2d*"):
            self.assertEqual(list(self.db.cities("TX", pattern)), [], pattern)

    def test_zip_codes_of_a_city_are_those_that_have_it(self) -> None:
        for city in self.db.city_names():
            have = [z.code for z in self.db.zips() if z.code and self._has(z, city.city_key)]
            if city.city_key:
                self.assertEqual(self.db.city_zips(city.city_key), have, city)

    def _has(self, found: statecut.Zip, city_key: int) -> bool:
        data = self.db.city_data(city_key)
        return data is not None and data.name_usps in [
            c.key for c in self.db.zip_cities(found.code)
        ]

    def test_partitions_are_the_bytes_of_the_range_file(self) -> None:
        whole = support.sound()[1].read_bytes()
        found = self.db.zip("75203")
        assert found is not None
        for kind, rba in (
            (PartitionKind.STREET, found.street_rba),
            (PartitionKind.PO_BOX, found.po_box_rba),
            (PartitionKind.RURAL_ROUTE, found.rural_route_rba),
        ):
            size = self.db.partition_size("75203", kind)
            assert size
            self.assertEqual(self.db.partition("75203", kind), whole[rba : rba + size])
        with self.assertRaises(statecut.Error) as caught:
            self.db.partition("00001", PartitionKind.STREET)
        self.assertEqual(caught.exception.code, Code.NO_PARTITION)

    def test_variations_are_streets(self) -> None:
        with self.assertRaises(ValueError):
            self.db.variations(VariationKind.PHONETIC, "A", 65536)
        self.assertEqual(self.db.variations(VariationKind.STANDARD, "\u4e2d"), [])

    def test_a_truncated_name_that_fits_several_is_ambiguous(self) -> None:
        with self.assertRaises(statecut.Error) as caught:
            self.db.truncated_city("TX", "S")
        self.assertEqual(caught.exception.code, Code.AMBIGUOUS)

    def test_the_states_and_the_times_tell_a_cut(self) -> None:
        self.assertEqual(self.db.states(), ["AE", "OK", "PR", "TX", "VT"])
        self.assertFalse(self.db.is_cut())
        with statecut.Database(*support.cut()) as cut:
            self.assertEqual(cut.states(), ["OK", "TX"])
            self.assertIsNotNone(cut.info().cut_time)
            self.assertEqual(cut.info().build_time, self.db.info().build_time)
            found = cut.zip("75203")
            assert found is not None
            self.assertIsNone(found.state)
            self.assertIsNone(cut.partition_size("75203", PartitionKind.STREET))
            with self.assertRaises(statecut.Error) as caught:
                cut.partition("75203", PartitionKind.STREET)
            self.assertEqual(caught.exception.code, Code.UNKNOWN)
            whole = self.db.partition("75203", PartitionKind.STREET)
            self.assertEqual(
                cut.partition("75203", PartitionKind.STREET, len(whole)),
                whole,
            )

    def test_names_that_no_file_holds_are_not_found(self) -> None:
        garbage = ["\u4e2d", "\ud800", "\0", "A" * 10000, "", "\xff" * 28, "DALLAS\0"]
        known = self.db.city("TX", "DALLAS")
        for text in garbage:
            self.assertIsNone(self.db.city("TX", text), ascii(text[:40]))
            self.assertIsNone(self.db.city(text, "DALLAS"))
            self.assertIsNone(self.db.street(text))
            self.assertIsNone(self.db.firm(text))
            self.assertIsNone(self.db.phonetic("TX", text))
            questions = [("TX", text), ("TX", "DALLAS"), (text, "DALLAS"), ("TX", "DALLAS")]
            self.assertEqual(self.db.find_cities(questions), [None, known, None, known])
            street = next(self.db.streets())
            self.assertEqual(self.db.find_streets([text, street.name]), [None, street])
        for state in ("T", "TXX", "\u4e2dX", "\0\0"):
            self.assertIsNone(self.db.city(state, "DALLAS"))
            self.assertEqual(
                self.db.find_cities([(state, "DALLAS"), ("TX", "DALLAS")]), [None, known]
            )

    def test_keys_that_no_table_has_are_not_found(self) -> None:
        self.assertIsNotNone(self.db.zip_by_key(1))
        for key in (-1, 2**31, 2**32, 2**32 + 1, 2**64 + 1, -(2**32) + 1):
            calls: list[Any] = [
                self.db.zip_by_key,
                self.db.city_by_key,
                self.db.city_data,
                self.db.street_by_key,
                self.db.firm_by_key,
                self.db.phonetic_by_key,
                self.db.finance,
                self.db.general_delivery,
                self.db.county,
                self.db.urbanization,
                lambda key: self.db.multi_zips(key, 1),
                lambda key: self.db.multi_zips(1, key),
                lambda key: self.db.city_finance_keys(key, 1),
                lambda key: self.db.city_zip_entries(key, 1),
                lambda key: self.db.city_zip_entries(1, key),
                lambda key: self.db.city_share(key, PartitionKind.STREET),
            ]
            for call in calls:
                self.assertIsNone(call(key), (call, key))
            self.assertEqual(self.db.city_zips(key), [])

    def test_batches_of_any_size(self) -> None:
        self.assertEqual(self.db.find_cities([]), [])
        self.assertEqual(self.db.find_zips([]), [])
        self.assertEqual(self.db.find_streets([]), [])
        self.assertEqual(self.db.find_firms(iter([])), [])
        many = [("TX", "DALLAS"), ("TX", "NOWHERE"), ("OK", "DALLAS")] * 1000
        one = [self.db.city(*question) for question in many[:3]]
        self.assertEqual(self.db.find_cities(many), one * 1000)


class Errors(unittest.TestCase):
    def test_say_what_is_wrong_with_which_file(self) -> None:
        with self.assertRaises(statecut.Error) as caught:
            statecut.Database("/nowhere")
        error = caught.exception
        self.assertEqual((error.code, error.number), (Code.OPEN_FILE, 2))
        self.assertEqual(str(error), "cannot open /nowhere: No such file or directory")
        again = pickle.loads(pickle.dumps(error))
        self.assertEqual((again.code, again.text), (error.code, error.text))
        with self.assertRaises(statecut.Error) as caught:
            statecut.Database(support.sound()[1])
        self.assertEqual(caught.exception.code, Code.NOT_DATABASE)
        with self.assertRaises(statecut.Error) as caught:
            statecut.Database.from_bytes(b"abcd")
        self.assertEqual(caught.exception.code, Code.NOT_DATABASE)
        with self.assertRaises(ValueError):
            statecut.Database("city.dir\0x")

    def test_of_a_path_of_any_bytes_tell_the_path(self) -> None:
        with self.assertRaises(statecut.Error) as caught:
            statecut.Database(b"/nowhere/\xff")
        self.assertEqual(os.fsencode(str(caught.exception)).count(b"/nowhere/\xff:"), 1)

    def test_every_call_on_a_closed_database_is_one(self) -> None:
        db = statecut.Database(support.sound()[0])
        db.close()
        db.close()
        self.assertTrue(db.closed)
        calls: list[Any] = [
            db.info,
            db.is_cut,
            db.states,
            db.index_names,
            db.zips,
            db.city_names,
            db.streets,
            db.firms,
            lambda: db.zip("75203"),
            lambda: db.zip("garbage"),
            lambda: db.zip_by_key(1),
            lambda: db.zip_by_key(-1),
            lambda: db.find_zips(["75203"]),
            lambda: db.find_zips([]),
            lambda: db.zip_cities("75203"),
            lambda: db.finance(1),
            lambda: db.multi_zips(1, 1),
            lambda: db.partition_size("75203", PartitionKind.STREET),
            lambda: db.partition("75203", PartitionKind.STREET),
            lambda: db.city("TX", "DALLAS"),
            lambda: db.city("", ""),
            lambda: db.city_by_key(1),
            lambda: db.truncated_city("TX", "DAL"),
            lambda: db.cities("TX", "S*"),
            lambda: db.find_cities([("TX", "DALLAS")]),
            lambda: db.city_data(1),
            lambda: db.city_zips(1),
            lambda: db.city_share(1, PartitionKind.STREET),
            lambda: db.city_zip_entries(1, 1),
            lambda: db.city_finance_keys(1, 1),
            lambda: db.phonetic("TX", "TLS"),
            lambda: db.phonetic_by_key(1),
            lambda: db.street("MAIN"),
            lambda: db.street_by_key(0),
            lambda: db.find_streets(["MAIN"]),
            lambda: db.variations(VariationKind.PHONETIC, "MN"),
            lambda: db.firm("MAIN"),
            lambda: db.firm_by_key(0),
            lambda: db.find_firms(["MAIN"]),
            lambda: db.general_delivery(1),
            lambda: db.county(1),
            lambda: db.urbanization(1),
        ]
        for i, call in enumerate(calls):
            with self.assertRaises(statecut.Error, msg=str(i)) as caught:
                call()
            self.assertEqual(caught.exception.code, Code.ARGUMENT)
            self.assertEqual(str(caught.exception), "the database is closed")


class Life(unittest.TestCase):
    def test_an_iterator_that_has_begun_goes_on_after_the_close(self) -> None:
        with statecut.Database(support.sound()[0]) as db:
            expected = list(db.streets())
            walk = db.streets()
            self.assertEqual(next(walk), expected[0])
        del db
        gc.collect()
        self.assertEqual(list(walk), expected[1:])

    def test_threads_ask_one_database_that_another_closes(self) -> None:
        path = support.sound()[0]
        with statecut.Database(path) as db:
            names = [(c.state, c.name) for c in db.city_names()]
            expected = db.find_cities(names)

        def asks(db: statecut.Database) -> int:
            done = 0
            try:
                for _ in range(50):
                    self.assertEqual(db.find_cities(names), expected)
                    self.assertEqual(db.city(*names[0]), expected[0])
                    self.assertEqual(len(db.city_zips(16)), 3)
                    done += 1
            except statecut.Error as error:
                self.assertEqual(error.code, Code.ARGUMENT)
            return done

        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            db = statecut.Database(path)
            whole = [pool.submit(asks, db) for _ in range(8)]
            self.assertEqual([ran.result() for ran in whole], [50] * 8)
            cut_short = [pool.submit(asks, db) for _ in range(8)]
            db.close()
            for ran in cut_short:
                self.assertLessEqual(ran.result(), 50)


class Library(unittest.TestCase):
    def test_the_package_knows_every_function_of_the_header(self) -> None:
        header = (support.SOURCE / "include/statecut/statecut_c.h").read_text()
        declared = set(re.findall(r"STATECUT_API [^;(]*?statecut_(\w+)\(", header))
        self.assertGreater(len(declared), 40)
        self.assertEqual(set(_library.names()), declared | {"version"})

    def _import(self, **environment: str) -> "subprocess.CompletedProcess[str]":
        rest = {k: v for k, v in os.environ.items() if k != "STATECUT_LIBRARY"}
        return subprocess.run(
            [sys.executable, "-c", "import statecut; print(statecut.LIBRARY)"],
            env=rest | environment,
            capture_output=True,
            text=True,
        )

    def test_the_library_is_found_by_its_variable_or_by_the_loader(self) -> None:
        path = pathlib.Path(os.environ["STATECUT_LIBRARY"])
        self.assertEqual(self._import(STATECUT_LIBRARY=str(path)).stdout, f"{path}\n")
        by_loader = self._import(LD_LIBRARY_PATH=str(path.parent))
        self.assertEqual(by_loader.stdout, "libstatecut.so.0\n", by_loader.stderr)

    def test_a_library_that_is_not_there_is_an_import_error(self) -> None:
        missing = self._import(STATECUT_LIBRARY="/nowhere/libstatecut.so.0")
        self.assertEqual(missing.returncode, 1)
        self.assertIn("ImportError: libstatecut.so.0 cannot be loaded (/nowhere/", missing.stderr)


if __name__ == "__main__":
    unittest.main()
