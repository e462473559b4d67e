#pragma once
// Small file-system helpers shared by the loaders and writers.
#include <cstdio>
#include <functional>

#include <json/json.h>

#include "utility/TString.h"

// Writes a file through fnWrite into a temporary name beside it and renames
// it into place only when fnWrite returned true and every byte reached the
// disk, so a crash or a full disk leaves the old file whole.
bool WriteFileReplacing(const tstring& sFilename, const std::function<bool(FILE*)>& fnWrite);

// Reads a whole file into sText. False (sText empty) when it cannot be read.
bool ReadFileText(const tstring& sPath, tstring& sText);

// Reads a whole JSON file whose top is an object. False when the file cannot
// be read or is not such a JSON text.
bool ReadJsonObjectFile(const tstring& sPath, Json::Value& root);

// True when sPath is a directory this process may list and enter.
bool IsReadableDirectory(const tstring& sPath);

// True when sPath names an existing regular file.
bool IsRegularFile(const tstring& sPath);

// The process's working directory; "." when it cannot be read. The engine
// reads it but never changes it.
tstring CurrentDirectory();

// sPath made absolute against the working directory (unchanged when it is
// absolute already); "" stays "".
tstring AbsolutePath(const tstring& sPath);
