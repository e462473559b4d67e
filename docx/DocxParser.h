#pragma once
// CDocxParser is the document model: a DOCX unpacked into a working folder
// beside it ("<name>_unzip") and read into an ordered list of paragraphs,
// with tables, figures, styles, headers and footers. Every paragraph is
// named by its paraId: the byte offset of the "p" of its "<w:p" tag in
// word/document.xml, printed "%08X" everywhere.
//
// The XML is never parsed into a tree: tags are found by bounded substring
// search inside the range of the element being read.
//
// Besides the paragraph list the model keeps, for the checks:
//   m_vecDocStruct        indexes of the heading paragraphs (levels 1 to 4), in order
//   m_vecContentStruct    indexes of the table-of-contents entries (level 13)
//   m_nReferenceStartIndex, m_nReferenceEndIndex
//                         the paragraphs after a heading or caption "参考文献" /
//                         "References" / "Bibliography" up to the next heading
//                         (inclusive range of indexes; -1 when there is none)
//   m_vecChapterParaIndex, m_vecChapterId
//                         first-level chapters: the indexes of the level-1
//                         headings and their numbers 1, 2, 3 ... (the format
//                         check's chapter scan may rebuild them)
//   page_num of body paragraphs: 0 until pages are assigned.
#include <map>
#include <vector>

#include "docx/Paragraph.h"
#include "utility/TString.h"

class CDocxParser {
 public:
  CDocxParser() = default;
  // The model owns a working folder's worth of parsed text; never copied.
  CDocxParser(const CDocxParser&) = delete;
  CDocxParser& operator=(const CDocxParser&) = delete;

  // Imports a file by its extension, then writes its structure file:
  //   doc*, wps*  the DOCX (a .doc or .wps through its .docx twin)
  //   xml         a structure file written earlier
  //   htm*        the page's text (GB pages converted), written as <name>.txt, as text
  //   pdf, images, tex, xls*, ppt*: refused (no converter in this build)
  //   txt and anything else: as text
  // Returns 1; 0 when the file cannot be read or converted; -1 a DOCX that
  // could not be imported; -2 a structure file that could not be loaded;
  // -3 an HTML page that could not be read; -4 its text that could not be written.
  int ImportFile(const char* sFilename, const char* sURLPrefix, int nType, int nResultFormat);

  // Text becomes paragraphs: one per non-empty line, its id the byte offset
  // of the line, level 0 (or formula). A file is converted to UTF-8 first
  // when it is in another encoding, and gets a working folder beside it.
  // Return 1; 0 when the file cannot be read (or the text is null).
  int ImportText(const char* sFilename, int nDocType);
  int ImportMemory(const char* sText, int nType, int nResultFormat);

  // Reads a DOCX and writes its structure file; returns the file's path,
  // valid until the next import on this parser; null on failure.
  const char* ImportDocx(const char* sDocxFilename, const char* sURLPrefix, int nType, int nResultFormat);

  // Unpacks a DOCX into its working folder. Returns 1; -2 when the package
  // holds no item or cannot be read; -3 when it is refused as unsafe.
  int ReadDocx(const char* sFile);

  // Reads the unpacked document into the model. Returns the number of
  // paragraphs; -1 when word/document.xml is missing or has no body.
  int ParseStruct(int nDocType, const char* sURLPrefix, bool bHtmlNeeded);

  // Loads a saved structure file (or text). Returns the number of
  // paragraphs; 0 with "Fail read file <name>" (or the reason) otherwise.
  size_t LoadDocResult(const char* sResultXMLFilename);
  size_t InputXMLData(const tstring& sXml);
  // The content text (the structure without its declaration) read back the same way.
  size_t InputContentXML(const tstring& sXml) { return InputXMLData(sXml); }

  // The DOCX to read for a document: a .docx itself, or the converted ".docx"
  // twin beside a .doc or .wps (the converter is not run here). "" with
  // "<name> is invalid docx file." for any other extension.
  tstring Doc2Docx(const char* sFilename);

  // The template chosen for the document; null before one was chosen.
  // The template keys of the current document as JSON; valid until the next
  // call that returns text.
  const char* GetCurTemplateInfo();
  // The keys a template is chosen by: the organisation handed to the check
  // ("*" when none) and "*" for area and argument.
  void GetOrgType(int nReportType, tstring& sOrganization, tstring& sArea, tstring& sArgument) const;

  // The structure as XML (CR LF lines) or JSON; valid until the next call
  // that returns text on this parser.
  const char* GetXMLData();
  const char* GetJsonData(bool bTableFigureIncluded);
  // Writes GetXMLData (format 0) or GetJsonData to "<folder>/<name>.xml"
  // or ".json"; returns the path, valid like the texts; null on failure.
  const char* GetXMLFile(int nResultFormat);
  // The content text: the structure XML without its declaration line, or
  // the JSON with tables and figures.
  const char* GetContentXML();
  const char* GetContentJson();
  // Write the content text to "<folder>/<name>_Content.xml" (opened by the
  // XML declaration) or "_Content.json"; return the path; null on failure.
  const char* GetContentXMLFile();
  const char* GetContentJsonFile();

  const tstring& GetText(uint32_t nParaId) const;
  int GetLevel(uint32_t nParaId) const;
  // Finds a paragraph in the main list or a table cell; false when unknown.
  bool GetParaIndex(uint32_t nParaId, _tParaIndex& index) const;
  uint32_t GetLastParaID() const { return m_vecParagraph.empty() ? 0 : m_vecParagraph.back().id; }
  // The id of the chapter heading that holds a paragraph; 0 before the first chapter.
  uint32_t LocateChapterID(uint32_t nParaId) const;

  void Reset();

  tstring m_sPath;          // working folder (local code page)
  tstring m_sFilename;      // document name without extension
  tstring m_sURLPrefix;     // URL prefix of the HTML pages
  tstring m_sDocFormatExt;  // extension of the imported file
  int m_nDocType = 0;
  tstring m_sOrganization;  // organisation the current check is for
  int m_nResultFormat = 0;

  std::vector<_tParagraph> m_vecParagraph;
  std::vector<_tTable> m_vecTable;
  std::vector<_tFigure> m_vecFigure;
  std::vector<_tParagraph> m_vecStyles;
  std::map<tstring, _tParagraph> m_mapStyleId2Style;
  std::map<tstring, int> m_mapStyleId2Level;
  std::map<tstring, _tRelationInfo> m_mapId2Res;
  std::vector<tstring> m_vecTypes;
  std::vector<_tParagraph> m_vecHeadFooter[2];  // headers, then footers
  std::map<uint32_t, size_t> m_mapParaId2Index;
  std::vector<int> m_vecFormulaIndex;
  std::vector<int> m_vecDocStruct;
  std::vector<int> m_vecContentStruct;
  int m_nReferenceStartIndex = -1;
  int m_nReferenceEndIndex = -1;
  std::vector<int> m_vecChapterParaIndex;
  std::vector<int> m_vecChapterId;
  std::vector<uint32_t> m_vecPageParaId;  // first paragraph of each page
  int64_t m_nSingleCharCount = 0, m_nMultiCharCount = 0, m_nCharCount = 0;

 private:
  bool ReadPart(const tstring& sRelative, tstring& sText, const char* sMissing) const;
  void LoadText(const tstring& sText);
  // Writes sText beside the working folder as <name> + sSuffix; its path, or null.
  const char* WriteBeside(const tstring& sSuffix, const tstring& sText);
  void ScanBody(const char* pBody, const char* pEnd);
  const char* ScanParagraph(const char* pTag, const char* pEnd);
  uint32_t AddParagraph(const char* pStart, const char* pEnd, uint32_t nParaId, bool bTextBox);
  void AddOnePara(_tParagraph& para);
  void ExtractParagrah(const char* pStart, const char* pEnd, _tParagraph& para, uint32_t nParaId, bool bTextBox);
  void ExtractRun(const char* pRun, const char* pRunEnd, _tParagraph& para, const tstring& sStyleId);
  void ExtractFont(const char* pStart, const char* pEnd, _tParagraph& para, const tstring& sStyleId, bool bInStyle);
  void ParagraphPostProcess(_tParagraph& para);
  void AddFigure(_tParagraph& para, const tstring& sRelId);
  // Stores a figure of the paragraph and its placeholder before it.
  void StoreFigure(_tFigure figure, const _tParagraph& para);
  void FindFigureCaption();
  const char* ExtractTable(const char* pStart, const char* pEnd);
  void ExtractStyles();
  void ReadResInfo();
  void ReadHeaderFooter();
  int StyleID2Level(const tstring& sStyleId) const;
  int GetTypeId(const tstring& sType);
  // Rebuilds the indexes from the paragraph list; bSegment also segments
  // every text (a loaded structure keeps its segmented texts).
  void BuildIndexes(bool bSegment);
  void DocCharStat();

  tstring m_sDocument;               // word/document.xml as read
  int m_nFigureCaptionFilled = 1;    // 0 while a figure waits for its caption
  uint32_t m_nLastParaId = 0xFFFFFFFFu;  // id of the last paragraph stored; all ones before any
  tstring m_sResult;                 // the last text returned
};
