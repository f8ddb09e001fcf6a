// The records of a network as the bytes of its file, on any machine.
//
//   unsigned char bytes[sizeof(CNetwork::CLink)];
//   Encode(link, bytes);
//   Decode(bytes, link);
//
// Files are little-endian. A machine that stores numbers so writes and reads whole pools as they
// lie; another one goes through these, record by record.

#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include <quillaven/network/network.h>

template <class Number>
unsigned char *PutNumber(Number number, unsigned char *out) {
  for (unsigned int i = 0; i < sizeof number; ++i)
    *out++ = static_cast<unsigned char>(number >> (8 * i) & 0xFFU);
  return out;
}

template <class Number>
unsigned char const *TakeNumber(unsigned char const *in, Number &number) {
  number = 0;
  for (unsigned int i = 0; i < sizeof number; ++i)
    number |= static_cast<Number>(static_cast<Number>(*in++) << (8 * i));
  return in;
}

inline void Encode(CNetwork::CNode const &node, unsigned char *out) {
  out = PutNumber(std::bit_cast<std::uint64_t>(node.x), out);
  out = PutNumber(std::bit_cast<std::uint64_t>(node.y), out);
  out = PutNumber(node.inLinks, out);
  PutNumber(node.outLinks, out);
}

inline void Decode(unsigned char const *in, CNetwork::CNode &node) {
  std::uint64_t x = 0;
  std::uint64_t y = 0;
  in = TakeNumber(in, x);
  in = TakeNumber(in, y);
  in = TakeNumber(in, node.inLinks);
  TakeNumber(in, node.outLinks);
  node.x = std::bit_cast<double>(x);
  node.y = std::bit_cast<double>(y);
}

inline void Encode(CNetwork::CLink const &link, unsigned char *out) {
  out = PutNumber(link.from, out);
  out = PutNumber(link.to, out);
  PutNumber(static_cast<std::uint32_t>(link.type) << 24 | link.id, out);
}

inline void Decode(unsigned char const *in, CNetwork::CLink &link) {
  std::uint32_t word = 0;
  in = TakeNumber(in, link.from);
  in = TakeNumber(in, link.to);
  TakeNumber(in, word);
  link.type = static_cast<unsigned char>(word >> 24);
  link.id = word & 0xFFFFFFU;
}

inline void Encode(CNetwork::CIdListElem const &cell, unsigned char *out) {
  out = PutNumber(cell.link, out);
  PutNumber(cell.next, out);
}

inline void Decode(unsigned char const *in, CNetwork::CIdListElem &cell) {
  in = TakeNumber(in, cell.link);
  TakeNumber(in, cell.next);
}

inline void Encode(std::array<char, 32> const &name, unsigned char *out) {
  std::memcpy(out, name.data(), name.size());
}

inline void Decode(unsigned char const *in, std::array<char, 32> &name) {
  std::memcpy(name.data(), in, name.size());
}
