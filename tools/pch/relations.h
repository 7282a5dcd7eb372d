#pragma once
// What the sources of the relations include, compiled once in builds that have tests.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "relations/zipwalk.h"
