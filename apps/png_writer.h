// PNG files, by a library that is all header.

#pragma once

#include <string>

/// The bytes of a PNG of 24 bits; `pixels` are red, green and blue, row by row from the top.
std::string EncodePng(int width, int height, std::string const &pixels);
