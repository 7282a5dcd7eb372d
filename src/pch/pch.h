#pragma once
// What many sources of the core include, compiled once in builds that have tests. A source names
// its includes all the same: other builds have no precompiled header.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "base/procobj.h"
#include "base/stream.h"
#include "dbfiles/controlrec.h"
#include "tables/directory.h"
#include "tables/refpointers.h"
#include "tables/rows.h"
