#pragma once
// Conversion between UTF-8 and the local code page: the code set of the
// process locale (read without changing the host's locale). On a UTF-8 or
// plain C/POSIX locale the conversions are identities; under a GBK locale they
// convert through iconv. Bytes that cannot be converted are passed through
// unchanged, so a name is never lost, only left as it came.
#include "utility/TString.h"

// The locale's code set name as iconv knows it, e.g. "UTF-8" or "GBK".
const tstring& GetLocalCodeSet();

tstring UTF8ToANSI(const tstring& sText);
tstring ANSIToUTF8(const tstring& sText);

// A file name handed in by a host (UTF-8) in the local code page; "" for null.
tstring GetAnsiFilename(const char* sFilename);

// Converts between two named code sets; returns false (and leaves sOut
// holding the input) when iconv does not know a code set or meets bytes it
// cannot convert.
bool ConvertCodeSet(const tstring& sIn, const char* sFrom, const char* sTo, tstring& sOut);
