#pragma once
// The rows of the reference tables, their readers, the loaded tables and their release.

#include "core/base/memory.h"
#include "core/tables/dbapi.h"
#include "core/tables/refpointers.h"
#include "core/tables/rows.h"
#include "core/tables/tolvfree.h"
