#pragma once
// Sizes of the multi-ZIP partitions. One table is read in two forms: entries of 6 bytes (16-bit
// key, size) and of 8 bytes (32-bit key, size). Keys compare by their low 16 bits.

#include <cstdint>
#include <optional>
#include <span>

namespace statecut::verify {

enum class MultiZipForm : std::uint32_t { Short = 6, Long = 8 };

// `table` holds 8 bytes per entry. Halves [0, count): in a table that is not sorted in this form
// the halves that are probed decide.
std::optional<std::int32_t> multiZipSize(std::span<const unsigned char> table, MultiZipForm form,
                                         std::uint32_t key);

// First entry that sorts before the one ahead of it, or the number of entries.
std::uint64_t firstUnsorted(std::span<const unsigned char> table, MultiZipForm form);

}  // namespace statecut::verify
