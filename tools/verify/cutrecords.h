#pragma once
// Comparing a record of a cut with the record that the source leads to.

#include <algorithm>
#include <string>

#include "verify/report.h"

namespace statecut::verify {

// Reports the first byte that differs, with its field's name.
template <typename RowType>
void compareRecord(const RowType& cut, const RowType& expected, RuleId ruleId, std::size_t record,
                   std::uint64_t offset, Report& report) {
  if (cut.bytes == expected.bytes) return;
  const auto at = static_cast<std::size_t>(
      std::mismatch(cut.bytes.begin(), cut.bytes.end(), expected.bytes.begin()).first -
      cut.bytes.begin());
  report.add(ruleId, File::Reference, static_cast<std::int64_t>(record), offset + at, [&] {
    const char* name = "";
    forEachField<RowType>([&](const auto& field) {
      if (at >= field.at && at < field.at + field.width) name = field.name;
    });
    return std::string(name) + " differs";
  });
}

}  // namespace statecut::verify
