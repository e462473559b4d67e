#pragma once
// Where the command-line tool finds its data directory.
#include <string>

// --data when given, else $TARVOS_DATA, else the data directory of the build
// tree when it exists, else the installed one.
std::string ChooseDataDir(const std::string& sOption);
