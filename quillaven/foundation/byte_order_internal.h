// Files are little-endian on every machine.

#pragma once

#include <algorithm>
#include <bit>
#include <vector>

/// A number between the order of a file and the order of the machine; the same work in both
/// directions, and none at all on most machines.
template <class Number>
Number SwappedIfBigEndian(Number number) {
  if constexpr (std::endian::native == std::endian::big && sizeof(Number) > 1) {
    auto *bytes = reinterpret_cast<unsigned char *>(&number);
    std::reverse(bytes, bytes + sizeof(Number));
  }
  return number;
}

template <class Number>
void SwapIfBigEndian(std::vector<Number> &numbers) {
  if constexpr (std::endian::native == std::endian::big && sizeof(Number) > 1)
    for (Number &number : numbers) number = SwappedIfBigEndian(number);
}
