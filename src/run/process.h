#pragma once
// What the process needs before a run: its standard descriptors and its signals.

namespace statecut {

// Opens each of descriptors 0 to 2 that is closed on the null device, so that no database or log
// is ever opened as a standard stream.
void guardStandardDescriptors();

// Before anything else: guards the descriptors, lets a file-size limit appear as EFBIG, and makes
// an end for want of memory one with a message and status 255.
void prepareProcess();

}  // namespace statecut
