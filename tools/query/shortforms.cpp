#include "query/shortforms.h"

#include <algorithm>
#include <iomanip>
#include <optional>
#include <vector>

#include "query/lists.h"
#include "query/loading.h"
#include "tables/directory.h"

namespace statecut::query {

namespace {

constexpr std::int32_t kLastZip = 99999;
constexpr std::size_t kZipsALine = 12;

std::string inCapitals(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

// Calls find(text) as given, then in capitals, until it is true.
template <typename Find>
bool eitherCase(const std::string& text, Find find) {
  return find(text) || find(inCapitals(text));
}

std::int32_t lengthOf(const std::string& text) { return static_cast<std::int32_t>(text.size()); }

std::string printable(const unsigned char* bytes, std::size_t count) {
  std::string text(reinterpret_cast<const char*>(bytes), count);
  for (char& c : text)
    if (c < 0x20 || c > 0x7E) c = '?';
  return text;
}

std::string cityText(const CityNameRow* row) {
  if (row == nullptr) return "?";
  const auto name = row->get(CityNameRow::name);
  const auto length = std::min<std::size_t>(row->get(CityNameRow::nameLength), name.size());
  return printable(name.data(), length) + " " + printable(row->get(CityNameRow::state).data(), 2);
}

std::string packedText(GetName* get, std::uint32_t offset, Session& session) {
  std::int32_t length = 0;
  const char* name = get(offset, &length, session.proc());
  if (name == nullptr || length < 0) return "?";
  return printable(reinterpret_cast<const unsigned char*>(name), static_cast<std::size_t>(length));
}

std::vector<std::uint16_t> cityKeysOf(Session& session, const ZipDataRow* zip) {
  const KeyRow* keys = dbGetCityKeysPtr(zip);
  if (keys == nullptr) return {};
  const std::size_t count = zip->get(ZipDataRow::cityKeysCount);
  const auto bytes =
      static_cast<std::uint64_t>(tableBytes(session.ref(), TableId::kZipMultiCityLists));
  const auto list = listBytes(keys->bytes.data(), count * KeyRow::size, {kSlotZipMultiCity, bytes});
  std::vector<std::uint16_t> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = le::get<2>(list.data() + i * KeyRow::size);
  return values;
}

void showPartition(const char* name, std::uint32_t rba, std::optional<std::uint32_t> bytes,
                   std::ostream& out) {
  out << "  " << std::left << std::setw(10) << name << std::right;
  if (rba == 0) {
    out << std::setw(12) << "none"
        << "\n";
    return;
  }
  out << std::setw(12) << rba << std::setw(12) << (bytes ? std::to_string(*bytes) : "unknown")
      << "\n";
}

void showCityLine(const CityNameRow* row, std::ostream& out) {
  const CityDataRow* data = dbGetCityData(row->get(CityNameRow::cityKey));
  out << std::left << std::setw(32) << cityText(row) << std::right;
  if (data != nullptr) {
    const std::uint32_t zips = data->get(CityDataRow::zipCount);
    out << std::setw(6) << zips << (zips == 1 ? " ZIP code" : " ZIP codes");
  }
  out << "\n";
}

bool showPattern(const std::string& state, const std::string& pattern, std::ostream& out) {
  std::int32_t at = dbFindNearestCity(state.c_str(), pattern.c_str());
  if (at == -1) return false;
  for (; at != -1; at = dbFindNextCity(state.c_str(), pattern.c_str(), at)) {
    // The result is the position behind the match.
    const CityNameRow* row = rowAt<CityNameRow>(kSlotCityNames, static_cast<std::uint32_t>(at - 1),
                                                static_cast<std::uint32_t>(at));
    if (row != nullptr) showCityLine(row, out);
  }
  return true;
}

bool showExactCity(Session& session, const std::string& state, const std::string& name,
                   std::ostream& out) {
  const CityNameRow* row = dbFindCity(state.c_str(), name.c_str(), lengthOf(name));
  if (row == nullptr) return false;
  const std::uint32_t key = row->get(CityNameRow::cityKey);
  out << cityText(row) << "\n  ZIP codes";
  std::size_t shown = 0;
  for (std::int32_t zip = 1; zip <= kLastZip; ++zip) {
    std::uint32_t zipKey = 0;
    const ZipDataRow* data = dbGetZipData(zip, &zipKey);
    if (data == nullptr) continue;
    const auto keys = cityKeysOf(session, data);
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) continue;
    if (shown != 0 && shown % kZipsALine == 0) out << "\n           ";
    out << " " << std::setw(5) << std::setfill('0') << zip << std::setfill(' ');
    ++shown;
  }
  out << (shown == 0 ? " none\n" : "\n");
  return true;
}

bool showVariation(Session& session, const char* title, const std::string& name, std::int32_t kind,
                   std::ostream& out) {
  std::int8_t flag = 0;
  std::int32_t count = 0;
  const ProcObj& members = *session.proc();
  const std::uint32_t* keys =
      members.pfnFindStreetVar(name.c_str(), lengthOf(name), nullptr, 0, kind, &flag, &count);
  if (keys == nullptr || count == 0) return false;
  out << title << " " << name << "\n";
  for (std::int32_t i = 0; i < count; ++i)
    out << "  " << packedText(members.pfnGetStreetNameUSPS, keys[i], session) << " (key " << keys[i]
        << ")\n";
  return true;
}

bool showStreetAs(Session& session, const std::string& name, std::ostream& out) {
  const ProcObj& members = *session.proc();
  const auto key = members.pfnFindStreetKey(name.c_str(), lengthOf(name), session.proc());
  bool found = key != -1;
  if (found)
    out << "street "
        << packedText(members.pfnGetStreetNameUSPS, static_cast<std::uint32_t>(key), session)
        << " (key " << key << ")\n";
  found = showVariation(session, "standardized form", name, kStandardVariation, out) || found;
  return showVariation(session, "phonetic form", name, kPhoneticVariation, out) || found;
}

}  // namespace

bool showZip(Session& session, std::int32_t zip, std::ostream& out) {
  std::uint32_t key = 0;
  const ZipDataRow* row = dbGetZipData(zip, &key);
  if (row == nullptr) return false;
  out << "ZIP " << std::setw(5) << std::setfill('0') << zip << std::setfill(' ') << "\n";
  for (const std::uint16_t cityKey : cityKeysOf(session, row)) {
    const CityDataRow* city = dbGetCityData(cityKey);
    const CityNameRow* name =
        city == nullptr ? nullptr
                        : session.proc()->pfnGetCityUSPS(
                              static_cast<std::int32_t>(city->get(CityDataRow::nameUsps)));
    out << "  city      " << cityText(name) << "\n";
  }
  const ZipBytesRow* sizes =
      hasZipBytes(session)
          ? rowAt<ZipBytesRow>(kSlotZipBytes, key, session.ref().get(RefControlRec::zipDataCount))
          : nullptr;
  const auto size = [sizes](auto field) -> std::optional<std::uint32_t> {
    if (sizes == nullptr) return std::nullopt;
    return sizes->get(field);
  };
  out << "  partition          RBA       bytes\n";
  showPartition("SFH", row->get(ZipDataRow::sfhRba), size(ZipBytesRow::sfhBytes), out);
  showPartition("POB", row->get(ZipDataRow::pobRba), size(ZipBytesRow::pobBytes), out);
  showPartition("RR", row->get(ZipDataRow::rrRba), size(ZipBytesRow::rrBytes), out);
  if (const FinMultiZipRow* area = dbGetZipFinMltZpRBA(row); area != nullptr)
    out << "  finance area of " << area->get(FinMultiZipRow::zipCount)
        << " ZIP codes, partition at RBA " << area->get(FinMultiZipRow::rba) << "\n";
  return true;
}

bool showCity(Session& session, const std::string& state, const std::string& name,
              std::ostream& out) {
  if (state.size() != 2) return false;
  return eitherCase(state, [&](const std::string& stateText) {
    return eitherCase(name, [&](const std::string& text) {
      return text.find('*') != std::string::npos ? showPattern(stateText, text, out)
                                                 : showExactCity(session, stateText, text, out);
    });
  });
}

bool showStreet(Session& session, const std::string& name, std::ostream& out) {
  return eitherCase(name,
                    [&](const std::string& text) { return showStreetAs(session, text, out); });
}

bool showFirm(Session& session, const std::string& name, std::ostream& out) {
  return eitherCase(name, [&](const std::string& text) {
    const ProcObj& members = *session.proc();
    const auto key = members.pfnFindFirm(text.c_str(), lengthOf(text), session.proc());
    if (key == -1) return false;
    out << "firm " << packedText(members.pfnGetFirmName, static_cast<std::uint32_t>(key), session)
        << " (key " << key << ")\n";
    return true;
  });
}

}  // namespace statecut::query
