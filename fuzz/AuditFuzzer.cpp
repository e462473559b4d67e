// Audit rules on hostile input; the first byte chooses what is fed:
// 0 "<audit>" items, 1 a JSON rule (added, then edited into rule 0),
// 2 an audit file beside a valid rule set. Whatever is accepted must save,
// load back to the same list and export.
#include <cstdint>
#include <string>

#include "FuzzSupport.h"
#include "rules/Audit.h"

namespace {

const char kRuleSet[] =
    "<item><no>1</no><rule>{[合计]}{[/m]}s</rule><argument>total|合计;count|数量;</argument></item>";

// A saved rule set with two attributes, shared by every run.
std::string RuleFolder() {
  static const std::string s_sFolder = [] {
    std::string sFolder = FuzzPath("audit-");
    CZYG zyg(sFolder.c_str(), 1);
    zyg.ImportRuleFromMem(kRuleSet, true);
    return sFolder;
  }();
  return s_sFolder;
}

std::string AllItems(CAudit& audit) {
  std::string s;
  for (size_t i = 0; i < audit.GetOrgCount(); ++i) s += audit.GetItem((int)i);
  for (size_t i = 0; i < audit.GetRuleCount(); ++i) s += audit.GetRuleText(audit.GetRule(i));
  return s;
}

// Saving and loading again gives the same list.
void CheckRoundTrip(CAudit& audit) {
  const std::string sFile = FuzzPath("audit-round.audit");
  if (audit.Save(sFile) != 1) return;
  CAudit again(RuleFolder().c_str(), 1);
  again.GetZYG()->Load();
  if (again.Load(sFile) != 1 || AllItems(again) != AllItems(audit)) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const int nKind = pData[0] % 3;
  const std::string sText(reinterpret_cast<const char*>(pData + 1), nSize - 1);
  CAudit audit(RuleFolder().c_str(), 1);
  audit.GetZYG()->Load();
  if (nKind == 0) {
    audit.ImportFromMem(sText.c_str(), false);
  } else if (nKind == 1) {
    audit.ImportFromMem("<audit><no>1</no><rule>total &gt; count</rule></audit>", false);
    audit.AddItem(sText.c_str());
    audit.EditItem(0, sText.c_str());
  } else {
    std::string sFile = WriteForLoader("audit-ZYG_1.audit", "AUDT", 1, pData + 1, nSize - 1);
    if (audit.Load(sFile) != 1) return 0;
  }
  audit.GetListId();
  audit.Export(FuzzPath("audit-export.txt"));
  CheckRoundTrip(audit);
  return 0;
}
