#pragma once
// Conversion between UTF-8 and the local code page: the code set of the
// process locale (read without changing the host's locale). On a UTF-8 or
// plain C/POSIX locale the conversions are identities; under a GBK locale they
// convert through iconv.
//
// Invalid input is passed through, never replaced: a byte sequence that the
// source code set does not allow (or whose character the target cannot hold)
// is copied unchanged, byte by byte, and conversion goes on after it. A name
// is thus never lost, only left as it came where it could not be converted.
#include "utility/TString.h"

// The locale's code set name as iconv knows it, e.g. "UTF-8" or "GBK".
const tstring& GetLocalCodeSet();

tstring UTF8ToANSI(const tstring& sText);
tstring ANSIToUTF8(const tstring& sText);

// A file name handed in by a host (UTF-8) in the local code page; "" for null.
tstring GetAnsiFilename(const char* sFilename);

// Converts between two named code sets, strictly: returns false (and leaves
// sOut holding the input) when iconv does not know a code set or meets bytes
// it cannot convert.
bool ConvertCodeSet(const tstring& sIn, const char* sFrom, const char* sTo, tstring& sOut);

// Converts between two named code sets, passing unconvertible bytes through
// as described above. An unknown code set gives the input unchanged.
tstring ConvertLenient(const tstring& sIn, const char* sFrom, const char* sTo);

// GB18030 (a superset of GBK and GB2312) to UTF-8 and back, leniently.
tstring GBKToUTF8(const tstring& sText);
tstring UTF8ToGBK(const tstring& sText);
