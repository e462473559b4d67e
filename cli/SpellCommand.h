#pragma once
// "tarvos spell": checks the spelling of UTF-8 lines from standard input and
// prints one line per proposed correction:
//   LINE<TAB>OFFSET<TAB>WRITTEN<TAB>PROPOSED
// LINE counts from 1, OFFSET is the byte offset in that line. Needs the
// engine's spelling check ("SpellCheck" on in the data directory).
#include <istream>
#include <ostream>
#include <string>

// The process exit status: 0 when every line was checked.
int RunSpell(const std::string& sDataDir, std::istream& in, std::ostream& out, std::ostream& err);
