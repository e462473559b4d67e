#include "checker/SectionOrderCheck.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <strings.h>

#include "checker/CheckResult.h"
#include "docx/Document.h"
#include "utility/NumberOrder.h"
#include "utility/Utf8.h"

namespace {

const int kMaxHeadingLevel = 4;
const size_t kShortCaption = 30;  // characters after the number of a caption glued to it

// The number of `info` with its parts replaced, in its own style.
tstring Renumbered(const _tSection_Info& info, const std::vector<int>& vecOrders) {
  _tSection_Info copy = info;
  copy.vecOrders = vecOrders;
  copy.text.clear();
  return SetNewSectionNo(copy, copy);
}

tstring WithLast(const _tSection_Info& info, int nLast) {
  std::vector<int> vecOrders = info.vecOrders;
  if (vecOrders.empty()) vecOrders.push_back(nLast);
  vecOrders.back() = nLast;
  return Renumbered(info, vecOrders);
}

bool IsYear(const tstring& s, size_t i) {
  if (i + 4 > s.size() || (i > 0 && isdigit((unsigned char)s[i - 1])) ||
      (i + 4 < s.size() && isdigit((unsigned char)s[i + 4])))
    return false;
  for (size_t k = 0; k < 4; ++k)
    if (!isdigit((unsigned char)s[i + k])) return false;
  return (s[i] == '1' && s[i + 1] >= '5') || (s[i] == '2' && s[i + 1] == '0');
}

bool HasYear(const tstring& s) {
  for (size_t i = 0; i + 4 <= s.size(); ++i)
    if (IsYear(s, i)) return true;
  return false;
}

// A document-type code in square brackets: [J] [M] [C] [D] [S] [EB/OL] [J/OL] ...
bool HasTypeCode(const tstring& s) {
  static const char* const kCodes[] = {"M", "C", "N", "J", "D", "R", "S", "P", "DB", "CP", "EB", "A", "Z",
                                       "G", "K", "CM", "DS", "M/OL", "J/OL", "C/OL", "N/OL", "D/OL",
                                       "R/OL", "S/OL", "P/OL", "DB/OL", "CP/OL", "EB/OL", "Z/OL", "G/OL"};
  for (size_t nOpen = s.find('['); nOpen != tstring::npos; nOpen = s.find('[', nOpen + 1)) {
    size_t nClose = s.find(']', nOpen);
    if (nClose == tstring::npos) return false;
    tstring sCode = s.substr(nOpen + 1, nClose - nOpen - 1);
    for (const char* szCode : kCodes)
      if (sCode == szCode) return true;
  }
  return false;
}

}  // namespace

void CSectionOrderCheck::Add(const _tParagraph& para, const char* szErrorId, const tstring& sOrg, const tstring& sNew,
                             int nReviseType) {
  m_result.AddOnParagraph(para, szErrorId, 2, nReviseType, sOrg, sNew);
}

const _tParagraph* CSectionOrderCheck::ParagraphWithId(uint32_t nParaId) const {
  _tParaIndex index;
  if (!m_doc.GetParaIndex(nParaId, index) || index.table_index >= 0) return nullptr;
  return &m_doc.m_vecParagraph[index.para_index];
}

// Parts ("第一部分", "第二篇", "Part 1") hold chapters: the chapters under
// each part are numbered from nFirst again, and the parts have a series of
// their own.
bool CSectionOrderCheck::IsPart(const _tSection_Info& info) {
  static const char* const kPartWords[] = {"部分", "篇", "编"};
  for (const char* szWord : kPartWords)
    if (info.post.compare(0, strlen(szWord), szWord) == 0) return true;
  return strncasecmp(info.prefix.c_str(), "part", 4) == 0;
}

void CSectionOrderCheck::CheckPartOrder(std::vector<_tSection_Info>& vecParts, int /*nPartType*/, int nFirst) {
  // The number each series expects next: chapters (in whatever style),
  // appendices "附录A" and parts count apart.
  std::map<tstring, int> mapWant;
  std::map<tstring, size_t> mapSince;  // where the text that may lead up to the next of a series starts
  for (_tSection_Info& part : vecParts) {
    if (part.order <= 0 || part.error_id == "1.3.7") continue;
    const bool bPart = IsPart(part);
    const bool bAppendix = part.prefix.compare(0, 6, "附录") == 0 || strncasecmp(part.prefix.c_str(), "appendix", 8) == 0;
    const bool bAnnex = part.prefix.compare(0, 6, "附件") == 0;
    const tstring sSeries = bPart ? "part" : bAppendix ? "appendix" : bAnnex ? "annex" : "chapter";
    int& nExpected = mapWant.emplace(sSeries, bPart ? 1 : nFirst).first->second;
    size_t& nSince = mapSince.emplace(sSeries, 0).first->second;
    const _tParagraph* pPara = ParagraphWithId(part.para_id);
    const size_t nIndex = pPara ? (size_t)(pPara - m_doc.m_vecParagraph.data()) : 0;
    // A contract attaches the annexes of its list that apply ("附件7",
    // "附件9"); a chapter may run on from the text before it.
    if (part.order > nExpected && (bAnnex || RunsOnFromText(nIndex, nSince, part))) nExpected = part.order;
    if (nIndex > 0) nSince = nIndex;
    if (part.order > nExpected) {
      part.error_id = "1.3.14";
      if (pPara) Add(*pPara, "1.3.14", part.text, WithLast(part, nExpected));
      nExpected = part.order + 1;
    } else if (part.order < nExpected) {
      part.error_id = "1.3.15";
      part.orderNew = nExpected;
      part.textNew = WithLast(part, nExpected);
      if (pPara) Add(*pPara, "1.3.15", part.text, part.textNew);
      ++nExpected;
    } else {
      ++nExpected;
    }
    if (bPart)  // the chapters under a new part count from the start again
      for (auto& kv : mapWant)
        if (kv.first != "part") {
          kv.second = nFirst;
          mapSince[kv.first] = nIndex;
        }
  }
}

int CSectionOrderCheck::ChapterAt(size_t nIndex) const {
  int nChapter = 0;
  for (size_t k = 0; k < m_doc.ChapterParaIndexes().size() && k < m_doc.ChapterIds().size(); ++k)
    if ((size_t)m_doc.ChapterParaIndexes()[k] <= nIndex) nChapter = m_doc.ChapterIds()[k];
  return nChapter;
}

void CSectionOrderCheck::CheckSections() {
  for (size_t nStart = 0; nStart < m_doc.Headings().size();)
    nStart = CheckSectionOrder(nStart, 2, "");
}

size_t CSectionOrderCheck::CheckSectionOrder(size_t nStart, int nLevel, const tstring& sChapId) {
  const std::vector<int>& vecHeadings = m_doc.Headings();
  int vecLast[kMaxHeadingLevel + 1] = {0};
  // Where the text that may lead up to the next heading of each level
  // starts: after the last heading of that level or above.
  size_t vecSince[kMaxHeadingLevel + 1];
  std::fill(vecSince, vecSince + kMaxHeadingLevel + 1, nStart > 0 ? (size_t)vecHeadings[nStart] : 0);
  int nPrevLevel = nLevel - 1;
  size_t i = nStart;
  for (; i < vecHeadings.size(); ++i) {
    if (vecHeadings[i] < 0 || (size_t)vecHeadings[i] >= m_doc.m_vecParagraph.size()) continue;
    const _tParagraph& para = m_doc.m_vecParagraph[vecHeadings[i]];
    if (para.level < nLevel) {
      if (i > nStart) break;  // the next chapter starts the next call
      continue;
    }
    if (para.level > kMaxHeadingLevel) continue;
    _tSection_Info info;
    if (ExtractOrder(para.NumberedText(), kOrderHeadingLine, info) <= 0) continue;
    const int nChapter = sChapId.empty() ? ChapterAt((size_t)vecHeadings[i]) : atoi(sChapId.c_str());
    if (para.level > nPrevLevel + 1)
      Add(para, "1.3.5", info.text, "");
    if (info.vecOrders.size() >= 2 && nChapter > 0 && info.vecOrders.size() == (size_t)para.level &&
        info.vecOrders.front() != nChapter) {
      std::vector<int> vecOrders = info.vecOrders;
      vecOrders.front() = nChapter;
      Add(para, "1.3.11", info.text, Renumbered(info, vecOrders));
    }
    int& nLast = vecLast[para.level];
    if (info.order > nLast + 1 && RunsOnFromText((size_t)vecHeadings[i], vecSince[para.level], info))
      nLast = info.order - 1;
    if (info.order == nLast + 1) {
      nLast = info.order;
    } else if (info.order > nLast + 1) {
      Add(para, "1.3.1", info.text, WithLast(info, nLast + 1));
      nLast = info.order;
    } else {
      Add(para, info.order == nLast ? "1.3.3" : "1.3.6", info.text, WithLast(info, nLast + 1));
    }
    for (int k = para.level; k <= kMaxHeadingLevel; ++k) vecSince[k] = (size_t)vecHeadings[i];
    for (int k = para.level + 1; k <= kMaxHeadingLevel; ++k) vecLast[k] = 0;
    nPrevLevel = para.level;
  }
  return i;
}

void CSectionOrderCheck::CheckSeries(const _tParagraph& para, const _tSection_Info& info, _tSeries& series,
                                     const char* szErrorId) {
  const bool bTwoParts = info.vecOrders.size() >= 2;
  const int nChapter = bTwoParts ? info.vecOrders.front() : 0;
  if (bTwoParts && nChapter < series.nChapter) {
    Add(para, "1.3.6", info.text, "");
  } else if (bTwoParts && nChapter > series.nChapter) {
    series.nChapter = nChapter;
    series.nLast = 0;
  }
  if (info.order != series.nLast + 1) Add(para, szErrorId, info.text, WithLast(info, series.nLast + 1));
  series.nLast = std::max(series.nLast, info.order);
}

bool CSectionOrderCheck::RunsOnFromText(size_t nIndex, size_t nScopeStart, const _tSection_Info& info) const {
  if (info.order <= 1) return false;
  for (size_t k = nIndex; k-- > nScopeStart;) {
    const _tParagraph& para = m_doc.m_vecParagraph[k];
    // Body text, a heading given another level, or a heading the reading
    // took for a caption: what the reader sees numbered in the text.
    const bool bInText = para.level == kLevelBody || (para.level >= 1 && para.level <= kMaxHeadingLevel) ||
                         para.level == kLevelFigureCaption || para.level == kLevelTableCaption;
    if (!bInText) continue;
    _tSection_Info before;
    // Writers mix the marks after a number ("六．" then "七、"): the style
    // of the number and its depth decide.
    if (ExtractOrder(para.NumberedText(), kOrderHeadingLine, before) != info.order - 1 ||
        before.num_format != info.num_format || before.level != info.level || before.prefix != info.prefix)
      continue;
    if (std::equal(before.vecOrders.begin(), before.vecOrders.end() - 1, info.vecOrders.begin())) return true;
  }
  return false;
}

bool CSectionOrderCheck::IsCaptionShaped(const _tParagraph& para, const _tSection_Info& info) {
  if (para.HasSeqField() || (para.kinds & kKindCaptionStyle)) return true;
  // The number of a caption follows the word for what it captions.
  static const char* const kCaptionWords[] = {"图", "表", "Fig", "Table"};  // "Fig" covers "Figure"
  bool bCaptionWord = false;
  for (const char* szWord : kCaptionWords)
    if (strncasecmp(info.prefix.c_str(), szWord, strlen(szWord)) == 0) bCaptionWord = true;
  if (!bCaptionWord) return false;
  const tstring& sSeen = info.sample;  // the text as the reader sees it, where the number was found
  const size_t nNumber = sSeen.find(info.text);
  if (nNumber == tstring::npos) return false;
  const tstring sAfter = sSeen.substr(nNumber + info.text.size());
  static const char* const kSeparators[] = {" ", "\t", "：", ":", ".", "．", "、", "-", "\u3000"};
  if (sAfter.empty()) return true;
  for (const char* szSeparator : kSeparators)
    if (sAfter.compare(0, strlen(szSeparator), szSeparator) == 0) return true;
  // A caption glued to its number ("图3系统结构") is short and holds no clause.
  static const char* const kClauseMarks[] = {"，", "。", "；", ",", ";"};
  for (const char* szMark : kClauseMarks)
    if (sAfter.find(szMark) != tstring::npos) return false;
  return Utf8Length(sAfter) <= kShortCaption;
}

void CSectionOrderCheck::CheckFigureTableOrder() {
  _tSeries figures, tables;
  for (const _tParagraph& para : m_doc.m_vecParagraph) {
    if (para.level != kLevelFigureCaption && para.level != kLevelTableCaption) continue;
    _tSection_Info info;
    if (ExtractOrder(para.NumberedText(), kOrderHeading, info) <= 0 || !IsCaptionShaped(para, info)) continue;
    if (para.level == kLevelFigureCaption)
      CheckSeries(para, info, figures, "1.3.8");
    else
      CheckSeries(para, info, tables, "1.3.10");
  }
}

void CSectionOrderCheck::CheckFormulaOrder() {
  _tSeries formulas;
  for (const _tParagraph& para : m_doc.m_vecParagraph) {
    if (para.level != kLevelFormula) continue;
    size_t nOpen = para.text.rfind('(');
    _tSection_Info info;
    if (ExtractOrder(nOpen == tstring::npos ? para.text : para.text.substr(nOpen), kOrderFormula, info) <= 0) continue;
    CheckSeries(para, info, formulas, "1.3.6");
  }
}

void CSectionOrderCheck::CheckReferenceOrder() {
  _tSeries references;
  const int nStart = std::max(m_doc.ReferenceStart(), 0);
  for (int i = nStart; i <= m_doc.ReferenceEnd() && (size_t)i < m_doc.m_vecParagraph.size(); ++i) {
    const _tParagraph& para = m_doc.m_vecParagraph[i];
    _tSection_Info info;
    if (ExtractOrder(para.NumberedText(), kOrderHeading, info) <= 0 || info.prefix != "[") continue;
    CheckSeries(para, info, references, "1.3.6");
  }
}

void CSectionOrderCheck::CheckReference(const _tParagraph& para) {
  if (para.text.empty() || para.level == kLevelTable || para.level == kLevelFigure) return;
  // The caption of the list ("参考文献") is no entry.
  if (para.text.size() < 16 && para.text.find('[') == tstring::npos) return;
  if (!HasTypeCode(para.text)) Add(para, "1.4.1", "", "", 4);
  if (!HasYear(para.text)) Add(para, "1.4.2", "", "", 4);
}
