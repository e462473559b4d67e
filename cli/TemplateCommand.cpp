#include "cli/TemplateCommand.h"

#include "cli/DataDir.h"
#include "tarvos.h"

namespace {

int Fail(const std::string& sWhat, std::ostream& err) {
  err << "tarvos template: " << sWhat << ": " << TARVOS_GetLastErrorMsg() << "\n";
  return 1;
}

int Act(const _tTemplateOptions& o, std::ostream& out, std::ostream& err) {
  if (o.action == "import") {
    int nId = TARVOS_ImportTemplate(o.file.c_str(), o.type, o.organization.c_str(), o.area.c_str(), o.argument.c_str());
    if (nId < 0) return Fail("cannot import " + o.file, err);
    out << "template " << nId << " (" << TARVOS_GetTemplateCount() << " on file)\n";
    return 0;
  }
  if (o.action == "list") {
    out << TARVOS_GetTemplateList(o.type, o.organization.c_str()) << "\n";
    return 0;
  }
  if (o.action == "show") {
    const char* sJson = TARVOS_GetTemplate(o.id);
    if (sJson == nullptr || *sJson == '\0') {
      err << "tarvos template: no template " << o.id << "\n";
      return 1;
    }
    out << sJson;
    return 0;
  }
  if (o.action == "find") {
    int nId = TARVOS_FindTemplate(o.type, o.organization.c_str(), o.area.c_str(), o.argument.c_str());
    if (nId < 0) {
      err << "tarvos template: no template fits; a check would use template 0\n";
      return 1;
    }
    out << nId << "\n";
    return 0;
  }
  if (TARVOS_DeleteTemplate(o.id) < 0) {
    err << "tarvos template: no template " << o.id << "\n";
    return 1;
  }
  out << "deleted template " << o.id << " (" << TARVOS_GetTemplateCount() << " left)\n";
  return 0;
}

}  // namespace

int RunTemplate(const std::string& sDataDir, const _tTemplateOptions& options, std::ostream& out, std::ostream& err) {
  if (!StartEngine(sDataDir, err)) return 1;
  int nExit = Act(options, out, err);
  TARVOS_Exit();
  return nExit;
}
