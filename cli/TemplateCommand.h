#pragma once
// "tarvos template": the format templates of a data directory.
//   import FILE --type N [--org O] [--area A] [--arg X]   learn a template from a sample DOCX
//   list [--type N] [--org O]                              arguments and areas on file
//   show ID                                                a template as JSON
//   find --type N [--org O] [--area A] [--arg X]           the template a document would get
//   delete ID                                              (later ids move down by one)
#include <ostream>
#include <string>

struct _tTemplateOptions {
  std::string action;  // import, list, show, find, delete
  std::string file;
  int type = -1;
  int id = -1;
  std::string organization = "*", area = "*", argument = "*";
};

// Returns the process exit status: 0 on success.
int RunTemplate(const std::string& sDataDir, const _tTemplateOptions& options, std::ostream& out, std::ostream& err);
