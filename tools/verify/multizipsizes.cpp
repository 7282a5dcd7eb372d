#include "verify/multizipsizes.h"

#include "base/le.h"

namespace statecut::verify {

namespace {

const unsigned char* entryAt(std::span<const unsigned char> table, MultiZipForm form,
                             std::uint64_t i) {
  return table.data() + i * static_cast<std::uint32_t>(form);
}

}  // namespace

std::optional<std::int32_t> multiZipSize(std::span<const unsigned char> table, MultiZipForm form,
                                         std::uint32_t key) {
  const std::uint32_t wanted = key & 0xFFFF;
  std::uint64_t low = 0, high = table.size() / 8;
  while (low < high) {
    const std::uint64_t mid = (low + high) / 2;
    const unsigned char* entry = entryAt(table, form, mid);
    const std::uint32_t found = le::get<2>(entry);
    if (found == wanted)
      return static_cast<std::int32_t>(le::get<4>(entry + (form == MultiZipForm::Short ? 2 : 4)));
    if (wanted < found)
      high = mid;
    else
      low = mid + 1;
  }
  return {};
}

std::uint64_t firstUnsorted(std::span<const unsigned char> table, MultiZipForm form) {
  const std::uint64_t count = table.size() / 8;
  for (std::uint64_t i = 1; i < count; ++i)
    if (le::get<2>(entryAt(table, form, i - 1)) > le::get<2>(entryAt(table, form, i))) return i;
  return count;
}

}  // namespace statecut::verify
