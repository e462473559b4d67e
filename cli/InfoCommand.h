#pragma once
// "tarvos info": starts the engine and reports its switches and services.
#include <ostream>
#include <string>

// Returns the process exit status: 0 when the engine started.
int RunInfo(const std::string& sDataDir, std::ostream& out, std::ostream& err);
