#pragma once
// Opening database files, their control records, numbers and rows over file bytes.

#include "core/dbfiles/apiutil.h"
#include "core/dbfiles/controlrec.h"
#include "core/dbfiles/le.h"
#include "core/dbfiles/row.h"
#include "core/dbfiles/stream.h"
