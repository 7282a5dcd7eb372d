#pragma once
// Opening a database for lookups, and closing it.

#include "core/lookup/session.h"
