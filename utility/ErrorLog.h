#pragma once
// The process-wide last-error text and the engine's two log files.
//
// Logging is off by default, so tests and read-only installations leave no
// files behind. It is switched on by the environment variable TARVOS_LOG_DIR:
// when it names a writable folder, errors are appended to "<dir>/%Y%m%d.err"
// and progress lines to "<dir>/%Y%m%d.log", each line "[%Y-%m-%d %H:%M:%S]\t<text>".
#include "utility/TString.h"

// Replaces the last-error text (never appends), and the calling thread's own
// last-error text, and writes it to the error log.
void SetLastError(const tstring& sText);

// SetLastError of a message naming a handle: sFormat holds one "%d".
void SetHandleError(const char* sFormat, int handle);

// A copy of the last-error text of the process (whichever thread failed
// last); "" when no failure happened yet.
tstring GetLastError();

// The last-error text of the calling thread; "" when it never failed.
const tstring& GetThreadLastError();

// Forgets the last-error text (used when the engine shuts down).
void ClearLastError();

// Appends one stamped line to the error log, when logging is on.
void WriteError(const tstring& sText);

// Appends one stamped line to the progress log, when logging is on.
void WriteLog(const tstring& sText);

// Sets the last error "<service> is not available in this build" and returns
// nFail: the answer of every service that is declared but not built yet.
int ServiceMissing(const char* sService, int nFail = 0);
