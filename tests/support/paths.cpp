#include "support/paths.h"

namespace statecut::test {

const char kStatecut[] = STATECUT_BIN;
const char kStatedb[] = STATEDB_BIN;
const char kSqliteModule[] = STATECUT_SQLITE_MODULE;
const char kSourceFolder[] = STATECUT_SOURCE_DIR;

}  // namespace statecut::test
