#pragma once
// "tarvos seg": segments UTF-8 lines from standard input.
#include <istream>
#include <ostream>
#include <string>

// One output line per input line; returns the process exit status.
int RunSeg(const std::string& sDataDir, bool bTags, const std::string& sUserDict, std::istream& in,
           std::ostream& out, std::ostream& err);
