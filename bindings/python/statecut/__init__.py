"""Lookups on a reference database of US postal addresses.

    with statecut.Database("city.dir") as db:
        city = db.city("TX", "AUSTIN")
        if city is not None:
            print(db.city_zips(city.city_key))

A database never changes once it is open; any number of threads may use one. Names are upper case,
as they stand in the file. What is not there is None; an Error says that something went wrong.
"""

from ._database import Database, PartitionKind, VariationKind
from ._error import Code, Error
from ._library import LIBRARY, VERSION
from ._records import City, CityData, Firm, Info, Phonetic, Share, Street, Zip

__version__ = VERSION
__all__ = [
    "LIBRARY",
    "City",
    "CityData",
    "Code",
    "Database",
    "Error",
    "Firm",
    "Info",
    "PartitionKind",
    "Phonetic",
    "Share",
    "Street",
    "VariationKind",
    "Zip",
]
