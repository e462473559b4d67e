// The rule language on hostile input; the first byte chooses what is fed:
// 0 a pattern (whose written-back form must read back the same), 1 XML
// items, 2 a JSON rule, 3 a rule file beside valid dictionaries.
#include <cstdint>
#include <string>

#include "FuzzSupport.h"
#include "rules/KnowledgeParser.h"
#include "rules/ZYG.h"

namespace {

void CheckPatternRoundTrip(const std::string& sPattern) {
  _tKnowledgeOrg knowledge, again;
  std::string sError;
  if (CKnowledgeParser::ParseKnowledge(sPattern, knowledge, sError) != 1) return;
  for (const _tGridOrg& grid : knowledge.vecGrids)
    for (int nStep : grid.vecSteps)
      if (nStep < 0) return;  // an unclosed block has no written form
  std::string sWritten = CKnowledgeParser::GetKnowledgeStr(knowledge);
  if (CKnowledgeParser::ParseKnowledge(sWritten, again, sError) != 1 ||
      CKnowledgeParser::GetKnowledgeStr(again) != sWritten)
    __builtin_trap();
}

// A saved rule set whose rule file the fuzzer then replaces.
std::string RuleFolder() {
  static const std::string s_sFolder = [] {
    std::string sFolder = FuzzPath("rules-");
    CZYG zyg(sFolder.c_str(), 1);
    zyg.ImportRuleFromMem(
        "<item><no>1</no><rule>{[报告日期;日期]}{[：]0}{[/m]3}s</rule><argument>report_date|报告日期</argument>"
        "<keyname>single_date</keyname></item><item><no>2</no><rule>{[a][-(b)]2+3}s</rule>"
        "<action>generate_tuple</action></item>",
        true);
    return sFolder;
  }();
  return s_sFolder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const int nKind = pData[0] % 4;
  const std::string sText(reinterpret_cast<const char*>(pData + 1), nSize - 1);
  if (nKind == 0) {
    CheckPatternRoundTrip(sText);
  } else if (nKind == 1 || nKind == 2) {
    CZYG zyg("", 1);
    if (nKind == 1) zyg.ImportRuleFromMem(sText.c_str(), false);
    else zyg.AddItem(sText.c_str());
    for (size_t i = 0; i < zyg.GetRuleCount(); ++i) zyg.GetItem((int)i);
    zyg.IndexDump();
  } else {
    const std::string sFolder = RuleFolder();
    std::string sRule = WriteForLoader("rules-ZYG_1.rule", "ZRUL", 1, pData + 1, nSize - 1);
    CZYG zyg(sFolder.c_str(), 1);
    if (zyg.Load(sRule) == 1)
      for (size_t i = 0; i < zyg.GetRuleCount(); ++i) zyg.GetItem((int)i);
  }
  return 0;
}
