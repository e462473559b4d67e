#include "docx/PaperStructure.h"

#include <strings.h>

#include <algorithm>
#include <set>

#include "checker/CheckResult.h"
#include "docx/DocxParser.h"
#include "utility/TextNormalizer.h"

namespace {

enum EPaperLevel {
  kMainText = -500,
  kAbstractCaptionCn = -503, kAbstractTextCn = -504, kKeywordCn = -505,
  kAbstractCaptionEn = -506, kAbstractTextEn = -507, kKeywordEn = -508,
  kReferenceCaption = -509, kReferenceText = -510, kAcknowledge = -511,
  kAuthor = -513, kMajor = -514, kSupervisor = -515,
};

tstring Compact(const tstring& sText) {
  tstring s = NormalizeText(sText);
  s.erase(std::remove(s.begin(), s.end(), ' '), s.end());
  return s;
}

bool StartsWith(const tstring& s, const char* szPrefix, bool bNoCase = false) {
  const size_t n = strlen(szPrefix);
  return s.size() >= n && (bNoCase ? strncasecmp(s.c_str(), szPrefix, n) == 0 : s.compare(0, n, szPrefix) == 0);
}

bool Is(const tstring& s, std::initializer_list<const char*> names, bool bNoCase = false) {
  for (const char* szName : names)
    if (bNoCase ? strcasecmp(s.c_str(), szName) == 0 : s == szName) return true;
  return false;
}

// The level a paragraph's text names; 0 for none.
int CaptionLevel(const tstring& s) {
  if (Is(s, {"摘要", "中文摘要", "摘要:"})) return kAbstractCaptionCn;
  if (Is(s, {"Abstract", "Abstract:"}, true)) return kAbstractCaptionEn;
  if (StartsWith(s, "关键词") || StartsWith(s, "关键字")) return kKeywordCn;
  if (StartsWith(s, "Keyword", true) || StartsWith(s, "Key words", true)) return kKeywordEn;
  if (Is(s, {"参考文献"}) || Is(s, {"References", "Bibliography"}, true)) return kReferenceCaption;
  if (Is(s, {"致谢", "谢辞", "致谢辞"}) || Is(s, {"Acknowledgements", "Acknowledgments", "Acknowledgement"}, true))
    return kAcknowledge;
  if (StartsWith(s, "作者")) return kAuthor;
  if (StartsWith(s, "专业")) return kMajor;
  if (StartsWith(s, "导师") || StartsWith(s, "指导教师")) return kSupervisor;
  return 0;
}

// The level of the paragraphs that follow a caption.
int BlockLevel(int nCaption) {
  switch (nCaption) {
    case kAbstractCaptionCn: return kAbstractTextCn;
    case kAbstractCaptionEn: return kAbstractTextEn;
    case kReferenceCaption: return kReferenceText;
    default: return 0;
  }
}

bool HeadingHolds(const CDocxParser& parser, std::initializer_list<const char*> words) {
  for (int nIndex : parser.m_vecDocStruct) {
    const _tParagraph& para = parser.m_vecParagraph[nIndex];
    if (para.level != 1) continue;
    for (const char* szWord : words)
      if (strcasestr(para.text.c_str(), szWord) != nullptr) return true;
  }
  return false;
}

}  // namespace

void CPaperStructure::Classify(std::vector<_tParagraph>& vecParagraph) {
  int nBlock = 0;               // level of the block being read, 0 outside
  bool bChapterSeen = false, bMainMarked = false;  // a chapter heading since the last front caption
  for (_tParagraph& para : vecParagraph) {
    if (para.level != 0 && para.level != 1) {
      if (para.level > 1 && para.level <= 4) nBlock = 0;
      continue;
    }
    const tstring s = Compact(para.text);
    const int nLevel = s.size() <= 80 ? CaptionLevel(s) : 0;
    if (nLevel != 0) {
      para.level = nLevel;
      nBlock = BlockLevel(nLevel);
      if (!bMainMarked) bChapterSeen = false;  // a cover title before the abstract is no chapter
      continue;
    }
    if (para.level == 1) {
      nBlock = 0;
      bChapterSeen = true;
      continue;
    }
    if (nBlock != 0) {
      para.level = nBlock;
    } else if (bChapterSeen && !bMainMarked) {
      para.level = kMainText;
      bMainMarked = true;
    }
  }
}

int CPaperStructure::CheckParts(const CDocxParser& parser, CCheckResult& result) {
  std::set<int> setLevels;
  for (const _tParagraph& para : parser.m_vecParagraph) setLevels.insert(para.level);
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
      {"14.5", "目录", !parser.m_vecContentStruct.empty()},
      {"14.6", "绪论", HeadingHolds(parser, {"绪论", "引言", "前言", "Introduction"})},
      {"14.7", "结论", HeadingHolds(parser, {"结论", "总结", "结束语", "Conclusion"})},
      {"14.8", "参考文献", fnHas(kReferenceCaption) || parser.m_nReferenceStartIndex >= 0},
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
