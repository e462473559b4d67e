#include "checker/ThesisPartsCheck.h"

#include <strings.h>

#include <initializer_list>
#include <set>

#include "checker/CheckResult.h"
#include "docx/Document.h"
#include "docx/PaperStructure.h"

namespace {

bool HeadingHolds(const CDocument& doc, std::initializer_list<const char*> words) {
  for (int nIndex : doc.Headings()) {
    const _tParagraph& para = doc.m_vecParagraph[nIndex];
    if (para.level != 1) continue;
    for (const char* szWord : words)
      if (strcasestr(para.text.c_str(), szWord) != nullptr) return true;
  }
  return false;
}

}  // namespace

int CThesisPartsCheck::CheckParts(const CDocument& doc, CCheckResult& result) {
  std::set<int> setLevels;
  for (const _tParagraph& para : doc.m_vecParagraph) setLevels.insert(para.level);
  auto fnHas = [&](int nLevel) { return setLevels.count(nLevel) != 0; };
  const struct {
    const char* szErrorId;
    const char* szPart;
    bool bPresent;
  } kParts[] = {
      {"14.1", "摘要", fnHas(kAbstractCaptionCn)},
      {"14.2", "Abstract", fnHas(kAbstractCaptionEn)},
      {"14.3", "关键词", fnHas(kKeywordCn)},
      {"14.4", "Keywords", fnHas(kKeywordEn)},
      {"14.5", "目录", !doc.ContentEntries().empty()},
      {"14.6", "绪论", HeadingHolds(doc, {"绪论", "引言", "前言", "Introduction"})},
      {"14.7", "结论", HeadingHolds(doc, {"结论", "总结", "结束语", "Conclusion"})},
      {"14.8", "参考文献", fnHas(kReferenceCaption) || doc.ReferenceStart() >= 0},
      {"14.9", "致谢", fnHas(kAcknowledge)},
  };
  int nAdded = 0;
  for (const auto& part : kParts) {
    if (part.bPresent) continue;
    _tCheckResult finding;
    finding.para_id = (uint32_t)-1;
    finding.error_id = part.szErrorId;
    finding.field_id = 5;
    finding.revise_type = 4;
    finding.new_str = part.szPart;
    result.AddResult(finding);
    ++nAdded;
  }
  return nAdded;
}
