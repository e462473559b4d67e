#include "docx/DocFormat.h"

#include <cstdlib>
#include <cstring>

#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/DocxParser.h"
#include "utility/XmlScan.h"
#include "utility/ErrorLog.h"
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
}

void CDocFormat::FormatStatistic(const _tParagraph& para, _tFormat& format, int nFreq) const {
  if (!para.font.empty()) format.mapFont2Freq[para.font] += nFreq;
  if (para.font_size > 0) format.mapFontSize2Freq[para.font_size] += nFreq;
  if (para.line_space > 0) format.mapLineSpace2Freq[para.line_space] += nFreq;
  if (format.section_format.num_format != -1 || para.text.empty() || !LearnsNumbering(para.level)) return;
  _tSection_Info info;
  const tstring sSeen = para.level == kLevelFormula ? para.text : para.NumberedText();
  if (ExtractOrder(sSeen, para.level == kLevelFormula ? kOrderFormula : kOrderHeading, info) <= 0) return;
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
  CDocxPackage package;
  if (package.ReadDocx(sTemplateFile) != 1) {
    SetLastError(tstring("Fail read template doc file ") + (sTemplateFile ? sTemplateFile : ""));
    return -1;
  }
  CDocument sample;
  CDocxParser().ParseStruct(package, reportType, nullptr, true, sample);
  m_leve2Format.clear();
  m_vecRequired.clear();
  for (const _tParagraph& para : sample.m_vecParagraph) {
    if (para.level == kLevelTable || para.level == kLevelFigure) continue;
    FormatStatistic(para, m_leve2Format[para.level], 1);
    size_t nMark = para.text.find("KKK");
    size_t nEnd = nMark == tstring::npos ? tstring::npos : para.text.find("GGG", nMark + 3);
    if (nEnd != tstring::npos) {
      tstring sRequired = NormalizeText(para.text.substr(nMark + 3, nEnd - nMark - 3));
      if (!sRequired.empty()) m_vecRequired.push_back(sRequired);
    }
  }
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
  if (!ElementText(pText, pTextEnd, "type", sType)) return 0;
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
  if (ElementText(pText, pTextEnd, "font", sList))
    ForEachPair(sList, [&](const tstring& sKey, int nWeight) { format.mapFont2Freq[sKey] = nWeight; });
  if (ElementText(pText, pTextEnd, "fontSize", sList))
    ForEachPair(sList, [&](const tstring& sKey, int nWeight) { format.mapFontSize2Freq[atoi(sKey.c_str())] = nWeight; });
  if (ElementText(pText, pTextEnd, "line_space", sList))
    ForEachPair(sList, [&](const tstring& sKey, int nWeight) { format.mapLineSpace2Freq[atoi(sKey.c_str())] = nWeight; });
  if (const char* pBlock = FindIn(pText, pTextEnd, "<section_format>")) format.section_format.Read(pBlock, pTextEnd);
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
  return 1;
}

std::vector<int> CDocFormat::FindRequired(const tstring& sText) const {
  std::vector<int> vecIds;
  if (!m_pDict) return vecIds;
  const tstring sNormal = NormalizeText(sText);
  std::vector<_tPatternMatch> vecMatch;
  m_pDict->Scan(sNormal.data(), sNormal.size(), vecMatch);
  for (const _tPatternMatch& match : vecMatch) vecIds.push_back(match.id);
  return vecIds;
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
