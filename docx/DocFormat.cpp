#include "docx/DocFormat.h"

#include <cstdlib>
#include <cstring>

#include "checker/CheckResult.h"
#include "docx/DocxParser.h"
#include "docx/XmlScan.h"
#include "utility/ErrorLog.h"
#include "utility/Num2FontSize.h"
#include "utility/NumberOrder.h"
#include "utility/TextNormalizer.h"

const std::vector<std::pair<tstring, int>>& SectionTypeNames() {
  static const std::vector<std::pair<tstring, int>> kNames = {
      {"TEXT", 0},                   {"FIRSTPAGES", -1},          {"TABLE_COL", -101},
      {"ABSTRACT_CAPTION_CN", -503}, {"TABLE_CAPTION", -102},     {"ABSTRACT_TEXT_CN", -504},
      {"FIGURE_CAPTION", -201},      {"ABSTRACT_KEYWORD_CN", -505}, {"HEADER", -300},
      {"ABSTRACT_CAPTION_EN", -506}, {"FOOTER", -400},            {"ABSTRACT_TEXT_EN", -507},
      {"TXTBOX", -202},              {"ABSTRACT_KEYWORD_EN", -508}, {"TITLE1", 1},
      {"REFERENCE_CAPTION", -509},   {"TITLE2", 2},               {"REFERENCE_TEXT", -510},
      {"TITLE3", 3},                 {"ACKNOWLEDGE_CAPTION", -511}, {"TITLE4", 4},
      {"FORMULA_INDEX", -512},       {"CONTENT1", 13},            {"AUTHOR", -513},
      {"CONTENT2", 26},              {"MAJOR", -514},             {"CONTENT3", 39},
      {"SUPERVISOR", -515},
  };
  return kNames;
}

void SectionTypeMaps(std::map<int, tstring>& mapLevelId2Type, std::map<tstring, int>& mapType2LevelId) {
  for (const auto& name : SectionTypeNames()) {
    mapLevelId2Type[name.second] = name.first;
    mapType2LevelId[name.first] = name.second;
  }
}

namespace {

// The value of <sTag>...</sTag> inside [p, pEnd); false when the tag is not there.
bool TagValue(const char* p, const char* pEnd, const char* sTag, tstring& sValue) {
  tstring sOpen = tstring("<") + sTag + ">", sClose = tstring("</") + sTag + ">";
  const char* pOpen = FindIn(p, pEnd, sOpen.c_str());
  if (pOpen == nullptr) return false;
  const char* pStart = pOpen + sOpen.size();
  const char* pClose = FindIn(pStart, pEnd, sClose.c_str());
  sValue.assign(pStart, pClose ? pClose : pEnd);
  return true;
}

// "key:weight;" pieces; a piece without ':' is skipped.
template <class F>
void ForEachPair(const tstring& sList, F&& fn) {
  size_t nStart = 0;
  while (nStart < sList.size()) {
    size_t nEnd = sList.find(';', nStart);
    if (nEnd == tstring::npos) nEnd = sList.size();
    tstring sPiece = sList.substr(nStart, nEnd - nStart);
    size_t nColon = sPiece.find(':');
    if (nColon != tstring::npos) fn(sPiece.substr(0, nColon), atoi(sPiece.c_str() + nColon + 1));
    nStart = nEnd + 1;
  }
}

bool LearnsNumbering(int nLevel) {
  return (nLevel >= 1 && nLevel <= 4) || nLevel == kLevelTableCaption || nLevel == kLevelFigureCaption ||
         nLevel == -510 || nLevel == kLevelFormula || nLevel == -513 || nLevel == -515;
}

}  // namespace

void CDocFormat::Destroy() {
  m_pDict.reset();
  m_pWordList.reset();
  m_pExists.clear();
}

void CDocFormat::FormatStatistic(const _tParagraph& para, _tFormat& format, int nFreq) const {
  if (!para.font.empty()) format.mapFont2Freq[para.font] += nFreq;
  if (para.font_size > 0) format.mapFontSize2Freq[para.font_size] += nFreq;
  if (para.line_space > 0) format.mapLineSpace2Freq[para.line_space] += nFreq;
  if (format.section_format.num_format != -1 || para.text.empty() || !LearnsNumbering(para.level)) return;
  _tSection_Info info;
  if (ExtractOrder(para.text, para.level == kLevelFormula ? kOrderFormula : kOrderHeading, info) <= 0) return;
  _tSection_Format& learnt = format.section_format;
  learnt.prefix = info.prefix;
  learnt.chapter_format = info.chapter_format;
  learnt.section_sep = info.section_sep;
  learnt.num_format = info.num_format;
  learnt.post = info.post;
  learnt.level = info.level;
  learnt.sample = info.sample;
  learnt.section_type = para.level;
}

int CDocFormat::GenerateDocFormat(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                                  const char* sTemplateFile, const std::map<int, tstring>& mapLevelId2Type,
                                  tstring& sResult) {
  std::unique_ptr<CDocxParser> pParser(new CDocxParser);
  if (pParser->ReadDocx(sTemplateFile) != 1) {
    SetLastError(tstring("Fail read template doc file ") + (sTemplateFile ? sTemplateFile : ""));
    return -1;
  }
  pParser->ParseStruct(reportType, nullptr, true);
  m_leve2Format.clear();
  m_vecRequired.clear();
  for (const _tParagraph& para : pParser->m_vecParagraph) {
    if (para.level == kLevelTable || para.level == kLevelFigure) continue;
    FormatStatistic(para, m_leve2Format[para.level], 1);
    size_t nMark = para.text.find("KKK");
    size_t nEnd = nMark == tstring::npos ? tstring::npos : para.text.find("GGG", nMark + 3);
    if (nEnd != tstring::npos) {
      tstring sRequired = NormalizeText(para.text.substr(nMark + 3, nEnd - nMark - 3));
      if (!sRequired.empty()) m_vecRequired.push_back(sRequired);
    }
  }
  pParser.reset();
  Export(sResult, mapLevelId2Type);
  sResult += "\r\n<DocType>" + std::to_string(reportType) + "</DocType>\r\n<Organization>" +
             tstring(sOrganization ? sOrganization : "") + "</Organization>\r\n<Area>" + (sArea ? sArea : "") +
             "</Area>\r\n<Argument>" + (sArgu ? sArgu : "") + "</Argument>\r\n</DocTemplate>\r\n";
  return 1;
}

void CDocFormat::Level2Str(int nLevel, tstring& sResult, const std::map<int, tstring>& mapLevelId2Type) const {
  auto it = mapLevelId2Type.find(nLevel);
  sResult = it != mapLevelId2Type.end() ? it->second : std::to_string(nLevel);
}

int CDocFormat::Str2Level(const char* pText, const char* pTextEnd, const std::map<tstring, int>& mapType2LevelId) const {
  tstring sType;
  if (!TagValue(pText, pTextEnd, "type", sType)) return 0;
  auto it = mapType2LevelId.find(sType);
  return it != mapType2LevelId.end() ? it->second : atoi(sType.c_str());
}

void CDocFormat::FormatOutput(const _tFormat& format, tstring& s) const {
  s += "\r\n<font>";
  for (const auto& kv : format.mapFont2Freq) s += kv.first + ":" + std::to_string(kv.second) + ";";
  s += "</font>\r\n<fontSize>";
  for (const auto& kv : format.mapFontSize2Freq) s += std::to_string(kv.first) + ":" + std::to_string(kv.second) + ";";
  s += "</fontSize>\r\n<line_space>";
  for (const auto& kv : format.mapLineSpace2Freq) s += std::to_string(kv.first) + ":" + std::to_string(kv.second) + ";";
  s += "</line_space>";
  if (format.section_format.num_format != -1) format.section_format.Write(s);
}

void CDocFormat::FormatRead(const char* pText, const char* pTextEnd, _tFormat& format) const {
  tstring sList;
  if (TagValue(pText, pTextEnd, "font", sList))
    ForEachPair(sList, [&](const tstring& sKey, int nWeight) { format.mapFont2Freq[sKey] = nWeight; });
  if (TagValue(pText, pTextEnd, "fontSize", sList))
    ForEachPair(sList, [&](const tstring& sKey, int nWeight) { format.mapFontSize2Freq[atoi(sKey.c_str())] = nWeight; });
  if (TagValue(pText, pTextEnd, "line_space", sList))
    ForEachPair(sList, [&](const tstring& sKey, int nWeight) { format.mapLineSpace2Freq[atoi(sKey.c_str())] = nWeight; });
  if (const char* pBlock = FindIn(pText, pTextEnd, "<section_format>")) {
    tstring sBlock(pBlock, pTextEnd);  // the block's own text, so its reading stays inside
    format.section_format.Read(sBlock.c_str());
  }
}

const char* CDocFormat::Export(tstring& s, const std::map<int, tstring>& mapLevelId2Type) const {
  s = "<DocTemplate><DocFormat>";
  for (const auto& kv : m_leve2Format) {
    tstring sName;
    Level2Str(kv.first, sName, mapLevelId2Type);
    s += "<format>\r\n<type>" + sName + "</type>";
    FormatOutput(kv.second, s);
    s += "</format>\n";  // a bare line feed here, as every stored template has
  }
  s += "</DocFormat><Required>\r\n";
  for (const tstring& sText : m_vecRequired) s += "<item>" + sText + "</item>\r\n";
  s += "</Required>\r\n";
  return s.c_str();
}

int CDocFormat::Import(const char* pText, const char* pTextEnd, const std::map<tstring, int>& mapType2LevelId) {
  m_leve2Format.clear();
  for (const char* p = FindIn(pText, pTextEnd, "<format>"); p; p = FindIn(p + 1, pTextEnd, "<format>")) {
    const char* pClose = FindIn(p, pTextEnd, "</format>");
    const char* pEnd = pClose ? pClose : pTextEnd;
    _tFormat format;
    FormatRead(p, pEnd, format);
    m_leve2Format[Str2Level(p, pEnd, mapType2LevelId)] = format;
    p = pEnd;
  }
  m_vecRequired.clear();
  Destroy();
  m_pDict.reset(new CPDAT);
  m_pWordList.reset(new CWordList);
  m_pDict->BeginAdd();
  for (const char* p = FindIn(pText, pTextEnd, "<item>"); p; p = FindIn(p + 1, pTextEnd, "<item>")) {
    const char* pClose = FindIn(p, pTextEnd, "</item>");
    tstring sText = NormalizeText(tstring(p + 6, pClose ? pClose : pTextEnd));
    if (sText.empty()) continue;
    m_vecRequired.push_back(sText);
    int nId = m_pDict->AddWord(sText);
    m_pWordList->AddWord(sText, nId);
  }
  m_pDict->FinishAdd();
  m_pExists.assign(m_pDict->GetCount(), false);
  return 1;
}

namespace {

const int kSkippedLevels[] = {kLevelTable, kLevelFigure, kLevelTextBox, kLevelBody, -101, -1, -2, -3};

bool IsSkipped(const _tParagraph& para) {
  if (para.text.empty()) return true;
  for (int nLevel : kSkippedLevels)
    if (para.level == nLevel) return true;
  return false;
}

// The key of highest weight; the smallest key wins a tie (maps iterate in
// ascending order and only a strictly greater weight replaces the best).
template <class K>
const K* Heaviest(const std::map<K, int>& mapWeights, bool (*fnTake)(const K&, const K&), const K& probe) {
  const K* pBest = nullptr;
  int nBest = 0;
  for (const auto& item : mapWeights)
    if (fnTake(item.first, probe) && (pBest == nullptr || item.second > nBest)) {
      pBest = &item.first;
      nBest = item.second;
    }
  return pBest;
}

bool AnyKey(const int&, const int&) { return true; }

// Font names of one script class: both start with an ASCII byte, or both with
// the first byte of a multi-byte character.
bool SameScript(const tstring& sFont, const tstring& sProbe) {
  return !sFont.empty() && !sProbe.empty() && ((unsigned char)sFont[0] >= 128) == ((unsigned char)sProbe[0] >= 128);
}

tstring Decimal(int n) { return std::to_string(n); }

// The numbering found in a paragraph when its style is not the pattern's,
// with the paragraph's number rendered in the pattern's style.
bool NumberingDiffers(const _tParagraph& para, const _tSection_Format& pattern, tstring& sFound, tstring& sNew) {
  if (pattern.num_format == kStyleNone) return false;
  _tSection_Info found;
  if (para.level == kLevelFormula) {  // the index stands in brackets at the end
    size_t nOpen = para.text.rfind('(');
    ExtractOrder(nOpen == tstring::npos ? para.text : para.text.substr(nOpen), kOrderFormula, found);
  } else {
    ExtractOrder(para.text, kOrderHeading, found);
  }
  if (found.order < 1 || found.IsSameFormat(pattern)) return false;
  sFound = found.text;
  sNew = SetNewSectionNo(found, pattern);
  return true;
}

}  // namespace

void CDocFormat::MarkRequired(const tstring& sText) {
  if (!m_pDict || m_pExists.empty()) return;
  tstring sNormal = NormalizeText(sText);
  std::vector<_tPatternMatch> vecMatch;
  m_pDict->Scan(sNormal.data(), sNormal.size(), vecMatch);
  for (const _tPatternMatch& match : vecMatch)
    if (match.id >= 0 && (size_t)match.id < m_pExists.size()) m_pExists[match.id] = true;
}

const _tFormat& CDocFormat::FormatOfLevel(int nLevel) const {
  auto it = m_leve2Format.find(nLevel);
  if (it != m_leve2Format.end()) return it->second;
  char sLine[128];
  snprintf(sLine, sizeof(sLine), "LevelType %d not exists in template. Document format check using text template", nLevel);
  WriteLog(sLine);
  static const _tFormat kNone;
  it = m_leve2Format.find(kLevelBody);
  return it != m_leve2Format.end() ? it->second : kNone;
}

tstring CDocFormat::SizeName(int nHalfPoints) const {
  static const CNum2FontSize s_points;  // no table: sizes in points
  return (m_pSizeNames ? *m_pSizeNames : s_points).GetName(nHalfPoints);
}

int CDocFormat::CheckFormatOnParagraph(_tParagraph& para, CCheckResult* pCheckResult) {
  if (IsSkipped(para)) return 1;
  MarkRequired(para.text);
  const _tFormat& format = FormatOfLevel(para.level);
  _tCheckResult base;
  base.para_id = para.id;
  base.page_num = para.page_num;
  base.text = para.text;
  base.offset = 0;
  base.revise_type = 1;
  auto fnAdd = [&](const char* szErrorId, int nField, const tstring& sOrg, const tstring& sNew) {
    _tCheckResult result = base;
    result.error_id = szErrorId;
    result.field_id = nField;
    result.org_str = sOrg;
    result.new_str = sNew;
    pCheckResult->AddResult(result);
  };
  if (para.line_space != 0 && para.level >= 0 && para.level <= 4 && !format.mapLineSpace2Freq.empty() &&
      !format.mapLineSpace2Freq.count(para.line_space))
    fnAdd("1.1.3", 4, Decimal(para.line_space / 20),
          Decimal(*Heaviest<int>(format.mapLineSpace2Freq, AnyKey, 0) / 20));
  if (para.font_size != 0 && !format.mapFontSize2Freq.empty() && !format.mapFontSize2Freq.count(para.font_size))
    fnAdd("1.1.2", 1, SizeName(para.font_size), SizeName(*Heaviest<int>(format.mapFontSize2Freq, AnyKey, 0)));
  if (!para.font.empty() && !format.mapFont2Freq.empty() && !format.mapFont2Freq.count(para.font)) {
    const tstring* pFont = Heaviest<tstring>(format.mapFont2Freq, SameScript, para.font);
    if (pFont) fnAdd("1.1.1", 0, para.font, *pFont);
  }
  tstring sFound, sNew;
  if (NumberingDiffers(para, format.section_format, sFound, sNew)) fnAdd("1.1.4", 2, sFound, sNew);
  return 1;
}

int CDocFormat::CheckRequired(CCheckResult* pCheckResult, unsigned int nID) {
  int nAdded = 0;
  for (size_t i = 0; i < m_pExists.size(); ++i) {
    if (m_pExists[i]) continue;
    _tCheckResult result;
    result.page_num = 0;
    result.para_id = nID;
    result.offset = (uint32_t)i;
    result.error_id = "12.1";
    result.field_id = 5;  // a missing content: a font finding without text would be dropped
    result.revise_type = 4;
    result.new_str = m_pWordList ? tstring(m_pWordList->GetWord((int)i)) : tstring();
    pCheckResult->AddResult(result);
    ++nAdded;
  }
  return nAdded;
}
