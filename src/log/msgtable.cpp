// The message table. Its numbers are part of the interface: never renumber or reuse one.

#include <array>

#include "log/utllgmsg.h"

namespace statecut {
namespace {

constexpr std::array<const char*, kLogMsgCount> makeTable() {
  std::array<const char*, kLogMsgCount> t{};
  t[0] = "";
  t[1] = "Date: %s";
  t[2] = "Log file = <%s>";
  t[3] = "Could not allocate memory for %s.";
  t[4] = "Could not free memory for %s.";
  t[5] = "%s: %#X : %d";
  t[6] = "%s%d";
  t[7] = "%s%s";
  t[8] = "%s%X";
  t[9] = "%40s - required - %10d bytes";
  t[10] = "%s";
  t[11] = "Error Message File Name %s Error %d";
  t[12] = "Engine Error %s: Memory Allocation Failed %s Error %d";
  t[13] = "Test Log Message";
  t[14] = "File Open Failed Function Name %s filename %s";
  t[15] = "External API failed %s Line %d Error %d";
  t[16] = "External API received a NULL %s structure";
  t[17] = "Engine Error %s: Number of tokens found %d";
  t[20] = "ELOT file name not specified in TOLV.CFG file.";
  t[21] = "Detail report file name is null.";
  t[23] = "Initialization failed.";
  t[24] = "File Open Failed Function Name %s File Name %s Return Code %d Reason Code %d";
  t[25] = "Could not read Reference db partition: %s";
  t[26] = "Could not read Range db record: %s";
  t[27] = "Invalid Input during Parser / Isolator initialization.";
  t[28] = "City and ZIP4 db not of same month or same version.";
  t[29] = "DPV path name not specified in TOLV.CFG file.";
  t[30] = "Unable to allocate %d bytes for %s";
  t[31] = "DPV File Open Failed: Function Name %s File %s";
  t[32] = "%s DPV Processing Error %s";
  t[34] = "RDI Option is ON in the Configuration File";
  t[35] = "Error Finding the RDI DLL";
  t[36] = "Error Finding the RdiSubmit Function on the RDI DLL";
  t[37] = "RDI File Open Failed: Function Name %s File %s";
  t[39] = "LACS Error: Function Name: %s Msg: %s";
  t[40] = "DB version (%s) != Engine version (%s)";
  return t;
}

constexpr std::array<const char*, kLogMsgCount> logMsgTable = makeTable();

}  // namespace

const char* logMsgText(std::int32_t number) {
  if (number < 0 || number >= kLogMsgCount) return nullptr;
  const char* text = logMsgTable[static_cast<std::size_t>(number)];
  return text;
}

}  // namespace statecut
