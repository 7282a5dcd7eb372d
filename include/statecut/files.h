#pragma once
// Opening database files, their control records, numbers and rows over file bytes.

#include "core/base/le.h"
#include "core/base/row.h"
#include "core/base/stream.h"
#include "core/dbfiles/apiutil.h"
#include "core/dbfiles/controlrec.h"
