#pragma once

#include <cstdint>
#include <vector>

namespace tovi::bench {

constexpr int sceneWidth = 1280;
constexpr int sceneHeight = 960;

/// RGB, 8 bits each, with the noise of a sensor. Every seed gives another scene of one of four
/// kinds in turn: a landscape, things on a table, a texture, and clouds, which differ in little
/// but their shapes.
std::vector<std::uint8_t> drawScene(unsigned seed);

} // namespace tovi::bench
