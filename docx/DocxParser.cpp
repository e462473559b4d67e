#include "docx/DocxParser.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>

#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/NumberingCounter.h"
#include "docx/PaperStructure.h"
#include "utility/ErrorLog.h"
#include "utility/TextNormalizer.h"
#include "utility/Utf8.h"
#include "utility/XmlScan.h"

namespace {

const uint32_t kNoId = 0xFFFFFFFFu;  // "-1": take the offset of the paragraph

// The title above a table of contents; a note in brackets after it (as
// templates give how the title is to look) is no part of it.
bool NamesContents(const tstring& sText) {
  tstring sTitle = CompactTitle(sText.substr(0, std::min(sText.find("（"), sText.find('('))));
  return sTitle == "目录" || strcasecmp(sTitle.c_str(), "Contents") == 0 ||
         strcasecmp(sTitle.c_str(), "TableofContents") == 0;
}

// sWord within the first or the last nBytes bytes of a text.
bool NearEnds(const tstring& sText, const char* sWord, size_t nBytes) {
  size_t nWord = strlen(sWord);
  size_t nFirst = sText.find(sWord);
  if (nFirst != tstring::npos && nFirst + nWord <= nBytes) return true;
  size_t nLast = sText.rfind(sWord);
  return nLast != tstring::npos && nLast + nBytes >= sText.size();
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

}  // namespace

CDocxParser::CDocxParser() = default;
CDocxParser::~CDocxParser() = default;

int CDocxParser::ParseStruct(const CDocxPackage& package, int nDocType, const char* sURLPrefix, bool bHtmlNeeded,
                             CDocument& doc) {
  m_pDoc = &doc;
  const tstring sExt = doc.m_sDocFormatExt;
  doc.Reset();
  doc.m_sPath = package.GetPath();
  doc.m_sFilename = package.GetFilename();
  doc.m_sDocFormatExt = sExt;
  doc.m_nDocType = nDocType;
  doc.m_sURLPrefix = sURLPrefix ? sURLPrefix : "";
  if (bHtmlNeeded) {
    ReadResInfo(package);
    ExtractStyles(package);
    ReadHeaderFooter(package);
  }
  ReadNumbering(package);  // after the headers: their lists are not the body's
  if (!package.ReadPart("word/document.xml", m_sDocument, "Failed Read File ")) {
    SetLastError("Failed Read File " + package.GetPath() + "/word/document.xml");
    return -1;
  }
  const char* pStart = m_sDocument.data();
  const char* pEnd = pStart + m_sDocument.size();
  const char* pBody = FindIn(pStart, pEnd, "<w:body>");
  if (pBody == nullptr) {
    SetLastError("Format error in " + package.GetPath() + "/word/document.xml");
    return -1;
  }
  ScanBody(pBody, pEnd);
  if (CPaperStructure::IsThesis(nDocType)) CPaperStructure::Classify(doc.m_vecParagraph);
  doc.BuildIndexes();
  return (int)doc.m_vecParagraph.size();
}

void CDocxParser::ScanBody(const char* p, const char* pEnd) {
  m_vecField.clear();  // what a header left open is not the body's
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
  size_t nBefore = m_pDoc->m_vecParagraph.size();
  AddOnePara(para);
  if (m_pDoc->m_vecParagraph.size() > nBefore || (!m_pDoc->m_vecParagraph.empty() && m_pDoc->m_vecParagraph.back().id == para.id))
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
  if (para.level >= 1 && para.level <= kLevelContent && !m_pDoc->m_vecParagraph.empty() &&
      m_pDoc->m_vecParagraph.back().level == para.level && m_pDoc->m_vecParagraph.back().text.empty())
    m_pDoc->m_vecParagraph.back() = para;
  else
    m_pDoc->m_vecParagraph.push_back(para);
  m_nLastParaId = para.id;
}

void CDocxParser::ExtractParagrah(const char* pStart, const char* pEnd, _tParagraph& para, uint32_t nParaId,
                                  bool bTextBox) {
  para.reset();
  para.id = nParaId != kNoId ? nParaId : (uint32_t)(pStart + 3 - m_sDocument.data());
  // Paragraph properties precede the first run: look them up there only.
  const char* pFirstRun = FindElement(pStart, pEnd, "<w:r");
  const char* pHead = pFirstRun ? pFirstRun : pEnd;
  // A tracked change keeps the former properties after the present ones.
  if (const char* pChange = FindIn(pStart, pHead, "<w:pPrChange")) pHead = pChange;
  tstring sValue, sStyleId;
  if (FindAttr(pStart, pHead, "w:line", sValue)) para.line_space = ToInt(sValue);
  int nOwnNumId = -1;  // none of its own; numPtr may yet come from the style
  if (FindElementAttr(pStart, pHead, "w:numId", "w:val", sValue)) para.numPtr = nOwnNumId = ToInt(sValue);
  if (FindElementAttr(pStart, pHead, "w:pStyle", "w:val", sStyleId)) para.level = StyleID2Level(sStyleId);
  if (para.level == 0 && FindElementAttr(pStart, pHead, "w:outlineLvl", "w:val", sValue) && !sValue.empty() &&
      sValue[0] >= '0' && sValue[0] <= '3')
    para.level = sValue[0] - '0' + 1;
  if (bTextBox) para.level = kLevelTextBox;
  NoteStyle(sStyleId, para);
  NoteField(para);  // a contents field opened in an earlier paragraph
  NoteSimpleFields(pStart, pEnd, para);
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
  // The empty paragraph that closes a section shows no number: a word
  // processor leaves it out of the count.
  if (!para.text.empty() || FindIn(pStart, pHead, "<w:sectPr") == nullptr)
    para.num_label = NumberLabel(nOwnNumId, pStart, pHead, sStyleId);
  // An entry of a contents field or style is one even without a page number;
  // the title the field often starts in is not.
  if (para.level == 0 && (para.kinds & kKindInContents) && !(para.kinds & kKindFigureList) && !NamesContents(para.text))
    para.level = kLevelContent;
  if (para.level == kLevelTextBox && (m_pDoc->m_vecParagraph.empty() || m_pDoc->m_vecParagraph.back().level != kLevelTextBox))
    StoreFigure(_tFigure(), para);
}

namespace {

// The character a reader sees for "<w:sym w:font=.. w:char=..>": symbol
// fonts keep their glyphs in U+F000..U+F0FF; the common ones of the Symbol
// font are given as the characters they draw, the others stay as they are.
tstring SymbolText(const char* pTag, const char* pEnd) {
  tstring sChar, sFont;
  if (!FindAttr(pTag, pEnd, "w:char", sChar)) return "";
  uint32_t nChar = (uint32_t)strtoul(sChar.c_str(), nullptr, 16);
  if (nChar == 0 || nChar > 0x10FFFF || (nChar >= 0xD800 && nChar <= 0xDFFF)) return "";
  FindAttr(pTag, pEnd, "w:font", sFont);
  static const struct { uint32_t code; uint32_t unicode; } kSymbol[] = {
      {0xB7, 0x2022}, {0xD7, 0x00D7}, {0xB4, 0x00D7}, {0xB8, 0x00F7}, {0xB1, 0x00B1}, {0xA3, 0x2264},
      {0xB3, 0x2265}, {0xB0, 0x00B0}, {0xAE, 0x2192}, {0xAC, 0x2190}, {0xD6, 0x221A}, {0xA5, 0x221E}};
  if (strcasecmp(sFont.c_str(), "Symbol") == 0)
    for (const auto& s : kSymbol)
      if ((nChar & 0xFF) == s.code && (nChar < 0x100 || (nChar >= 0xF000 && nChar <= 0xF0FF))) nChar = s.unicode;
  tstring sOut;
  AppendUtf8(sOut, nChar);
  return sOut;
}

// A break a reader sees as a new line: "<w:cr/>", and "<w:br/>" unless it
// breaks the page or the column.
bool IsLineBreak(const char* pTag, const char* pEnd) {
  if (memcmp(pTag, "<w:cr", 5) == 0) return true;
  const char* pGt = static_cast<const char*>(memchr(pTag, '>', (size_t)(pEnd - pTag)));
  tstring sType;
  return !FindAttr(pTag, pGt ? pGt : pEnd, "w:type", sType) || sType == "textWrapping";
}

// The words of a field instruction: "TOC", "SEQ", "PAGEREF" ...
tstring FieldName(const tstring& sInstruction) {
  size_t nStart = sInstruction.find_first_not_of(" \t");
  if (nStart == tstring::npos) return "";
  size_t nEnd = sInstruction.find_first_of(" \t\\", nStart);
  return sInstruction.substr(nStart, nEnd == tstring::npos ? tstring::npos : nEnd - nStart);
}

// The kind a SEQ field gives its paragraph, by the sequence it counts.
unsigned SeqKind(const tstring& sInstruction) {
  tstring sRest = sInstruction.substr(sInstruction.find("SEQ") + 3);
  size_t nStart = sRest.find_first_not_of(" \t\"");
  tstring sName = nStart == tstring::npos ? "" : sRest.substr(nStart, sRest.find_first_of(" \t\"\\", nStart) - nStart);
  if (sName.find("图") != tstring::npos || strncasecmp(sName.c_str(), "fig", 3) == 0) return kKindSeqFigure;
  if (sName.find("表") != tstring::npos || strncasecmp(sName.c_str(), "tab", 3) == 0) return kKindSeqTable;
  return kKindSeqOther;
}

// What a field makes of the paragraph it stands in: a contents entry, an
// entry of a list of figures, a numbered caption.
unsigned FieldKinds(const tstring& sInstruction) {
  const tstring sName = FieldName(sInstruction);
  if (sName == "TOC") return sInstruction.find("\\c") != tstring::npos ? kKindFigureList : kKindInContents;
  return sName == "SEQ" ? SeqKind(sInstruction) : 0;
}

}  // namespace

// The fields open around a paragraph, from earlier paragraphs.
void CDocxParser::NoteField(_tParagraph& para) const {
  for (const tstring& sInstruction : m_vecField) para.kinds |= FieldKinds(sInstruction);
}

void CDocxParser::ReadNumbering(const CDocxPackage& package) {
  m_pCounter.reset();
  tstring sXml;
  if (!package.ReadPart("word/numbering.xml", sXml)) return;
  std::map<tstring, int> mapStyleNum;
  for (const auto& kv : m_mapStyleNumbering) mapStyleNum[kv.first] = kv.second.first;
  if (!m_numbering.Load(sXml.data(), sXml.data() + sXml.size(), mapStyleNum)) return;
  m_pCounter.reset(new CNumberingCounter(m_numbering));
}

// The label a paragraph's automatic numbering shows, counted in document
// order. The numbering is the paragraph's own "<w:numPr>" (numId 0 takes
// the style's away), else its style's; the level is the paragraph's ilvl,
// else the level the numbering links to the style, else the style's ilvl,
// else 0.
tstring CDocxParser::NumberLabel(int nNumId, const char* pStart, const char* pHead, const tstring& sStyleId) {
  if (!m_pCounter) return "";
  tstring sValue;
  int nIlvl = FindElementAttr(pStart, pHead, "w:ilvl", "w:val", sValue) ? ToInt(sValue) : -1;
  auto it = m_mapStyleNumbering.find(sStyleId);
  if (nNumId < 0 && it != m_mapStyleNumbering.end()) nNumId = it->second.first;
  if (nNumId <= 0) return "";
  if (nIlvl < 0) nIlvl = m_numbering.LevelOfStyle(nNumId, sStyleId);
  if (nIlvl < 0 && it != m_mapStyleNumbering.end()) nIlvl = it->second.second;
  // A level text may end in blanks of its own; the label is the number.
  tstring sLabel = m_pCounter->Next(nNumId, std::max(nIlvl, 0));
  const size_t nFirst = sLabel.find_first_not_of(" \t\xA0"), nLast = sLabel.find_last_not_of(" \t");
  return nFirst == tstring::npos ? tstring() : sLabel.substr(nFirst, nLast - nFirst + 1);
}

// Fields written whole in one tag: "<w:fldSimple w:instr=\"SEQ 图\">".
void CDocxParser::NoteSimpleFields(const char* pStart, const char* pEnd, _tParagraph& para) const {
  // Rare: one quick search of the bare name spares most paragraphs the tag walk.
  if (FindIn(pStart, pEnd, "fldSimple") == nullptr) return;
  for (const char* q = FindElement(pStart, pEnd, "<w:fldSimple"); q; q = FindElement(q + 1, pEnd, "<w:fldSimple")) {
    const char* pGt = static_cast<const char*>(memchr(q, '>', (size_t)(pEnd - q)));
    tstring sInstruction;
    if (!FindAttr(q, pGt ? pGt : pEnd, "w:instr", sInstruction)) continue;
    para.kinds |= FieldKinds(DecodeEntities(sInstruction));
  }
}

// What a paragraph's style says of it: a contents entry, an entry of a list
// of figures, a caption.
void CDocxParser::NoteStyle(const tstring& sStyleId, _tParagraph& para) const {
  auto it = m_mapStyleKinds.find(sStyleId);
  if (it != m_mapStyleKinds.end()) para.kinds |= it->second;
}

// One pass over the tags of a run: texts, tabs, breaks, symbols, fields and
// images in order; its properties (in "<w:rPr>") looked up once.
void CDocxParser::ExtractRun(const char* pRun, const char* pRunEnd, _tParagraph& para, const tstring& sStyleId) {
  const char* pPropsEnd = FindIn(pRun, pRunEnd, "</w:rPr>");
  const char* pHead = pPropsEnd ? pPropsEnd : pRun;
  tstring sAlign, sRelId;
  bool bAlign = pPropsEnd && FindElementAttr(pRun, pHead, "w:vertAlign", "w:val", sAlign);
  bool bImage = false, bPageRef = false;
  // The run's properties hold no text or mark: the walk starts after them.
  const char* pFrom = pPropsEnd ? pPropsEnd + 1 : pRun + 1;
  for (const char* q = static_cast<const char*>(memchr(pFrom, '<', (size_t)(pRunEnd - pFrom))); q;
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
      ExtractRunMark(q, pRunEnd, para, bPageRef, bImage, sRelId);
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

// A tag of a run other than its texts: what a reader sees of it (a hyphen
// that does not break, a symbol, a line break; a soft hyphen shows nothing),
// the fields it opens and closes, and the images it holds.
void CDocxParser::ExtractRunMark(const char* q, const char* pRunEnd, _tParagraph& para, bool& bPageRef, bool& bImage,
                                 tstring& sRelId) {
  const size_t nLeft = (size_t)(pRunEnd - q);
  // Most tags are none of these: their first letters tell at once.
  const bool bWord = q[1] == 'w' && q[2] == ':' && strchr("nsbcfi", q[3]) != nullptr;
  if (!bWord && q[1] != 'v' && q[1] != 'a') return;
  auto fnIs = [&](const char* sTag) {
    const size_t n = strlen(sTag);
    return nLeft > n && memcmp(q, sTag, n) == 0 && (q[n] == ' ' || q[n] == '/' || q[n] == '>');
  };
  if (fnIs("<w:noBreakHyphen")) {
    para.text.push_back('-');
  } else if (fnIs("<w:sym")) {
    para.text += SymbolText(q, pRunEnd);
  } else if (fnIs("<w:br") || fnIs("<w:cr")) {
    if (IsLineBreak(q, pRunEnd)) para.text.push_back('\n');
  } else if (fnIs("<w:fldChar")) {
    const char* pGt = static_cast<const char*>(memchr(q, '>', nLeft));
    tstring sType;
    FindAttr(q, pGt ? pGt : pRunEnd, "w:fldCharType", sType);
    if (sType == "begin" && m_vecField.size() < kMaxFieldDepth) m_vecField.push_back("");
    if (sType == "end" && !m_vecField.empty()) m_vecField.pop_back();
  } else if (fnIs("<w:instrText")) {
    const char* pGt = static_cast<const char*>(memchr(q, '>', nLeft));
    const char* pClose = FindIn(q, pRunEnd, "</w:instrText>");
    if (pGt && pClose && pGt < pClose) {
      const tstring sInstruction = DecodeEntities(pGt + 1, pClose);
      if (!m_vecField.empty()) {  // the outer fields were noted already
        m_vecField.back() += sInstruction;
        para.kinds |= FieldKinds(m_vecField.back());
      }
      if (!bPageRef) bPageRef = sInstruction.find("PAGEREF") != tstring::npos;
    }
  } else if (!bImage && nLeft > 16 && memcmp(q, "<v:imagedata r:i", 16) == 0) {
    bImage = FindAttr(q, pRunEnd, "r:id", sRelId) || true;
  } else if (!bImage && nLeft > 15 && memcmp(q, "<a:blip r:embed", 15) == 0) {
    bImage = FindAttr(q, pRunEnd, "r:embed", sRelId) || true;
  }
}

void CDocxParser::AddFigure(_tParagraph& para, const tstring& sRelId) {
  // The number text goes to paragraphs with text, and to empty ones only
  // when their level is negative: kept as the model always had it.
  if (!para.text.empty() || para.level < 0) para.text += "(Figure " + std::to_string(m_pDoc->m_vecFigure.size()) + ")";
  _tFigure figure;
  figure.figure_id = sRelId;
  auto it = m_mapId2Res.find(sRelId);
  if (it != m_mapId2Res.end()) figure.figure_file = it->second.file;
  StoreFigure(figure, para);
}

void CDocxParser::StoreFigure(_tFigure figure, const _tParagraph& para) {
  figure.para_index = (int)m_pDoc->m_vecParagraph.size();
  figure.para_id = para.id;
  m_pDoc->m_vecFigure.push_back(figure);
  _tParagraph placeholder = para;
  placeholder.level = kLevelFigure;
  placeholder.id = (uint32_t)(m_pDoc->m_vecFigure.size() - 1);
  m_pDoc->m_vecParagraph.push_back(placeholder);
  m_nFigureCaptionFilled = 0;
}

void CDocxParser::ExtractFont(const char* pStart, const char* pEnd, _tParagraph& para, const tstring& sStyleId,
                              bool bInStyle) {
  if (!para.font.empty() && !IsLatinFontName(para.font) && para.font_size >= 1) return;
  tstring sValue;
  if (FindElementAttr(pStart, pEnd, "w:sz", "w:val", sValue))
    para.font_size = ToInt(sValue);
  else if (!bInStyle && FindElementAttr(pStart, pEnd, "w:szCs", "w:val", sValue))
    para.font_size = ToInt(sValue);
  else
    para.font_size = 0;
  // Font names come from "<w:rFonts>" only: "<w:lang w:eastAsia=\"zh-CN\">"
  // names a language, not a font.
  for (const char* sAttr : {"w:eastAsia", "w:ascii", "w:hAnsi"}) {
    if (!para.font.empty() && !IsLatinFontName(para.font)) break;
    if (!FindElementAttr(pStart, pEnd, "w:rFonts", sAttr, sValue) || sValue.empty()) continue;
    if (para.font.empty() || !IsLatinFontName(sValue)) para.font = sValue;
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

void ParagraphPostProcess(_tParagraph& para) {
  tstring& s = para.text;
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n')) s.pop_back();
  // An equation number at the end: "... (12)" with a blank before the bracket.
  if (para.level != 0 || s.size() <= 3 || s.back() != ')' || !isdigit((unsigned char)s[s.size() - 2])) return;
  size_t nOpen = s.rfind('(');
  if (nOpen == tstring::npos || s.size() - nOpen > 9 || !isdigit((unsigned char)s[nOpen + 1])) return;
  if (nOpen == 0 || s[nOpen - 1] == ' ' || s[nOpen - 1] == '\t') para.level = kLevelFormula;
}

void CDocxParser::FindFigureCaption() {
  if (m_nFigureCaptionFilled != 0 || m_pDoc->m_vecFigure.empty() || m_pDoc->m_vecParagraph.empty()) return;
  _tParagraph& para = m_pDoc->m_vecParagraph.back();
  if (para.text.empty() || para.level == kLevelFigure || para.level == kLevelTable) return;
  const int nIndex = (int)m_pDoc->m_vecParagraph.size() - 1;
  const _tFigure& last = m_pDoc->m_vecFigure.back();
  // A numbered caption (a SEQ field counting figures) or one of a caption
  // style is one too, unless it names a table.
  const tstring sSeen = para.NumberedText();
  const bool bNamesTable = sSeen.compare(0, 3, "表") == 0 || strncasecmp(sSeen.c_str(), "Table", 5) == 0;
  bool bCaption = NearEnds(sSeen, "图", 7) || (para.numPtr != 0 && para.level == 0 && last.para_id > para.id) ||
                  (para.kinds & kKindSeqFigure) ||
                  ((para.kinds & kKindCaptionStyle) && !(para.kinds & kKindSeqTable) && !bNamesTable);
  bool bNear = nIndex - last.para_index <= 2 || (nIndex >= 2 && m_pDoc->m_vecParagraph[nIndex - 2].level == kLevelTextBox);
  if (!bCaption || !bNear) return;
  para.level = kLevelFigureCaption;
  for (size_t f = m_pDoc->m_vecFigure.size(); f-- > 0;) {
    _tFigure& figure = m_pDoc->m_vecFigure[f];
    if (figure.caption_index != (unsigned)-1 || nIndex - figure.para_index > 4) break;
    figure.caption_index = (unsigned)nIndex;
  }
  m_nFigureCaptionFilled = 1;
}

void CDocxParser::ExtractTable(const char* pStart, const char* pEnd) {
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
    table.caption_index = (int)m_pDoc->m_vecParagraph.size();
    m_pDoc->m_vecParagraph.push_back(caption);
  } else if (!m_pDoc->m_vecParagraph.empty()) {
    _tParagraph& before = m_pDoc->m_vecParagraph.back();
    const tstring sSeen = before.NumberedText();
    if ((before.level == 0 || before.level > 2) &&
        (NearEnds(sSeen, "表", 7) || NearEnds(sSeen, "Table", 7) || (before.kinds & kKindSeqTable) ||
         ((before.kinds & kKindCaptionStyle) && !(before.kinds & kKindSeqFigure)))) {
      before.level = kLevelTableCaption;
      table.caption_index = (int)m_pDoc->m_vecParagraph.size() - 1;
    }
  }
  table.para_index = (int)m_pDoc->m_vecParagraph.size();
  m_pDoc->m_vecTable.push_back(table);
  _tParagraph placeholder;
  placeholder.level = kLevelTable;
  placeholder.id = (uint32_t)(m_pDoc->m_vecTable.size() - 1);
  m_pDoc->m_vecParagraph.push_back(placeholder);
}

int CDocxParser::StyleID2Level(const tstring& sStyleId) const {
  auto it = m_mapStyleId2Level.find(sStyleId);
  return it == m_mapStyleId2Level.end() ? 0 : it->second;
}

void CDocxParser::ExtractStyles(const CDocxPackage& package) {
  tstring sStyles;
  if (!package.ReadPart("/word/styles.xml", sStyles, "Failed while reading file ")) return;
  const char* pEnd = sStyles.data() + sStyles.size();
  std::map<tstring, _tParagraph> mapAll;  // every paragraph style read so far, for based-on lookups
  std::map<tstring, _tStyleLink> mapLinks;  // every paragraph style, for what chains of them give
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
    _tStyleLink& link = mapLinks[sId];
    link.based_on = sBased;
    link.kinds = StyleKinds(sName);
    if (FindElementAttr(p, pStyleEnd, "w:numId", "w:val", sValue)) link.num_id = ToInt(sValue);
    if (FindElementAttr(p, pStyleEnd, "w:ilvl", "w:val", sValue)) link.ilvl = ToInt(sValue);
    p = pStyleEnd;
  }
  ResolveStyleLinks(mapLinks);
}

// The kinds of paragraph a style name makes: contents entries ("toc 1"),
// entries of a list of figures, captions (also the names Chinese templates
// give their own caption styles).
unsigned CDocxParser::StyleKinds(const tstring& sName) {
  // "toc 1".."toc 9"; "TOC Heading" names the title above the entries.
  if (strncasecmp(sName.c_str(), "toc ", 4) == 0 && isdigit((unsigned char)sName[4])) return kKindInContents;
  if (strcasecmp(sName.c_str(), "table of figures") == 0) return kKindFigureList;
  static const char* const kCaptionNames[] = {"图题", "表题", "图名", "表名"};
  if (strcasecmp(sName.c_str(), "caption") == 0 || sName.find("题注") != tstring::npos) return kKindCaptionStyle;
  for (const char* szName : kCaptionNames)
    if (sName == szName) return kKindCaptionStyle;
  return 0;
}

// What a style takes from the styles it is based on: its numbering and its
// kinds, through chains in any order of the file; a chain that loops or runs
// deeper than the styles there are ends there.
void CDocxParser::ResolveStyleLinks(const std::map<tstring, _tStyleLink>& mapLinks) {
  for (const auto& kv : mapLinks) {
    _tStyleLink resolved = kv.second;
    const _tStyleLink* pLink = &kv.second;
    for (size_t nDepth = 0; nDepth < mapLinks.size() && !pLink->based_on.empty(); ++nDepth) {
      auto it = mapLinks.find(pLink->based_on);
      if (it == mapLinks.end()) break;
      pLink = &it->second;
      resolved.kinds |= pLink->kinds;
      if (resolved.num_id < 0) resolved.num_id = pLink->num_id;
      if (resolved.ilvl < 0) resolved.ilvl = pLink->ilvl;
    }
    if (resolved.kinds) m_mapStyleKinds[kv.first] = resolved.kinds;
    if (resolved.num_id > 0) m_mapStyleNumbering[kv.first] = {resolved.num_id, resolved.ilvl};
  }
}

int CDocxParser::GetTypeId(const tstring& sType) {
  for (size_t i = 0; i < m_vecTypes.size(); ++i)
    if (m_vecTypes[i] == sType) return (int)i;
  m_vecTypes.push_back(sType);
  return (int)m_vecTypes.size() - 1;
}

void CDocxParser::ReadResInfo(const CDocxPackage& package) {
  tstring sRels;
  if (!package.ReadPart("word/_rels/document.xml.rels", sRels, "Failed Read File ")) return;
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

void CDocxParser::ReadHeaderFooter(const CDocxPackage& package) {
  const char* kKinds[2] = {"word/header", "word/footer"};
  const int kLevels[2] = {kLevelHeader, kLevelFooter};
  for (int k = 0; k < 2; ++k) {
    for (size_t n = 1;; ++n) {
      tstring sPart;
      if (!package.ReadPart(tstring(kKinds[k]) + std::to_string(n) + ".xml", sPart, "Failed Read File ")) break;
      const char* pEnd = sPart.data() + sPart.size();
      const char* pPara = FindElement(sPart.data(), pEnd, "<w:p");
      if (pPara == nullptr) continue;
      const char* pClose = FindIn(pPara, pEnd, "</w:p>");
      // Ids of header and footer paragraphs count from their own file's start.
      _tParagraph para;
      ExtractParagrah(pPara, pClose ? pClose + 6 : pEnd, para, (uint32_t)(pPara + 3 - sPart.data()), false);
      para.level = kLevels[k];
      para.page_num = (int)n;
      if (!para.text.empty()) m_pDoc->m_vecHeadFooter[k].push_back(para);
    }
  }
}

