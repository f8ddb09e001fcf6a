// A hint that memory is about to be read and written.
//
//   Prefetch(&table[slot]);   // and meanwhile something else
//
// It changes nothing but the time that the access takes. Every compiler that the library is built
// with knows it.

#pragma once

inline void Prefetch(void const *address) {
  __builtin_prefetch(address, 1);
}
