#pragma once
// The lookups by ZIP, city, phonetic key, street and firm, the pointers to them, the name hash
// index behind them and the block cache.

#include "core/hash/namehash.h"
#include "core/lookup/cache.h"
#include "core/lookup/cities.h"
#include "core/lookup/dispatch.h"
#include "core/lookup/firm.h"
#include "core/lookup/street.h"
#include "core/lookup/zip.h"
