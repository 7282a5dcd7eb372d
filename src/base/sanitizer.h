#pragma once
// The address sanitizer knows the blocks of the heap alone; here it is told of others.

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define STATECUT_ADDRESS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define STATECUT_ADDRESS_SANITIZER
#endif
#ifdef STATECUT_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#endif

namespace statecut {

#ifdef STATECUT_ADDRESS_SANITIZER
inline constexpr bool kAddressSanitizer = true;
inline void forbidBytes(const void* from, std::size_t count) {
  __asan_poison_memory_region(from, count);
}
inline void permitBytes(const void* from, std::size_t count) {
  __asan_unpoison_memory_region(from, count);
}
inline bool isForbidden(const void* byte) { return __asan_address_is_poisoned(byte) != 0; }
#else
inline constexpr bool kAddressSanitizer = false;
inline void forbidBytes(const void*, std::size_t) {}
inline void permitBytes(const void*, std::size_t) {}
inline bool isForbidden(const void*) { return false; }
#endif

}  // namespace statecut
