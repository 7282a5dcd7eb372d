#pragma once
// The whole interface of the library.

#include "database.h"
#include "files.h"
#include "log.h"
#include "lookup.h"
#include "session.h"
#include "tables.h"
