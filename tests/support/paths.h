#pragma once
// Where this build put its programs, and where its sources are. One file is compiled with these
// paths, so that the objects of all others are the same in every folder.

namespace statecut::test {

extern const char kStatecut[];      // the program statecut
extern const char kStatedb[];       // the program statedb
extern const char kSqliteModule[];  // mod_statecut
extern const char kSourceFolder[];  // the top of the source tree

}  // namespace statecut::test
