#pragma once
// "tarvos rules": the extraction rules of a document type.
//   import FILE --type N [--overwrite]   XML "<item>" rules into the type's rule set
//   list --type N                        the rules as JSON (index, number, name, action, field)
//   show ID --type N                     one rule as JSON
//   add JSON --type N                    a rule given as JSON; prints its index
//   delete ID --type N                   (later indexes move down by one)
// "tarvos audit": the audit rules of a document type, the same actions and
// also edit ID JSON; import takes an "<audits>" text of "<audit>" items.
// "tarvos extract FILE --type N [--json]": the facts the type's rules find
// in a document, as a table (key, value, paragraph) or as JSON.
#include <ostream>
#include <string>

struct _tRulesOptions {
  bool audit = false;  // the audit rules instead of the extraction rules
  std::string action;  // import, list, show, add, edit, delete
  std::string file;    // import: the rule file; add, edit: the JSON text
  int type = 1;
  int id = -1;
  bool overwrite = false;
};

// Each returns the process exit status: 0 on success.
int RunRules(const std::string& sDataDir, const _tRulesOptions& options, std::ostream& out, std::ostream& err);
int RunExtract(const std::string& sDataDir, const std::string& sFile, int nType, bool bJson, std::ostream& out,
               std::ostream& err);
