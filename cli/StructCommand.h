#pragma once
// "tarvos struct": imports a document and writes its structure file.
#include <ostream>
#include <string>

// Prints the structure file's path; returns the process exit status.
int RunStruct(const std::string& sDataDir, const std::string& sFile, bool bJson, std::ostream& out,
              std::ostream& err);
