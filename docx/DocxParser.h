#pragma once
// CDocxParser reads the parts of an unpacked DOCX into a CDocument: the body
// of word/document.xml as an ordered list of paragraphs with their tables
// and figures, the paragraph styles, the relations and the first paragraph
// of each header and footer. One parser reads one document: it keeps the
// state of that reading (styles, relations, the figure waiting for its
// caption) and nothing else.
//
// The XML is never parsed into a tree: tags are found by bounded substring
// search inside the range of the element being read.
//
// Rules of the reading (in the order they apply):
//   Body scan: each "<w:p" (followed by a blank or '>') starts a paragraph,
//   each "<w:tbl" a table up to "</w:tbl>"; anything else is skipped. The
//   paragraphs nested in text boxes of a paragraph are pieces of their own
//   (level -202); the text around them belongs to the outer paragraph (a
//   gap of more than 20 bytes between two boxes is a piece of its own with
//   the outer paragraph's id). With two or more boxes and a table inside the
//   paragraph, the scan resumes at that table.
//   Storing: an empty paragraph of level 0 or more is dropped; a paragraph
//   whose id is below the last stored id is refused (logged); a heading or
//   contents entry following an empty one of the same level replaces it.
//   Paragraph: "w:line" spacing, "w:numId" numbering, the style's level,
//   else "w:outlineLvl" 0..3 as levels 1..4; runs give text ("<w:t>",
//   "<m:t>", "<w:tab/>"), vertical alignment marks "<superscript>..",
//   PAGEREF fields (" . ", level 13), figures ("<v:imagedata r:i",
//   "<a:blip r:embed") and the font (a Chinese name wins over a Latin one;
//   the size, font, level and numbering of the style fill what the runs
//   leave empty). A trailing equation number "(12)" after a blank makes a
//   body paragraph a formula (-512).
//   Figures: a placeholder (level -200, id = the figure's index) stands
//   before the paragraph that holds the image; a paragraph that holds "图"
//   within its first or last 7 bytes (or a numbered body paragraph above
//   the image) at most 2 paragraphs later is its caption (-201).
//   Tables: a first row of one cell holding "表" is the caption, else the
//   paragraph before when it holds "表" or "Table" within its first or last
//   7 bytes (-102); a placeholder (-100, id = the table's index) follows.
//   Styles: "heading N" names give level N, "Title" styles the number after
//   "标题" in their aliases, else "w:outlineLvl" 0..3; a style without a size
//   takes size, font, level and numbering of its base style; only levels 1
//   to 3 make heading styles.
//   Headers and footers: "word/header1.xml", 2, ... until one is missing,
//   then the footers; the first paragraph of each, ids from its own start.
//   Automatic numbering (word/numbering.xml, CNumbering): each body or cell
//   paragraph numbered directly or through its style (style chains
//   followed) gets the label its list shows at that point of the document
//   (num_label); empty paragraphs count too, as they show their numbers.
#include <map>
#include <memory>
#include <vector>

#include "docx/Numbering.h"
#include "docx/Paragraph.h"
#include "utility/TString.h"

class CDocument;
class CDocxPackage;
class CNumberingCounter;

class CDocxParser {
  // What one style gives and takes through "w:basedOn".
  struct _tStyleLink {
    tstring based_on;
    int num_id = -1;  // -1: not its own
    int ilvl = -1;
    unsigned kinds = 0;
  };

 public:
  CDocxParser();
  ~CDocxParser();
  // Holds the state of one reading; a parser is made for each document.
  CDocxParser(const CDocxParser&) = delete;
  CDocxParser& operator=(const CDocxParser&) = delete;

  // Reads the unpacked document of a package into doc, replacing its
  // paragraphs, tables, figures, headers and footers, and rebuilding its
  // indexes. Styles, relations, headers and footers are read only with
  // bHtmlNeeded. Returns the number of paragraphs; -1 when
  // word/document.xml is missing or has no body (the last error says which).
  int ParseStruct(const CDocxPackage& package, int nDocType, const char* sURLPrefix, bool bHtmlNeeded,
                  CDocument& doc);

 private:
  void ScanBody(const char* pBody, const char* pEnd);
  const char* ScanParagraph(const char* pTag, const char* pEnd);
  uint32_t AddParagraph(const char* pStart, const char* pEnd, uint32_t nParaId, bool bTextBox);
  void AddOnePara(_tParagraph& para);
  void ExtractParagrah(const char* pStart, const char* pEnd, _tParagraph& para, uint32_t nParaId, bool bTextBox);
  void ExtractRun(const char* pRun, const char* pRunEnd, _tParagraph& para, const tstring& sStyleId);
  void ExtractRunMark(const char* pTag, const char* pRunEnd, _tParagraph& para, bool& bPageRef, bool& bImage,
                      tstring& sRelId);
  void NoteField(_tParagraph& para) const;
  void NoteSimpleFields(const char* pStart, const char* pEnd, _tParagraph& para) const;
  void NoteStyle(const tstring& sStyleId, _tParagraph& para) const;
  void ExtractFont(const char* pStart, const char* pEnd, _tParagraph& para, const tstring& sStyleId, bool bInStyle);
  void AddFigure(_tParagraph& para, const tstring& sRelId);
  // Stores a figure of the paragraph and its placeholder before it.
  void StoreFigure(_tFigure figure, const _tParagraph& para);
  void FindFigureCaption();
  void ExtractTable(const char* pStart, const char* pEnd);
  void ExtractStyles(const CDocxPackage& package);
  void ReadNumbering(const CDocxPackage& package);
  // nOwnNumId: the numId of the paragraph's own properties, -1 for none.
  tstring NumberLabel(int nOwnNumId, const char* pStart, const char* pHead, const tstring& sStyleId);
  static unsigned StyleKinds(const tstring& sName);
  void ResolveStyleLinks(const std::map<tstring, _tStyleLink>& mapLinks);
  void ReadResInfo(const CDocxPackage& package);
  void ReadHeaderFooter(const CDocxPackage& package);
  int StyleID2Level(const tstring& sStyleId) const;
  int GetTypeId(const tstring& sType);

  CDocument* m_pDoc = nullptr;                    // the document being read; not owned
  tstring m_sDocument;                            // word/document.xml as read
  std::vector<_tParagraph> m_vecStyles;           // paragraph styles with a size
  std::map<tstring, _tParagraph> m_mapStyleId2Style;
  std::map<tstring, int> m_mapStyleId2Level;      // heading styles: style id -> level 1..3
  std::map<tstring, _tRelationInfo> m_mapId2Res;  // relation id -> target and type
  std::vector<tstring> m_vecTypes;                // relation types, by first appearance
  std::map<tstring, unsigned> m_mapStyleKinds;    // style id -> EParaKind bits its paragraphs get
  std::map<tstring, std::pair<int, int>> m_mapStyleNumbering;  // style id -> numId and ilvl (-1 unsaid) it gives
  std::vector<tstring> m_vecField;                // instructions of the fields open, innermost last
  static constexpr size_t kMaxFieldDepth = 64;    // deeper "begin"s are not followed
  CNumbering m_numbering;                         // word/numbering.xml
  std::unique_ptr<CNumberingCounter> m_pCounter;  // its counters in document order; null without numbering
  int m_nFigureCaptionFilled = 1;                 // 0 while a figure waits for its caption
  uint32_t m_nLastParaId = 0xFFFFFFFFu;           // id of the last paragraph stored; all ones before any
};

// Formulas: a body paragraph that ends in an equation number "(12)" after a
// blank becomes level -512; trailing blanks are cut from every paragraph.
void ParagraphPostProcess(_tParagraph& para);
