// Idrisi palette files: tables of up to 256 colours.
//
//   std::vector<unsigned long> palette;
//   if (ReadIdrisiPalette("Palettes\\Relief.smp", palette)) Use(palette[0]);
//   WriteIdrisiPalette("copy.smp", palette);
//
// The file is binary: the signature "[IDRISI]", six bytes, the first and the last index in use
// (each with a byte behind it), and three bytes red, green, blue for each index from 0. Colours are
// 0x00BBGGRR.

#pragma once

#include <vector>

#include <quillaven/platform/api.h>

/// Reads the entries between the first and the last index: palette[0] is the entry of the first
/// index. A file with fewer entries gives a shorter palette. False if the file cannot be opened or
/// is no palette, which a box tells and which leaves the palette as it was; false too, with the
/// palette filled, if the indices are out of order.
QUILLAVEN_API bool ReadIdrisiPalette(char const *file, std::vector<unsigned long> &palette);

/// Writes a palette, with black entries up to 256. A longer one is written as it is. False, with a
/// box, if the file cannot be created.
QUILLAVEN_API bool WriteIdrisiPalette(char const *file, std::vector<unsigned long> &palette);
