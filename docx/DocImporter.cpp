#include "docx/DocImporter.h"

#include <strings.h>
#include <sys/stat.h>

#include <fstream>

#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/DocxParser.h"
#include "docx/StructureReader.h"
#include "docx/StructureWriter.h"
#include "utility/CodePage.h"
#include "utility/CodeTrans.h"
#include "utility/DirBrowser.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/HtmlText.h"
#include "utility/lexical/LexicalAnalyser.h"

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

bool IsWordDocument(const tstring& sExt) {
  return strncasecmp(sExt.c_str(), "doc", 3) == 0 || strncasecmp(sExt.c_str(), "wps", 3) == 0;
}

// An HTML page's text written beside it as <name>.txt; that file's name, or
// "" with the status in nStatus.
tstring HtmlAsText(const tstring& sName, const tstring& sDir, const tstring& sBase, int& nStatus) {
  tstring sHtml;
  if (!ReadFileText(sName, sHtml)) {
    SetLastError("Cannot open file " + sName);
    nStatus = -3;
    return "";
  }
  if (strncasecmp(HtmlCharset(sHtml).c_str(), "gb", 2) == 0) sHtml = GBKToUTF8(sHtml);
  const tstring sTextFile = (sDir.empty() ? sBase : sDir + "/" + sBase) + ".txt";
  std::ofstream out(sTextFile, std::ios::binary);
  if (!(out << HtmlToText(sHtml)) || !out.flush()) {
    SetLastError("Cannot write file " + sTextFile);
    nStatus = -4;
    return "";
  }
  return sTextFile;
}

}  // namespace

int CDocImporter::ImportFile(CDocument& doc, const char* sFilename, const char* sURLPrefix, int nType,
                             int nResultFormat) const {
  const tstring sName = sFilename ? sFilename : "";
  tstring sDir, sBase, sExt;
  SplitPath(sName, sDir, sBase, sExt);
  if (const char* sConverter = ConverterFor(sExt)) {
    SetLastError("No converter for ." + sExt + " documents in this build (" + sConverter + ")");
    return 0;
  }
  if (IsWordDocument(sExt)) {
    if (ImportDocx(doc, sName.c_str(), sURLPrefix, nType, nResultFormat).empty()) {
      WriteError("Cannot open file " + sName);
      return -1;
    }
    return 1;
  }
  if (strcasecmp(sExt.c_str(), "xml") == 0) {
    if (LoadDocResult(doc, sName.c_str()) == 0) {
      WriteError("Cannot open file " + sName);
      return -2;
    }
    return 1;
  }
  tstring sTextFile = sName;
  if (strncasecmp(sExt.c_str(), "htm", 3) == 0) {
    int nStatus = 0;
    sTextFile = HtmlAsText(sName, sDir, sBase, nStatus);
    if (sTextFile.empty()) return nStatus;
  }
  if (ImportText(doc, sTextFile.c_str(), nType) <= 0) return 0;
  doc.m_sDocFormatExt = sExt;
  doc.m_sURLPrefix = sURLPrefix ? sURLPrefix : "";
  return CStructureWriter::WriteStructureFile(doc, nResultFormat).empty() ? 0 : 1;
}

int CDocImporter::ImportText(CDocument& doc, const char* sFilename, int nDocType) const {
  const tstring sName = AbsolutePath(sFilename ? sFilename : "");
  tstring sDir, sBase, sExt, sText;
  SplitPath(sName, sDir, sBase, sExt);
  if (!ReadFileText(sName, sText)) {
    SetLastError("Cannot open file " + tstring(sFilename ? sFilename : ""));
    return 0;
  }
  // Texts come in many encodings: anything but UTF-8 is converted first.
  tstring sCharset = CodeTrans_Detect(sText.data(), sText.size());
  if (!sCharset.empty() && sCharset != "UTF-8") sText = ConvertLenient(sText, sCharset.c_str(), "UTF-8");
  if (sText.compare(0, 3, "\xEF\xBB\xBF") == 0) sText.erase(0, 3);
  doc.Reset();
  doc.m_sFilename = sBase;
  doc.m_sPath = sDir + "/" + sBase + "_unzip";
  mkdir(doc.m_sPath.c_str(), 0777);  // results are written beside it, through "<folder>/.."
  doc.m_nDocType = nDocType;
  LoadText(doc, sText);
  doc.BuildIndexes();
  Segment(doc);
  return 1;
}

int CDocImporter::ImportMemory(CDocument& doc, const char* sText, int nType) const {
  doc.Reset();
  doc.m_sDocFormatExt = "txt";
  doc.m_nDocType = nType;
  if (sText == nullptr) return 0;
  LoadText(doc, sText);
  doc.BuildIndexes();
  Segment(doc);
  return 1;
}

void CDocImporter::LoadText(CDocument& doc, const tstring& sText) {
  for (size_t nStart = 0; nStart < sText.size();) {
    size_t nEnd = sText.find('\n', nStart);
    if (nEnd == tstring::npos) nEnd = sText.size();
    _tParagraph para;
    para.id = (uint32_t)nStart;
    para.text = sText.substr(nStart, nEnd - nStart);
    ParagraphPostProcess(para);
    if (para.text.find_first_not_of(" \t\r") != tstring::npos) doc.m_vecParagraph.push_back(para);
    nStart = nEnd + 1;
  }
}

void CDocImporter::Segment(CDocument& doc) const {
  if (m_pAnalyser == nullptr) return;
  for (_tParagraph& para : doc.m_vecParagraph) para.segment_txt = m_pAnalyser->ParagraphProcess(para.text, true);
  for (auto& table : doc.m_vecTable)
    for (auto& row : table.rows)
      for (auto& cell : row)
        for (auto& para : cell) para.segment_txt = m_pAnalyser->ParagraphProcess(para.text, true);
}

int CDocImporter::ParseDocx(CDocument& doc, const char* sDocxFilename, const char* sURLPrefix, int nType) const {
  CDocxPackage package;
  int nStatus = package.ReadDocx(sDocxFilename);
  if (nStatus != 1) {
    doc.Reset();
    return nStatus;
  }
  nStatus = CDocxParser().ParseStruct(package, nType, sURLPrefix, true, doc);
  if (nStatus >= 0) Segment(doc);
  return nStatus;
}

tstring CDocImporter::ImportDocx(CDocument& doc, const char* sDocxFilename, const char* sURLPrefix, int nType,
                                 int nResultFormat) const {
  const tstring sName = sDocxFilename ? sDocxFilename : "";
  tstring sDir, sBase, sExt;
  SplitPath(sName, sDir, sBase, sExt);
  const tstring sDocx = Doc2Docx(sName.c_str());
  if (sDocx.empty()) return "";
  doc.m_sDocFormatExt = sExt;
  if (ParseDocx(doc, sDocx.c_str(), sURLPrefix, nType) < 0) return "";
  return CStructureWriter::WriteStructureFile(doc, nResultFormat);
}

tstring CDocImporter::Doc2Docx(const char* sFilename) {
  const tstring sName = sFilename ? sFilename : "";
  tstring sDir, sBase, sExt;
  SplitPath(sName, sDir, sBase, sExt);
  if (!IsWordDocument(sExt)) {
    SetLastError(sName + " is invalid docx file.");
    return "";
  }
  return (sDir.empty() ? sBase : sDir + "/" + sBase) + ".docx";
}

size_t CDocImporter::LoadDocResult(CDocument& doc, const char* sResultXMLFilename) const {
  const tstring sFile = sResultXMLFilename ? sResultXMLFilename : "";
  tstring sText;
  if (!ReadFileText(sFile, sText)) {
    SetLastError("Fail read file " + sFile);
    return 0;
  }
  return InputXMLData(doc, sText);
}

size_t CDocImporter::InputXMLData(CDocument& doc, const tstring& sXml) const {
  size_t nCount = CStructureReader::Read(sXml.data(), sXml.data() + sXml.size(), doc);
  if (nCount == 0) {
    SetLastError("No document structure in the text");
    return 0;
  }
  doc.BuildIndexes();
  return nCount;
}
