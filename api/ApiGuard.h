#pragma once
// The exception-free boundary of the exported C functions. Every exported
// function's body is one ApiGuard call: whatever escapes the engine becomes
// the last-error text and the function's documented failure value.
#include <exception>
#include <new>

#include "utility/TString.h"

// Records an escaped failure as the last error. Never throws.
void RecordEscapedFailure(const char* sFunction, const char* sWhat) noexcept;

// fn receives sFunction, so its messages can name the exported function.
template <class T, class F>
T ApiGuard(const char* sFunction, T fail, F&& fn) noexcept {
  try {
    return fn(sFunction);
  } catch (const std::bad_alloc&) {
    RecordEscapedFailure(sFunction, "out of memory");
  } catch (const std::exception& e) {
    RecordEscapedFailure(sFunction, e.what());
  } catch (...) {
    RecordEscapedFailure(sFunction, "internal error");
  }
  return fail;
}

// For exported functions without a result.
template <class F>
void ApiGuardVoid(const char* sFunction, F&& fn) noexcept {
  try {
    fn(sFunction);
  } catch (const std::exception& e) {
    RecordEscapedFailure(sFunction, e.what());
  } catch (...) {
    RecordEscapedFailure(sFunction, "internal error");
  }
}

// An optional string argument: NULL reads as "".
inline const char* OrEmpty(const char* sText) { return sText ? sText : ""; }

// Refuses a NULL string argument: sets "<function>: <argument> is NULL" and
// returns false. Use as `if (!ArgGiven(__func__, "sText", sText)) return fail;`.
bool ArgGiven(const char* sFunction, const char* sArgument, const void* pValue);

// The functions that hand out THREAD-lifetime texts, one copy each per thread.
enum EThreadSlot {
  kSlotLastError,
  kSlotThreadLastError,
  kSlotZYGLastError,
  kSlotHtmlError,
  kSlotTemplate,
  kSlotTemplateJson,
  kSlotTemplateList,
  kSlotErrorInfo,
  kSlotEngineInfo,
  kSlotSegment,
  kSlotSpelling,
  kSlotKeyScan,
  kSlotKeyScanError,
  kSlotCount
};

// A thread's own copy of a text, valid until the same slot is used again on
// this thread.
const char* ThreadCopy(EThreadSlot eSlot, const tstring& sText);
