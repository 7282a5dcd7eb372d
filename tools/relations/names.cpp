#include "relations/names.h"

namespace statecut::relations {

namespace {

// The name of a city: empty for none, and with a fault for a key that leads nowhere.
CityName nameOfCity(const Source& source, const char* table, const void* record,
                    std::uint32_t cityKey, Error& fault) {
  if (cityKey == 0) return {};
  const Database& database = source.database();
  const City city = database.cityData(cityKey);
  if (!city) {
    fault = source.damage(table, record, "has a city key that leads out of the city data");
    return {};
  }
  const std::uint32_t position = city->get(CityDataRow::nameUsps);
  const CityName name = position == 0 ? CityName() : database.cityName(position);
  if (position != 0 && !name)
    fault = source.damage("City data", city.row, "leads to a name behind the city names");
  return name;
}

}  // namespace

Value cityText(const Source& source, const char* table, const void* record, std::uint32_t cityKey,
               Error& fault) {
  fault = Error();
  const CityName name = nameOfCity(source, table, record, cityKey, fault);
  if (name) return Value::text(nameOf(*name));
  return fault.code == ErrorCode::kNone ? Value::null() : Value::fault();
}

Value cityPosition(const Source& source, const char* table, const void* record,
                   std::uint32_t cityKey, Error& fault) {
  fault = Error();
  const CityName name = nameOfCity(source, table, record, cityKey, fault);
  if (name) return Value::integer(name.key);
  return fault.code == ErrorCode::kNone ? Value::null() : Value::fault();
}

}  // namespace statecut::relations
