#pragma once
// The byte string used throughout the engine. Text inside the engine is UTF-8;
// file names in the local code page are converted on the way in and out.
#include <string>

typedef std::string tstring;
