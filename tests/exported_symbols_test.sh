#!/usr/bin/env bash
# Compares what the shared library exports with the committed list, tests/exported_symbols.txt.
#   exported_symbols_test.sh LIBRARY           compares; fails on a difference
#   exported_symbols_test.sh LIBRARY --write   writes the list anew
set -euo pipefail

library=$1
list=$(dirname "$0")/exported_symbols.txt

# Instances of standard templates are exported by every C++ library and are not ours to promise. A
# type from the standard library within one of our signatures is spelled out; the one of strings is
# shortened.
exported() {
  nm -D --defined-only --no-demangle "$library" | awk '{ print $3 }' | sed 's/@.*//' | c++filt |
    grep -vE '^(std::|void std::|bool std::|char\* std::|char const\* std::|int std::|unsigned long std::|(VTT|guard variable|vtable|typeinfo|typeinfo name) for std::|operator |__gnu_cxx|auto std::|decltype|[^(<]* std::)' |
    sed 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' |
    LC_ALL=C sort -u
}

if [ "${2:-}" = "--write" ]; then
  exported > "$list"
  echo "$(wc -l < "$list") symbols written"
elif diff -u "$list" <(exported); then
  echo "$(wc -l < "$list") exported symbols are as listed"
else
  echo "The interface differs from tests/exported_symbols.txt. If that is meant: $0 $library --write" >&2
  exit 1
fi
