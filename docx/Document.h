#pragma once
// CDocument is the document model as a value: the ordered paragraph list of
// one document with its tables, figures, headers and footers, where it came
// from, and the indexes the checks read. It describes the document and makes
// no findings; the parser fills it, the checks read it (the chapter scan of
// the format check may demote headings and rebuild the chapters).
//
// Every paragraph is named by its paraId: the byte offset of the "p" of its
// "<w:p" tag in word/document.xml, printed "%08X" everywhere.
//
// Indexes, rebuilt by BuildIndexes from the paragraph list:
//   Headings()         indexes of the heading paragraphs (levels 1 to 4), in order
//   ContentEntries()   indexes of the table-of-contents entries (level 13):
//                      those inside a contents field or of a contents style
//                      when the document has any, else every level-13
//                      paragraph; never entries of a list of figures
//   FormulaIndexes()   indexes of the formula paragraphs (level -512)
//   ReferenceStart(), ReferenceEnd()
//                      the paragraphs after a heading or caption "参考文献" /
//                      "References" / "Bibliography" up to the next heading
//                      (inclusive range of indexes; -1 when there is none)
//   ChapterParaIndexes(), ChapterIds()
//                      first-level chapters: the indexes of the level-1
//                      headings and their numbers 1, 2, 3 ... (the chapter
//                      scan may replace them through SetChapters)
// page_num of body paragraphs stays 0 until pages are assigned.
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "docx/Paragraph.h"
#include "utility/TString.h"

// Character counts of a document's texts (see CharStat).
struct _tCharCount {
  int64_t single_byte = 0;
  int64_t multi_byte = 0;
  int64_t total = 0;
};

class CDocument {
 public:
  tstring m_sPath;          // working folder (local code page); "" for a text in memory
  tstring m_sFilename;      // document name without extension
  tstring m_sURLPrefix;     // URL prefix of the HTML pages
  tstring m_sDocFormatExt;  // extension of the imported file
  int m_nDocType = 0;       // report type it was imported for

  std::vector<_tParagraph> m_vecParagraph;      // body paragraphs and placeholders, in order
  std::vector<_tTable> m_vecTable;
  std::vector<_tFigure> m_vecFigure;
  std::vector<_tParagraph> m_vecHeadFooter[2];  // headers, then footers
  std::vector<uint32_t> m_vecPageParaId;        // first paragraph of each page

  void Reset() { *this = CDocument(); }

  // Rebuilds the indexes from the paragraph list.
  void BuildIndexes();

  const std::vector<int>& Headings() const { return m_vecDocStruct; }
  const std::vector<int>& ContentEntries() const { return m_vecContentStruct; }
  const std::vector<int>& FormulaIndexes() const { return m_vecFormulaIndex; }
  int ReferenceStart() const { return m_nReferenceStartIndex; }
  int ReferenceEnd() const { return m_nReferenceEndIndex; }
  const std::vector<int>& ChapterParaIndexes() const { return m_vecChapterParaIndex; }
  const std::vector<int>& ChapterIds() const { return m_vecChapterId; }
  // Replaces the chapter list: paragraph indexes of the chapter headings and
  // their numbers, pairwise.
  void SetChapters(std::vector<int> vecParaIndex, std::vector<int> vecChapterId);

  // The text of a paragraph of the list or of a table cell; "" when unknown.
  // The reference stays valid while the document is not changed.
  const tstring& GetText(uint32_t nParaId) const;
  int GetLevel(uint32_t nParaId) const;
  // Finds a paragraph in the main list or a table cell; false when unknown.
  bool GetParaIndex(uint32_t nParaId, _tParaIndex& index) const;
  uint32_t GetLastParaID() const { return m_vecParagraph.empty() ? 0 : m_vecParagraph.back().id; }
  // The id of the chapter heading that holds a paragraph; 0 before the first chapter.
  uint32_t LocateChapterID(uint32_t nParaId) const;

  // Counts the characters of headers, footers, paragraphs (placeholders
  // excepted: they copy other texts) and table cells.
  _tCharCount DocCharStat() const;

  // Every paragraph of the document in reading order for checks that visit
  // all texts: headers, footers, body, then table cells row by row.
  template <class F>
  void ForEachParagraph(F&& fn) const {
    for (const auto& vecList : m_vecHeadFooter)
      for (const _tParagraph& para : vecList) fn(para);
    for (const _tParagraph& para : m_vecParagraph) fn(para);
    for (const _tTable& table : m_vecTable)
      for (const auto& row : table.rows)
        for (const auto& cell : row)
          for (const _tParagraph& para : cell) fn(para);
  }

 private:
  void IndexContents();

  std::unordered_map<uint32_t, _tParaIndex> m_mapParaId2Index;  // paraId -> place, list or table cell
  std::vector<int> m_vecFormulaIndex;
  std::vector<int> m_vecDocStruct;
  std::vector<int> m_vecContentStruct;
  int m_nReferenceStartIndex = -1;
  int m_nReferenceEndIndex = -1;
  std::vector<int> m_vecChapterParaIndex;
  std::vector<int> m_vecChapterId;
};
