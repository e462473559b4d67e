#pragma once
// Where the command-line tool finds its data directory.
#include <ostream>
#include <string>

// --data when given, else $TARVOS_DATA, else "../share/tarvos" beside the
// tool's own folder when it holds data (an installed tool), else the data
// directory of the build tree when it exists, else the configured install path.
std::string ChooseDataDir(const std::string& sOption);

// Starts the engine on a data directory; on failure says why on err, shuts
// it down again and returns false.
bool StartEngine(const std::string& sDataDir, std::ostream& err);
