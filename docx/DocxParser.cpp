#include "docx/DocxParser.h"

#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <sstream>

#include <json/json.h>

#include "docx/PaperStructure.h"
#include "docx/StructureReader.h"
#include "docx/StructureWriter.h"
#include "docx/XmlScan.h"
#include "docx/ZipArchive.h"
#include "utility/CodePage.h"
#include "utility/DirBrowser.h"
#include "utility/ErrorLog.h"
#include "utility/CodeTrans.h"
#include "utility/FileUtil.h"
#include "utility/HtmlText.h"
#include "utility/NumberOrder.h"
#include "utility/TextNormalizer.h"
#include "utility/lexical/Lexical.h"

namespace {

const uint32_t kNoId = 0xFFFFFFFFu;  // "-1": take the offset of the paragraph

bool IsAsciiFont(const tstring& sFont) { return !sFont.empty() && (unsigned char)sFont[0] < 0x80; }

// sWord within the first or the last nBytes bytes of a text.
bool NearEnds(const tstring& sText, const char* sWord, size_t nBytes) {
  size_t nWord = strlen(sWord);
  size_t nFirst = sText.find(sWord);
  if (nFirst != tstring::npos && nFirst + nWord <= nBytes) return true;
  size_t nLast = sText.rfind(sWord);
  return nLast != tstring::npos && nLast + nBytes >= sText.size();
}

// The five XML entities and numeric character references, decoded.
tstring DecodeEntities(const char* p, const char* pEnd) {
  tstring sOut;
  sOut.reserve((size_t)(pEnd - p));
  while (p < pEnd) {
    const char* pAmp = static_cast<const char*>(memchr(p, '&', (size_t)(pEnd - p)));
    if (pAmp == nullptr) {
      sOut.append(p, pEnd);
      break;
    }
    sOut.append(p, pAmp);
    const char* pSemi = static_cast<const char*>(memchr(pAmp, ';', (size_t)std::min<ptrdiff_t>(pEnd - pAmp, 12)));
    tstring sName = pSemi ? tstring(pAmp + 1, pSemi) : tstring();
    static const struct { const char* name; const char* text; } kEntities[] = {
        {"lt", "<"}, {"gt", ">"}, {"amp", "&"}, {"quot", "\""}, {"apos", "'"}};
    bool bDone = false;
    for (const auto& e : kEntities)
      if (sName == e.name) {
        sOut += e.text;
        bDone = true;
      }
    if (!bDone && sName.size() > 1 && sName[0] == '#') {
      long nChar = sName[1] == 'x' ? strtol(sName.c_str() + 2, nullptr, 16) : strtol(sName.c_str() + 1, nullptr, 10);
      if (nChar > 0 && nChar <= 0x10FFFF) {
        char sBuf[8];
        int n = 0;
        uint32_t c = (uint32_t)nChar;
        if (c < 0x80) sBuf[n++] = (char)c;
        else if (c < 0x800) { sBuf[n++] = (char)(0xC0 | (c >> 6)); sBuf[n++] = (char)(0x80 | (c & 0x3F)); }
        else if (c < 0x10000) { sBuf[n++] = (char)(0xE0 | (c >> 12)); sBuf[n++] = (char)(0x80 | ((c >> 6) & 0x3F)); sBuf[n++] = (char)(0x80 | (c & 0x3F)); }
        else { sBuf[n++] = (char)(0xF0 | (c >> 18)); sBuf[n++] = (char)(0x80 | ((c >> 12) & 0x3F)); sBuf[n++] = (char)(0x80 | ((c >> 6) & 0x3F)); sBuf[n++] = (char)(0x80 | (c & 0x3F)); }
        sOut.append(sBuf, (size_t)n);
        bDone = true;
      }
    }
    if (bDone) {
      p = pSemi + 1;
    } else {
      sOut.push_back('&');
      p = pAmp + 1;
    }
  }
  return sOut;
}

// The end of an opening tag that closes itself ("<w:p w:rsidR=\"1\"/>"), or null.
const char* SelfClosedEnd(const char* pTag, const char* pEnd) {
  const char* pGt = static_cast<const char*>(memchr(pTag, '>', (size_t)(pEnd - pTag)));
  return pGt && pGt[-1] == '/' ? pGt + 1 : nullptr;
}

// The end of the element that starts at pTag (after its closing tag), with
// nested elements of the same name counted; pEnd when it is not closed.
const char* ElementEnd(const char* pTag, const char* pEnd, const char* sOpen, const char* sClose) {
  if (const char* pSelf = SelfClosedEnd(pTag, pEnd)) return pSelf;
  const size_t nClose = strlen(sClose);
  int nDepth = 1;
  const char* q = pTag + strlen(sOpen);
  while (q < pEnd) {
    const char* pNextClose = FindIn(q, pEnd, sClose);
    const char* pNextOpen = FindElement(q, pNextClose ? pNextClose : pEnd, sOpen);
    if (pNextOpen) {
      if (!SelfClosedEnd(pNextOpen, pEnd)) ++nDepth;
      q = pNextOpen + strlen(sOpen);
      continue;
    }
    if (pNextClose == nullptr) return pEnd;
    if (--nDepth == 0) return pNextClose + nClose;
    q = pNextClose + nClose;
  }
  return pEnd;
}

tstring WorkingDirectory() {
  char sBuffer[4096];
  return getcwd(sBuffer, sizeof(sBuffer)) ? tstring(sBuffer) : tstring(".");
}

}  // namespace

void CDocxParser::Reset() {
  m_vecParagraph.clear();
  m_vecTable.clear();
  m_vecFigure.clear();
  m_vecStyles.clear();
  m_mapStyleId2Style.clear();
  m_mapStyleId2Level.clear();
  m_mapId2Res.clear();
  m_vecTypes.clear();
  m_vecHeadFooter[0].clear();
  m_vecHeadFooter[1].clear();
  m_mapParaId2Index.clear();
  m_vecFormulaIndex.clear();
  m_vecDocStruct.clear();
  m_vecContentStruct.clear();
  m_nReferenceStartIndex = m_nReferenceEndIndex = -1;
  m_vecChapterParaIndex.clear();
  m_vecChapterId.clear();
  m_vecPageParaId.clear();
  m_sDocument.clear();
  m_nFigureCaptionFilled = 1;
  m_nLastParaId = kNoId;
}

int CDocxParser::ReadDocx(const char* sFile) {
  Reset();
  tstring sPath = sFile ? sFile : "", sDir, sName, sExt;
  SplitPath(sPath, sDir, sName, sExt);
  // Relative names are resolved here, once: the working directory is the host's.
  if (sDir.empty()) sDir = WorkingDirectory();
  else if (sDir[0] != '/') sDir = WorkingDirectory() + "/" + sDir;
  if (!sPath.empty() && sPath[0] != '/') sPath = WorkingDirectory() + "/" + sPath;
  m_sFilename = sName;
  m_sPath = sDir + "/" + sName + "_unzip";
  if (!IsRegularFile(sPath)) {  // no working folder for a document that is not there
    SetLastError("Error unzip " + sPath + " to path " + m_sPath);
    return -2;
  }
  mkdir(m_sPath.c_str(), 0777);
  struct stat st;
  if (lstat(m_sPath.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    SetLastError("Cannot create the working folder " + m_sPath);
    return -2;
  }
  CZipArchive zip;
  if (!zip.Open(sPath)) {
    if (zip.IsRefused()) return -3;
    SetLastError("Error unzip " + sPath + " to path " + m_sPath);
    return -2;
  }
  if (zip.GetEntries().empty()) {
    SetLastError("Error unzip " + sPath + " to path " + m_sPath);
    return -2;
  }
  zip.SetBaseDir(m_sPath);
  for (size_t i = 0; i < zip.GetEntries().size(); ++i) {
    if (!zip.Extract(i)) {
      if (zip.IsRefused()) return -3;
      WriteError("Failed to unzip " + zip.GetEntries()[i].name + " of " + sPath);
    }
  }
  return 1;
}

bool CDocxParser::ReadPart(const tstring& sRelative, tstring& sText, const char* sMissing) const {
  tstring sFile = m_sPath + "/" + sRelative;
  if (ReadFileText(sFile, sText)) return true;
  if (sMissing) WriteError(sMissing + sFile);
  return false;
}

int CDocxParser::ParseStruct(int nDocType, const char* sURLPrefix, bool bHtmlNeeded) {
  m_nDocType = nDocType;
  m_sURLPrefix = sURLPrefix ? sURLPrefix : "";
  if (bHtmlNeeded) {
    ReadResInfo();
    ExtractStyles();
    ReadHeaderFooter();
  }
  if (!ReadPart("word/document.xml", m_sDocument, "Failed Read File ")) {
    SetLastError("Failed Read File " + m_sPath + "/word/document.xml");
    return -1;
  }
  const char* pStart = m_sDocument.data();
  const char* pEnd = pStart + m_sDocument.size();
  const char* pBody = FindIn(pStart, pEnd, "<w:body>");
  if (pBody == nullptr) {
    SetLastError("Format error in " + m_sPath + "/word/document.xml");
    return -1;
  }
  ScanBody(pBody, pEnd);
  if (CPaperStructure::IsThesis(nDocType)) CPaperStructure::Classify(m_vecParagraph);
  BuildIndexes(true);
  return (int)m_vecParagraph.size();
}

void CDocxParser::ScanBody(const char* p, const char* pEnd) {
  while ((p = FindIn(p, pEnd, "<w:")) != nullptr) {
    if (p + 5 >= pEnd) break;
    if (p[3] == 'p' && (p[4] == ' ' || p[4] == '>')) {
      p = ScanParagraph(p, pEnd);
    } else if (p[3] == 't' && p[4] == 'b' && p[5] == 'l' && p + 6 < pEnd && (p[6] == ' ' || p[6] == '>')) {
      const char* pClose = FindIn(p, pEnd, "</w:tbl>");
      const char* pTableEnd = pClose ? pClose + 8 : pEnd;
      ExtractTable(p, pTableEnd);
      p = pTableEnd;
    } else {
      p += 3;
    }
  }
}

// A body paragraph, with the paragraphs of its text boxes as pieces of
// their own. Returns where the scan goes on.
const char* CDocxParser::ScanParagraph(const char* pTag, const char* pEnd) {
  const char* pParaEnd = ElementEnd(pTag, pEnd, "<w:p", "</w:p>");
  struct _tPiece {
    const char* start;
    const char* end;
  };
  std::vector<_tPiece> vecNested;
  for (const char* pBox = FindIn(pTag, pParaEnd, "<w:txbxContent>"); pBox;
       pBox = FindIn(pBox + 1, pParaEnd, "<w:txbxContent>")) {
    const char* pBoxEnd = FindIn(pBox, pParaEnd, "</w:txbxContent>");
    if (pBoxEnd == nullptr) pBoxEnd = pParaEnd;
    for (const char* q = FindElement(pBox, pBoxEnd, "<w:p"); q; q = FindElement(q + 1, pBoxEnd, "<w:p")) {
      if (!vecNested.empty() && q < vecNested.back().end) continue;  // inside the previous piece
      vecNested.push_back(_tPiece{q, ElementEnd(q, pBoxEnd, "<w:p", "</w:p>")});
    }
  }
  const char* pResume = pParaEnd;
  if (vecNested.size() >= 2) {
    const char* pTable = FindElement(pTag + 4, pParaEnd, "<w:tbl");
    if (pTable) {
      pParaEnd = pResume = pTable;
      while (!vecNested.empty() && vecNested.back().start >= pTable) vecNested.pop_back();
      if (!vecNested.empty() && vecNested.back().end > pTable) vecNested.back().end = pTable;
    }
  }
  if (vecNested.empty()) {
    AddParagraph(pTag, pParaEnd, kNoId, false);
    return pResume;
  }
  uint32_t nFirstId = AddParagraph(pTag, vecNested.front().start, kNoId, false);
  for (size_t i = 0; i < vecNested.size(); ++i) {
    AddParagraph(vecNested[i].start, vecNested[i].end, kNoId, true);
    if (i + 1 < vecNested.size() && vecNested[i + 1].start - vecNested[i].end > 20)
      AddParagraph(vecNested[i].end, vecNested[i + 1].start, nFirstId, false);
  }
  AddParagraph(vecNested.back().end, pParaEnd, nFirstId, false);
  return pResume;
}

uint32_t CDocxParser::AddParagraph(const char* pStart, const char* pEnd, uint32_t nParaId, bool bTextBox) {
  uint32_t nId = nParaId != kNoId ? nParaId : (uint32_t)(pStart + 3 - m_sDocument.data());
  if (nId == m_nLastParaId) return nId;  // a piece of a paragraph already stored
  _tParagraph para;
  ExtractParagrah(pStart, pEnd, para, nId, bTextBox);
  size_t nBefore = m_vecParagraph.size();
  AddOnePara(para);
  if (m_vecParagraph.size() > nBefore || (!m_vecParagraph.empty() && m_vecParagraph.back().id == para.id))
    FindFigureCaption();
  return nId;
}

void CDocxParser::AddOnePara(_tParagraph& para) {
  if (para.text.empty() && para.level >= 0) return;
  const bool bPlaceholder = para.level == kLevelTable || para.level == kLevelFigure;
  if (!bPlaceholder && m_nLastParaId != kNoId && para.id < m_nLastParaId) {
    WriteError("Critical problem while adding previous id in " + para.text);
    return;
  }
  if (para.level >= 1 && para.level <= kLevelContent && !m_vecParagraph.empty() &&
      m_vecParagraph.back().level == para.level && m_vecParagraph.back().text.empty())
    m_vecParagraph.back() = para;
  else
    m_vecParagraph.push_back(para);
  m_nLastParaId = para.id;
}

void CDocxParser::ExtractParagrah(const char* pStart, const char* pEnd, _tParagraph& para, uint32_t nParaId,
                                  bool bTextBox) {
  para.reset();
  para.id = nParaId != kNoId ? nParaId : (uint32_t)(pStart + 3 - m_sDocument.data());
  // Paragraph properties precede the first run: look them up there only.
  const char* pFirstRun = FindElement(pStart, pEnd, "<w:r");
  const char* pHead = pFirstRun ? pFirstRun : pEnd;
  tstring sValue, sStyleId;
  if (FindAttr(pStart, pHead, "w:line", sValue)) para.line_space = ToInt(sValue);
  if (FindElementAttr(pStart, pHead, "w:numId", "w:val", sValue)) para.numPtr = ToInt(sValue);
  if (FindElementAttr(pStart, pHead, "w:pStyle", "w:val", sStyleId)) para.level = StyleID2Level(sStyleId);
  if (para.level == 0 && FindElementAttr(pStart, pHead, "w:outlineLvl", "w:val", sValue) && !sValue.empty() &&
      sValue[0] >= '0' && sValue[0] <= '3')
    para.level = sValue[0] - '0' + 1;
  if (bTextBox) para.level = kLevelTextBox;
  for (const char* q = pFirstRun ? pFirstRun : pStart; q < pEnd;) {
    const char* pW = FindElement(q, pEnd, "<w:r");
    const char* pM = FindElement(q, pW ? pW : pEnd, "<m:r");
    const char* pRun = pM ? pM : pW;
    if (pRun == nullptr) break;
    const char* pClose = FindIn(pRun, pEnd, pRun == pM ? "</m:r>" : "</w:r>");
    const char* pRunEnd = pClose ? pClose + 6 : pEnd;
    ExtractRun(pRun, pRunEnd, para, sStyleId);
    q = pRunEnd;
  }
  ParagraphPostProcess(para);
  if (para.level == kLevelTextBox && (m_vecParagraph.empty() || m_vecParagraph.back().level != kLevelTextBox))
    StoreFigure(_tFigure(), para);
}

// One pass over the tags of a run: texts, tabs, field codes and images in
// order; its properties (in "<w:rPr>") looked up once.
void CDocxParser::ExtractRun(const char* pRun, const char* pRunEnd, _tParagraph& para, const tstring& sStyleId) {
  const char* pPropsEnd = FindIn(pRun, pRunEnd, "</w:rPr>");
  const char* pHead = pPropsEnd ? pPropsEnd : pRun;
  tstring sAlign, sRelId;
  bool bAlign = pPropsEnd && FindElementAttr(pRun, pHead, "w:vertAlign", "w:val", sAlign);
  bool bImage = false, bPageRef = false;
  for (const char* q = static_cast<const char*>(memchr(pRun + 1, '<', (size_t)(pRunEnd - pRun - 1))); q;
       q = q + 1 < pRunEnd ? static_cast<const char*>(memchr(q + 1, '<', (size_t)(pRunEnd - q - 1))) : nullptr) {
    const size_t nLeft = (size_t)(pRunEnd - q);
    if (nLeft < 5) break;
    if (q[1] == 'w' && q[2] == ':' && q[3] == 't') {
      if (nLeft >= 8 && memcmp(q, "<w:tab/>", 8) == 0) {
        para.text.push_back('\t');
        continue;
      }
      if (q[4] != ' ' && q[4] != '>') continue;
    } else if (q[1] == 'm' && q[2] == ':' && q[3] == 't' && (q[4] == ' ' || q[4] == '>')) {
    } else {
      if (!bPageRef && nLeft > 13 && memcmp(q, "<w:instrText", 12) == 0) {
        const char* pClose = FindIn(q, pRunEnd, "</w:instrText>");
        bPageRef = FindIn(q, pClose ? pClose : pRunEnd, "PAGEREF") != nullptr;
      } else if (!bImage && nLeft > 16 && memcmp(q, "<v:imagedata r:i", 16) == 0) {
        bImage = FindAttr(q, pRunEnd, "r:id", sRelId) || true;
      } else if (!bImage && nLeft > 15 && memcmp(q, "<a:blip r:embed", 15) == 0) {
        bImage = FindAttr(q, pRunEnd, "r:embed", sRelId) || true;
      }
      continue;
    }
    const char* pGt = static_cast<const char*>(memchr(q, '>', nLeft));
    if (pGt == nullptr || pGt[-1] == '/') continue;  // <w:t/> holds nothing
    const char* pClose = FindIn(pGt + 1, pRunEnd, q[1] == 'm' ? "</m:t>" : "</w:t>");
    const char* pTextEnd = pClose ? pClose : pRunEnd;
    tstring sText = DecodeEntities(pGt + 1, pTextEnd);
    para.text += bAlign ? "<" + sAlign + ">" + sText + "</" + sAlign + ">" : sText;
    q = pTextEnd;
  }
  if (bPageRef) {
    para.text += " . ";
    if (para.level == 0) para.level = kLevelContent;
  }
  if (bImage) AddFigure(para, sRelId);
  ExtractFont(pRun, pHead, para, sStyleId, false);
}

void CDocxParser::AddFigure(_tParagraph& para, const tstring& sRelId) {
  // The number text goes to paragraphs with text, and to empty ones only
  // when their level is negative: kept as the model always had it.
  if (!para.text.empty() || para.level < 0) para.text += "(Figure " + std::to_string(m_vecFigure.size()) + ")";
  _tFigure figure;
  figure.figure_id = sRelId;
  auto it = m_mapId2Res.find(sRelId);
  if (it != m_mapId2Res.end()) figure.figure_file = it->second.file;
  StoreFigure(figure, para);
}

void CDocxParser::StoreFigure(_tFigure figure, const _tParagraph& para) {
  figure.para_index = (int)m_vecParagraph.size();
  figure.para_id = para.id;
  m_vecFigure.push_back(figure);
  _tParagraph placeholder = para;
  placeholder.level = kLevelFigure;
  placeholder.id = (uint32_t)(m_vecFigure.size() - 1);
  m_vecParagraph.push_back(placeholder);
  m_nFigureCaptionFilled = 0;
}

void CDocxParser::ExtractFont(const char* pStart, const char* pEnd, _tParagraph& para, const tstring& sStyleId,
                              bool bInStyle) {
  if (!para.font.empty() && !IsAsciiFont(para.font) && para.font_size >= 1) return;
  tstring sValue;
  if (FindElementAttr(pStart, pEnd, "w:sz", "w:val", sValue))
    para.font_size = ToInt(sValue);
  else if (!bInStyle && FindElementAttr(pStart, pEnd, "w:szCs", "w:val", sValue))
    para.font_size = ToInt(sValue);
  else
    para.font_size = 0;
  for (const char* sAttr : {"w:eastAsia", "w:ascii", "w:hAnsi"}) {
    if (!para.font.empty() && !IsAsciiFont(para.font)) break;
    if (!FindAttr(pStart, pEnd, sAttr, sValue) || sValue.empty()) continue;
    if (para.font.empty() || !IsAsciiFont(sValue)) para.font = sValue;
  }
  if (para.font_size == 0) {
    auto it = m_mapStyleId2Style.find(sStyleId);
    if (it != m_mapStyleId2Style.end()) {
      para.font_size = it->second.font_size;
      if (para.font.empty()) para.font = it->second.font;
      if (para.level == 0) para.level = it->second.level;
      if (para.numPtr == 0) para.numPtr = it->second.numPtr;
    }
  }
}

void CDocxParser::ParagraphPostProcess(_tParagraph& para) {
  tstring& s = para.text;
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n')) s.pop_back();
  // An equation number at the end: "... (12)" with a blank before the bracket.
  if (para.level != 0 || s.size() <= 3 || s.back() != ')' || !isdigit((unsigned char)s[s.size() - 2])) return;
  size_t nOpen = s.rfind('(');
  if (nOpen == tstring::npos || s.size() - nOpen > 9 || !isdigit((unsigned char)s[nOpen + 1])) return;
  if (nOpen == 0 || s[nOpen - 1] == ' ' || s[nOpen - 1] == '\t') para.level = kLevelFormula;
}

void CDocxParser::FindFigureCaption() {
  if (m_nFigureCaptionFilled != 0 || m_vecFigure.empty() || m_vecParagraph.empty()) return;
  _tParagraph& para = m_vecParagraph.back();
  if (para.text.empty() || para.level == kLevelFigure || para.level == kLevelTable) return;
  const int nIndex = (int)m_vecParagraph.size() - 1;
  const _tFigure& last = m_vecFigure.back();
  bool bCaption = NearEnds(para.text, "图", 7) || (para.numPtr != 0 && para.level == 0 && last.para_id > para.id);
  bool bNear = nIndex - last.para_index <= 2 || (nIndex >= 2 && m_vecParagraph[nIndex - 2].level == kLevelTextBox);
  if (!bCaption || !bNear) return;
  para.level = kLevelFigureCaption;
  for (size_t f = m_vecFigure.size(); f-- > 0;) {
    _tFigure& figure = m_vecFigure[f];
    if (figure.caption_index != (unsigned)-1 || nIndex - figure.para_index > 4) break;
    figure.caption_index = (unsigned)nIndex;
  }
  m_nFigureCaptionFilled = 1;
}

const char* CDocxParser::ExtractTable(const char* pStart, const char* pEnd) {
  _tTable table;
  for (const char* q = pStart; q < pEnd;) {
    const char* pRow = FindElement(q, pEnd, "<w:tr");
    if (pRow == nullptr) break;
    const char* pRowClose = FindIn(pRow, pEnd, "</w:tr>");
    if (pRowClose == nullptr) {
      const char* pEnd599 = pRow + std::min<ptrdiff_t>(pEnd - pRow, 599);
      WriteError("Table row without its end: " + tstring(pRow, pEnd599));
      break;
    }
    std::vector<std::vector<_tParagraph>> vecCells;
    for (const char* c = pRow; c < pRowClose;) {
      const char* pCell = FindElement(c, pRowClose, "<w:tc");
      if (pCell == nullptr) break;
      const char* pCellClose = FindIn(pCell, pRowClose, "</w:tc>");
      const char* pCellEnd = pCellClose ? pCellClose : pRowClose;
      std::vector<_tParagraph> vecParas;
      for (const char* p = pCell; p < pCellEnd;) {
        const char* pPara = FindElement(p, pCellEnd, "<w:p");
        if (pPara == nullptr) break;
        const char* pParaClose = FindIn(pPara, pCellEnd, "</w:p>");
        const char* pParaEnd = pParaClose ? pParaClose + 6 : pCellEnd;
        _tParagraph para;
        ExtractParagrah(pPara, pParaEnd, para, kNoId, false);
        vecParas.push_back(para);
        p = pParaEnd;
      }
      vecCells.push_back(vecParas);
      c = pCellEnd + (pCellClose ? 7 : 0);
    }
    table.rows.push_back(vecCells);
    q = pRowClose + 7;
  }
  if (table.rows.size() >= 2 && table.rows[0].size() == 1 && table.rows[0][0].size() == 1 &&
      table.rows[0][0][0].text.find("表") != tstring::npos) {
    _tParagraph caption = table.rows[0][0][0];
    caption.level = kLevelTableCaption;
    table.caption_index = (int)m_vecParagraph.size();
    m_vecParagraph.push_back(caption);
  } else if (!m_vecParagraph.empty()) {
    _tParagraph& before = m_vecParagraph.back();
    if ((before.level == 0 || before.level > 2) &&
        (NearEnds(before.text, "表", 7) || NearEnds(before.text, "Table", 7))) {
      before.level = kLevelTableCaption;
      table.caption_index = (int)m_vecParagraph.size() - 1;
    }
  }
  table.para_index = (int)m_vecParagraph.size();
  m_vecTable.push_back(table);
  _tParagraph placeholder;
  placeholder.level = kLevelTable;
  placeholder.id = (uint32_t)(m_vecTable.size() - 1);
  m_vecParagraph.push_back(placeholder);
  return pEnd;
}

int CDocxParser::StyleID2Level(const tstring& sStyleId) const {
  auto it = m_mapStyleId2Level.find(sStyleId);
  return it == m_mapStyleId2Level.end() ? 0 : it->second;
}

void CDocxParser::ExtractStyles() {
  tstring sStyles;
  if (!ReadPart("/word/styles.xml", sStyles, "Failed while reading file ")) return;
  const char* pEnd = sStyles.data() + sStyles.size();
  std::map<tstring, _tParagraph> mapAll;  // every paragraph style read so far, for based-on lookups
  for (const char* p = FindIn(sStyles.data(), pEnd, "<w:style w:type=\"paragraph\""); p;
       p = FindIn(p + 1, pEnd, "<w:style w:type=\"paragraph\"")) {
    const char* pClose = FindIn(p, pEnd, "</w:style>");
    const char* pStyleEnd = pClose ? pClose : pEnd;
    tstring sId, sName, sBased, sValue;
    FindAttr(p, pStyleEnd, "w:styleId", sId);
    FindElementAttr(p, pStyleEnd, "w:name", "w:val", sName);
    FindElementAttr(p, pStyleEnd, "w:basedOn", "w:val", sBased);
    _tParagraph style;
    style.text = sName;
    if (FindElementAttr(p, pStyleEnd, "w:numId", "w:val", sValue)) style.numPtr = ToInt(sValue);
    ExtractFont(p, pStyleEnd, style, "", true);
    if (FindAttr(p, pStyleEnd, "w:line", sValue)) style.line_space = ToInt(sValue);
    if (strncasecmp(sName.c_str(), "heading ", 8) == 0) {
      style.level = atoi(sName.c_str() + 8);
    } else if (strncmp(sName.c_str(), "Title", 5) == 0) {
      if (FindElementAttr(p, pStyleEnd, "w:aliases", "w:val", sValue) && sValue.compare(0, 6, "标题") == 0)
        style.level = atoi(sValue.c_str() + 6);
    } else if (FindElementAttr(p, pStyleEnd, "w:outlineLvl", "w:val", sValue) && !sValue.empty() &&
               sValue[0] >= '0' && sValue[0] <= '3') {
      style.level = sValue[0] - '0' + 1;
    }
    auto itBase = mapAll.find(sBased);
    if (style.font_size == 0 && !sBased.empty() && itBase != mapAll.end()) {
      style.font_size = itBase->second.font_size;
      if (style.font.empty()) style.font = itBase->second.font;
      if (style.level == 0) style.level = itBase->second.level;
      if (style.numPtr == 0) style.numPtr = itBase->second.numPtr;
    }
    mapAll[sId] = style;
    if (style.level >= 1 && style.level <= 3) m_mapStyleId2Level[sId] = style.level;
    if (style.font_size > 0) {
      m_vecStyles.push_back(style);
      m_mapStyleId2Style[sId] = style;
    }
    p = pStyleEnd;
  }
}

int CDocxParser::GetTypeId(const tstring& sType) {
  for (size_t i = 0; i < m_vecTypes.size(); ++i)
    if (m_vecTypes[i] == sType) return (int)i;
  m_vecTypes.push_back(sType);
  return (int)m_vecTypes.size() - 1;
}

void CDocxParser::ReadResInfo() {
  tstring sRels;
  if (!ReadPart("word/_rels/document.xml.rels", sRels, "Failed Read File ")) return;
  const char* pEnd = sRels.data() + sRels.size();
  for (const char* p = FindIn(sRels.data(), pEnd, "<Relationship "); p; p = FindIn(p + 1, pEnd, "<Relationship ")) {
    const char* pGt = static_cast<const char*>(memchr(p, '>', (size_t)(pEnd - p)));
    const char* pTagEnd = pGt ? pGt : pEnd;
    tstring sId, sType;
    _tRelationInfo info;
    if (!FindAttr(p, pTagEnd, "Id", sId)) continue;
    if (FindAttr(p, pTagEnd, "Type", sType)) info.type = GetTypeId(sType);
    FindAttr(p, pTagEnd, "Target", info.file);
    m_mapId2Res[sId] = info;
  }
}

void CDocxParser::ReadHeaderFooter() {
  const char* kKinds[2] = {"word/header", "word/footer"};
  const int kLevels[2] = {kLevelHeader, kLevelFooter};
  for (int k = 0; k < 2; ++k) {
    for (size_t n = 1;; ++n) {
      tstring sPart;
      if (!ReadPart(tstring(kKinds[k]) + std::to_string(n) + ".xml", sPart, "Failed Read File ")) break;
      const char* pEnd = sPart.data() + sPart.size();
      const char* pPara = FindElement(sPart.data(), pEnd, "<w:p");
      if (pPara == nullptr) continue;
      const char* pClose = FindIn(pPara, pEnd, "</w:p>");
      // Ids of header and footer paragraphs count from their own file's start.
      _tParagraph para;
      ExtractParagrah(pPara, pClose ? pClose + 6 : pEnd, para, (uint32_t)(pPara + 3 - sPart.data()), false);
      para.level = kLevels[k];
      para.page_num = (int)n;
      if (!para.text.empty()) m_vecHeadFooter[k].push_back(para);
    }
  }
}

void CDocxParser::BuildIndexes(bool bSegment) {
  m_mapParaId2Index.clear();
  m_vecFormulaIndex.clear();
  m_vecDocStruct.clear();
  m_vecContentStruct.clear();
  m_vecChapterParaIndex.clear();
  m_vecChapterId.clear();
  m_nReferenceStartIndex = m_nReferenceEndIndex = -1;
  int nReferenceHeading = -1;
  for (size_t i = 0; i < m_vecParagraph.size(); ++i) {
    _tParagraph& para = m_vecParagraph[i];
    if (bSegment) para.segment_txt = QUENDA_ParagraphProcess(para.text, true);
    const int nIndex = (int)i;
    if (para.level == kLevelTable || para.level == kLevelFigure) continue;
    m_mapParaId2Index.emplace(para.id, i);
    if (para.level == kLevelFormula) m_vecFormulaIndex.push_back(nIndex);
    if (para.level == kLevelContent) m_vecContentStruct.push_back(nIndex);
    if (para.level >= 1 && para.level <= 4) {
      m_vecDocStruct.push_back(nIndex);
      if (nReferenceHeading >= 0 && m_nReferenceEndIndex < 0) m_nReferenceEndIndex = nIndex - 1;
      if (para.level == 1) {
        m_vecChapterParaIndex.push_back(nIndex);
        m_vecChapterId.push_back((int)m_vecChapterParaIndex.size());
      }
    }
    // A heading or caption that names the references opens their range.
    if (nReferenceHeading < 0 && para.level != 0 && para.level != kLevelContent) {
      _tSection_Info info;
      ExtractOrder(para.text, kOrderHeading, info);
      tstring sTitle = NormalizeText(para.text.substr(para.text.find(info.text) == 0 ? info.text.size() : 0));
      sTitle.erase(std::remove(sTitle.begin(), sTitle.end(), ' '), sTitle.end());
      if (sTitle == "参考文献" || strcasecmp(sTitle.c_str(), "References") == 0 ||
          strcasecmp(sTitle.c_str(), "Bibliography") == 0) {
        nReferenceHeading = nIndex;
        m_nReferenceStartIndex = nIndex + 1;
      }
    }
  }
  if (nReferenceHeading >= 0 && m_nReferenceEndIndex < 0) m_nReferenceEndIndex = (int)m_vecParagraph.size() - 1;
  if (m_nReferenceStartIndex > m_nReferenceEndIndex) m_nReferenceStartIndex = m_nReferenceEndIndex = -1;
  if (!bSegment) return;
  for (auto& table : m_vecTable)
    for (auto& row : table.rows)
      for (auto& cell : row)
        for (auto& para : cell) para.segment_txt = QUENDA_ParagraphProcess(para.text, true);
}

const tstring& CDocxParser::GetText(uint32_t nParaId) const {
  static const tstring s_sEmpty;
  _tParaIndex index;
  if (!GetParaIndex(nParaId, index)) return s_sEmpty;
  if (index.table_index < 0) return m_vecParagraph[index.para_index].text;
  return m_vecTable[index.table_index].rows[index.row_index][index.col_index][index.para_index].text;
}

int CDocxParser::GetLevel(uint32_t nParaId) const {
  _tParaIndex index;
  if (!GetParaIndex(nParaId, index)) return 0;
  if (index.table_index < 0) return m_vecParagraph[index.para_index].level;
  return m_vecTable[index.table_index].rows[index.row_index][index.col_index][index.para_index].level;
}

bool CDocxParser::GetParaIndex(uint32_t nParaId, _tParaIndex& index) const {
  index = _tParaIndex();
  auto it = m_mapParaId2Index.find(nParaId);
  if (it != m_mapParaId2Index.end()) {
    index.para_index = (unsigned)it->second;
    return true;
  }
  for (size_t t = 0; t < m_vecTable.size(); ++t)
    for (size_t r = 0; r < m_vecTable[t].rows.size(); ++r)
      for (size_t c = 0; c < m_vecTable[t].rows[r].size(); ++c)
        for (size_t p = 0; p < m_vecTable[t].rows[r][c].size(); ++p)
          if (m_vecTable[t].rows[r][c][p].id == nParaId) {
            index = _tParaIndex{(int)t, (int)r, (int)c, (unsigned)p};
            return true;
          }
  return false;
}

uint32_t CDocxParser::LocateChapterID(uint32_t nParaId) const {
  uint32_t nChapter = 0;
  for (int nIndex : m_vecChapterParaIndex) {
    if (m_vecParagraph[nIndex].id > nParaId) break;
    nChapter = m_vecParagraph[nIndex].id;
  }
  return nChapter;
}

void CDocxParser::DocCharStat() {
  m_nSingleCharCount = m_nMultiCharCount = 0;
  auto fnCount = [this](const _tParagraph& para) {
    int64_t nSingle = 0, nMulti = 0;
    CharStat(para.text, nSingle, nMulti);
    m_nSingleCharCount += nSingle;
    m_nMultiCharCount += nMulti;
  };
  for (const auto& vecList : m_vecHeadFooter)
    for (const _tParagraph& para : vecList) fnCount(para);
  // Placeholders are copies (a figure's is its image paragraph): counting
  // them would count those texts twice, and a loaded structure could not
  // give the same counts.
  for (const _tParagraph& para : m_vecParagraph)
    if (para.level != kLevelTable && para.level != kLevelFigure) fnCount(para);
  for (const auto& table : m_vecTable)
    for (const auto& row : table.rows)
      for (const auto& cell : row)
        for (const auto& para : cell) fnCount(para);
  m_nCharCount = m_nSingleCharCount + m_nMultiCharCount;
}

namespace {

// The converter a format would need; these formats are not read yet.
const char* ConverterFor(const tstring& sExt) {
  static const char* const kImages[] = {"pdf", "jpg", "tif", "png", "bmp", "ps"};
  for (const char* sKind : kImages)
    if (strcasecmp(sExt.c_str(), sKind) == 0) return "pdf2docx";
  if (strcasecmp(sExt.c_str(), "tex") == 0) return "pandoc";
  if (strncasecmp(sExt.c_str(), "xls", 3) == 0 || strncasecmp(sExt.c_str(), "ppt", 3) == 0) return "Q7TxtExtraxtor";
  return nullptr;
}

}  // namespace

int CDocxParser::ImportFile(const char* sFilename, const char* sURLPrefix, int nType, int nResultFormat) {
  tstring sName = sFilename ? sFilename : "", sDir, sBase, sExt;
  SplitPath(sName, sDir, sBase, sExt);
  m_sDocFormatExt = sExt;
  m_nResultFormat = nResultFormat;
  if (const char* sConverter = ConverterFor(sExt)) {
    SetLastError("No converter for ." + sExt + " documents in this build (" + sConverter + ")");
    return 0;
  }
  if (strncasecmp(sExt.c_str(), "doc", 3) == 0 || strncasecmp(sExt.c_str(), "wps", 3) == 0) {
    const char* sResult = ImportDocx(sName.c_str(), sURLPrefix, nType, nResultFormat);
    if (sResult == nullptr || *sResult == '\0') {
      WriteError("Cannot open file " + sName);
      return -1;
    }
    return 1;
  }
  if (strcasecmp(sExt.c_str(), "xml") == 0) {
    if (LoadDocResult(sName.c_str()) == 0) {
      WriteError("Cannot open file " + sName);
      return -2;
    }
    return 1;
  }
  tstring sTextFile = sName;
  if (strncasecmp(sExt.c_str(), "htm", 3) == 0) {
    tstring sHtml;
    if (!ReadFileText(sName, sHtml)) {
      SetLastError("Cannot open file " + sName);
      return -3;
    }
    if (strncasecmp(HtmlCharset(sHtml).c_str(), "gb", 2) == 0) sHtml = GBKToUTF8(sHtml);
    sTextFile = (sDir.empty() ? sBase : sDir + "/" + sBase) + ".txt";
    std::ofstream out(sTextFile, std::ios::binary);
    if (!(out << HtmlToText(sHtml)) || !out.flush()) {
      SetLastError("Cannot write file " + sTextFile);
      return -4;
    }
  }
  if (ImportText(sTextFile.c_str(), nType) <= 0) return 0;
  m_sDocFormatExt = sExt;
  m_sURLPrefix = sURLPrefix ? sURLPrefix : "";
  return GetXMLFile(nResultFormat) ? 1 : 0;
}

int CDocxParser::ImportText(const char* sFilename, int nDocType) {
  tstring sName = sFilename ? sFilename : "", sDir, sBase, sExt;
  SplitPath(sName, sDir, sBase, sExt);
  tstring sText;
  if (!ReadFileText(sName, sText)) {
    SetLastError("Cannot open file " + sName);
    return 0;
  }
  // Texts come in many encodings: anything but UTF-8 is converted first.
  tstring sCharset = CodeTrans_Detect(sText.data(), sText.size());
  if (!sCharset.empty() && sCharset != "UTF-8") sText = ConvertLenient(sText, sCharset.c_str(), "UTF-8");
  if (sText.compare(0, 3, "\xEF\xBB\xBF") == 0) sText.erase(0, 3);
  Reset();
  if (sDir.empty()) sDir = WorkingDirectory();
  else if (sDir[0] != '/') sDir = WorkingDirectory() + "/" + sDir;
  m_sFilename = sBase;
  m_sPath = sDir + "/" + sBase + "_unzip";
  mkdir(m_sPath.c_str(), 0777);  // results are written beside it, through "<folder>/.."
  LoadText(sText);
  m_nDocType = nDocType;
  BuildIndexes(true);
  return 1;
}

int CDocxParser::ImportMemory(const char* sText, int nType, int nResultFormat) {
  Reset();
  m_sPath.clear();
  m_sFilename.clear();
  m_sDocFormatExt = "txt";
  m_nDocType = nType;
  m_nResultFormat = nResultFormat;
  if (sText == nullptr) return 0;
  LoadText(sText);
  BuildIndexes(true);
  return 1;
}

// One paragraph per non-empty line; its id is the byte offset of the line.
void CDocxParser::LoadText(const tstring& sText) {
  for (size_t nStart = 0; nStart < sText.size();) {
    size_t nEnd = sText.find('\n', nStart);
    if (nEnd == tstring::npos) nEnd = sText.size();
    _tParagraph para;
    para.id = (uint32_t)nStart;
    para.text = sText.substr(nStart, nEnd - nStart);
    ParagraphPostProcess(para);
    if (para.text.find_first_not_of(" \t\r") != tstring::npos) m_vecParagraph.push_back(para);
    nStart = nEnd + 1;
  }
}

const char* CDocxParser::ImportDocx(const char* sDocxFilename, const char* sURLPrefix, int nType,
                                    int nResultFormat) {
  tstring sName = sDocxFilename ? sDocxFilename : "", sDir, sBase, sExt;
  SplitPath(sName, sDir, sBase, sExt);
  tstring sDocx = Doc2Docx(sName.c_str());
  if (sDocx.empty() || ReadDocx(sDocx.c_str()) != 1) return nullptr;
  if (ParseStruct(nType, sURLPrefix, true) < 0) return nullptr;
  m_sDocFormatExt = sExt;
  return GetXMLFile(nResultFormat);
}

tstring CDocxParser::Doc2Docx(const char* sFilename) {
  tstring sName = sFilename ? sFilename : "", sDir, sBase, sExt;
  SplitPath(sName, sDir, sBase, sExt);
  if (strncasecmp(sExt.c_str(), "doc", 3) != 0 && strncasecmp(sExt.c_str(), "wps", 3) != 0) {
    SetLastError(sName + " is invalid docx file.");
    return "";
  }
  return (sDir.empty() ? sBase : sDir + "/" + sBase) + ".docx";
}

size_t CDocxParser::LoadDocResult(const char* sResultXMLFilename) {
  tstring sFile = sResultXMLFilename ? sResultXMLFilename : "", sText;
  if (!ReadFileText(sFile, sText)) {
    SetLastError("Fail read file " + sFile);
    return 0;
  }
  return InputXMLData(sText);
}

size_t CDocxParser::InputXMLData(const tstring& sXml) {
  size_t nCount = CStructureReader::Read(sXml.data(), sXml.data() + sXml.size(), *this);
  if (nCount == 0) {
    SetLastError("No document structure in the text");
    return 0;
  }
  BuildIndexes(false);
  return nCount;
}

const char* CDocxParser::GetCurTemplateInfo() {
  tstring sOrganization, sArea, sArgument;
  GetOrgType(m_nDocType, sOrganization, sArea, sArgument);
  Json::Value root(Json::objectValue);
  root["docReportType"] = m_nDocType;
  root["zyg_organization"] = sOrganization;
  root["zyg_area"] = sArea;
  root["zyg_argument"] = sArgument;
  m_sResult = root.toStyledString();
  return m_sResult.c_str();
}

void CDocxParser::GetOrgType(int /*nReportType*/, tstring& sOrganization, tstring& sArea, tstring& sArgument) const {
  sOrganization = m_sOrganization.empty() ? "*" : m_sOrganization;
  sArea = "*";
  sArgument = "*";
}

const char* CDocxParser::GetXMLData() {
  DocCharStat();
  m_sResult = CStructureWriter(*this).Xml();
  return m_sResult.c_str();
}

const char* CDocxParser::GetJsonData(bool bTableFigureIncluded) {
  DocCharStat();
  m_sResult = CStructureWriter(*this).Json(bTableFigureIncluded);
  return m_sResult.c_str();
}

const char* CDocxParser::GetXMLFile(int nResultFormat) {
  tstring sText = nResultFormat == 0 ? GetXMLData() : GetJsonData(true);
  return WriteBeside(nResultFormat == 0 ? ".xml" : ".json", sText);
}

const char* CDocxParser::GetContentXML() {
  tstring sXml = GetXMLData();
  size_t nLineEnd = sXml.find("\r\n");
  m_sResult = nLineEnd == tstring::npos ? sXml : sXml.substr(nLineEnd + 2);
  return m_sResult.c_str();
}

const char* CDocxParser::GetContentJson() { return GetJsonData(true); }

const char* CDocxParser::GetContentXMLFile() {
  tstring sText = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n" + tstring(GetContentXML());
  return WriteBeside("_Content.xml", sText);
}

const char* CDocxParser::GetContentJsonFile() {
  tstring sText = GetContentJson();
  return WriteBeside("_Content.json", sText);
}

const char* CDocxParser::WriteBeside(const tstring& sSuffix, const tstring& sText) {
  tstring sFile = m_sPath + "/../" + m_sFilename + sSuffix;
  FILE* fp = fopen(sFile.c_str(), "wb");
  if (fp == nullptr || fwrite(sText.data(), 1, sText.size(), fp) != sText.size()) {
    if (fp) fclose(fp);
    SetLastError("Fail write file " + sFile);
    return nullptr;
  }
  fclose(fp);
  m_sResult = sFile;
  return m_sResult.c_str();
}
