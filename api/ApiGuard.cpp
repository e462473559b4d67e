#include "api/ApiGuard.h"

#include "utility/ErrorLog.h"

void RecordEscapedFailure(const char* sFunction, const char* sWhat) noexcept {
  try {
    SetLastError(tstring(sFunction) + ": " + sWhat);
  } catch (...) {
    // Out of memory while reporting: nothing more can be said.
  }
}

bool ArgGiven(const char* sFunction, const char* sArgument, const void* pValue) {
  if (pValue != nullptr) return true;
  SetLastError(tstring(sFunction) + ": " + sArgument + " is NULL");
  return false;
}

const char* ThreadCopy(EThreadSlot eSlot, const tstring& sText) {
  thread_local tstring s_sCopy[kSlotCount];
  tstring& sCopy = s_sCopy[eSlot];
  sCopy = sText;
  return sCopy.c_str();
}
