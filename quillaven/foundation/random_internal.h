// The one random draw of the library.

#pragma once

constexpr int kRandomMax = 32767;

/// rand(), its low 15 bits where it has a larger range: the same distribution and, for a seed, the
/// same sequence on every machine with that generator.
int RandomDraw();
