#pragma once
// Database: lookups on a reference database for any number of threads.

#include <statecut/version.h>

#include "core/reader/database.h"
