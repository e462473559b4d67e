#pragma once
// The keyword scanner's entry points. The scanner finds keywords of the
// dictionaries in the "KeyScanner" data folder in a text and lists, for the
// error-word check, corrections in the form "(Check ...)A-->B##C-->D$".
// Its dictionaries are not built yet: start-up succeeds on a readable data
// directory and a scan finds nothing.

// Starts the scanner on a data directory; nEncoding 1 is UTF-8.
// Returns 1, or 0 with its reason in KS_GetLastErrorMsg().
int KS_Init(const char* sDataPath, int nEncoding);

void KS_Exit();

// Scans a text with the dictionary of nHandle in mode nMode. Returns the
// scanner's result text, "" when nothing was found. The text stays valid until
// this thread's next KS_ScanDetail call.
const char* KS_ScanDetail(const char* sText, int nMode, int nHandle);

// Imports a keyword dictionary into the dictionary of nHandle. Returns the
// number of keywords imported; 0 on failure.
int KS_ImportUserDict(const char* sFilename, bool bAbbrevNeeded, bool bOverwrite, int nHandle);

// The scanner's own last failure text. Valid until the next failure.
const char* KS_GetLastErrorMsg();
