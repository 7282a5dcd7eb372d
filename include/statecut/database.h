#pragma once
// Database: lookups on a reference database for any number of threads.

#include "core/reader/database.h"
#include "version.h"
