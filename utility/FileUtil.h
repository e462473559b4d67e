#pragma once
// Small file-system helpers shared by the loaders and writers.
#include <cstdio>
#include <functional>

#include "utility/TString.h"

// Writes a file through fnWrite into a temporary name beside it and renames
// it into place only when fnWrite returned true and every byte reached the
// disk, so a crash or a full disk leaves the old file whole.
bool WriteFileReplacing(const tstring& sFilename, const std::function<bool(FILE*)>& fnWrite);

// True when sPath is a directory this process may list and enter.
bool IsReadableDirectory(const tstring& sPath);

// True when sPath names an existing regular file.
bool IsRegularFile(const tstring& sPath);
