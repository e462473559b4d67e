#pragma once
// "tarvos dict": the keyword lists of the keyword scanner.
//   import FILE [--overwrite] [--abbrev] [--handle N]   a user dictionary into list N (default 0)
//   export FILE [--handle N]                            the list as "Word\tClass\tWeight" lines
//   delete FILE [--handle N]                            remove the entries a file names
//   scan [--mode M] [--handle N]                        scan standard input line by line
// The commands start the scanner alone, not the whole engine, so they work
// whatever the "FilterCheck" switch says.
#include <istream>
#include <ostream>
#include <string>

struct _tDictOptions {
  std::string action;  // import, export, delete, scan
  std::string file;
  int handle = 0;
  int mode = 1;
  bool overwrite = false;
  bool abbrev = false;  // pinyin initials too
};

// The process exit status: 0 on success.
int RunDict(const std::string& sDataDir, const _tDictOptions& options, std::istream& in, std::ostream& out,
            std::ostream& err);
