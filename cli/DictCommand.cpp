#include "cli/DictCommand.h"

#include "tarvos.h"

namespace {
int Fail(const std::string& sWhat, std::ostream& err) {
  err << "tarvos dict: " << sWhat << ": " << KS_GetLastErrorMsg() << "\n";
  return 1;
}

int Scan(const _tDictOptions& o, std::istream& in, std::ostream& out) {
  std::string sLine;
  while (std::getline(in, sLine)) {
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    const char* sFound = KS_ScanDetail(sLine.c_str(), o.mode, o.handle);
    out << (sFound ? sFound : "");
    if (o.mode != 1) out << '\n';
  }
  return 0;
}

int Act(const _tDictOptions& o, std::istream& in, std::ostream& out, std::ostream& err) {
  if (o.action == "scan") return Scan(o, in, out);
  if (o.action == "import") {
    const std::string sBefore = TARVOS_GetLastErrorMsg();
    int nCount = KS_ImportUserDict(o.file.c_str(), o.abbrev, o.overwrite, o.handle);
    if (nCount <= 0) return Fail("nothing imported from " + o.file, err);
    out << nCount << " entries imported into keyword list " << o.handle << "\n";
    const std::string sAfter = TARVOS_GetLastErrorMsg();
    if (sAfter != sBefore && !sAfter.empty()) err << "tarvos dict: refused (the last one): " << sAfter << "\n";
    return 0;
  }
  int nCount = o.action == "export" ? KS_ExportKeyDict(o.file.c_str(), o.handle)
                                    : KS_DeleteUserDict(o.file.c_str(), o.handle);
  if (nCount < 0) return Fail("cannot " + o.action + " " + o.file, err);
  out << nCount << (o.action == "export" ? " entries written to " : " entries removed, named by ") << o.file << "\n";
  return 0;
}
}  // namespace

int RunDict(const std::string& sDataDir, const _tDictOptions& options, std::istream& in, std::ostream& out,
            std::ostream& err) {
  if (KS_Init(sDataDir.c_str(), 1) != 1 && options.action != "import")
    return Fail("cannot start the keyword scanner on " + sDataDir, err);
  int nStatus = Act(options, in, out, err);
  KS_Exit();
  return nStatus;
}
