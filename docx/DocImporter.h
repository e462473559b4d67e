#pragma once
// CDocImporter brings a file into a CDocument by its kind, and writes the
// structure file of what it read:
//   doc*, wps*  the DOCX (a .doc or .wps through its .docx twin)
//   xml         a structure file written earlier
//   htm*        the page's text (GB pages converted), written as <name>.txt, as text
//   pdf, images, tex, xls*, ppt*: refused (no converter in this build)
//   txt and anything else: as text, one paragraph per non-empty line
// Paragraph texts are segmented by the lexical analyser when one is given.
#include "utility/TString.h"

class CDocument;
class CLexicalAnalyser;

class CDocImporter {
 public:
  // pAnalyser may be null (texts stay unsegmented); it must outlive the importer.
  explicit CDocImporter(const CLexicalAnalyser* pAnalyser) : m_pAnalyser(pAnalyser) {}

  // Imports a file by its extension, then writes its structure file.
  // Returns 1; 0 when the file cannot be read or converted; -1 a DOCX that
  // could not be imported; -2 a structure file that could not be loaded;
  // -3 an HTML page that could not be read; -4 its text that could not be written.
  int ImportFile(CDocument& doc, const char* sFilename, const char* sURLPrefix, int nType, int nResultFormat) const;

  // Text becomes paragraphs: one per non-empty line, its id the byte offset
  // of the line, level 0 (or formula). A file is converted to UTF-8 first
  // when it is in another encoding, and gets a working folder beside it.
  // Return 1; 0 when the file cannot be read (or the text is null).
  int ImportText(CDocument& doc, const char* sFilename, int nDocType) const;
  int ImportMemory(CDocument& doc, const char* sText, int nType) const;

  // Reads a DOCX (or the twin of a .doc or .wps) into doc and writes its
  // structure file; returns the file's path, "" on failure.
  tstring ImportDocx(CDocument& doc, const char* sDocxFilename, const char* sURLPrefix, int nType,
                     int nResultFormat) const;
  // Reads a DOCX into doc: unpacked, parsed, segmented. The number of
  // paragraphs; a negative status of the unpacking or parsing on failure.
  int ParseDocx(CDocument& doc, const char* sDocxFilename, const char* sURLPrefix, int nType) const;

  // Loads a saved structure file (or text). Returns the number of
  // paragraphs; 0 with "Fail read file <name>" (or the reason) otherwise.
  size_t LoadDocResult(CDocument& doc, const char* sResultXMLFilename) const;
  size_t InputXMLData(CDocument& doc, const tstring& sXml) const;

  // The DOCX to read for a document: a .docx itself, or the converted ".docx"
  // twin beside a .doc or .wps (the converter is not run here). "" with
  // "<name> is invalid docx file." for any other extension.
  static tstring Doc2Docx(const char* sFilename);

 private:
  // Segments every paragraph and cell text of the document.
  void Segment(CDocument& doc) const;
  // One paragraph per non-empty line, its id the byte offset of the line.
  static void LoadText(CDocument& doc, const tstring& sText);

  const CLexicalAnalyser* m_pAnalyser;  // not owned; may be null
};
