// DOCX reading on fuzz bytes. The first byte chooses what they are: a whole
// package (unpacked into a private folder), or one part of an unpacked
// document: word/document.xml, word/styles.xml, the relations, a header.
// The model is then rendered as XML and JSON.
#include <sys/stat.h>

#include <cstdint>
#include <fstream>
#include <string>

#include "FuzzSupport.h"
#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/DocxParser.h"
#include "docx/StructureWriter.h"

namespace {

const char kDocument[] =
    "<w:document><w:body><w:p><w:pPr><w:pStyle w:val=\"1\"/></w:pPr><w:r><w:t>第一章</w:t></w:r></w:p>"
    "<w:tbl><w:tr><w:tc><w:p><w:r><w:t>表1</w:t></w:r></w:p></w:tc></w:tr></w:tbl></w:body></w:document>";

void WritePart(const std::string& sFolder, const std::string& sName, const std::string& sContent) {
  std::ofstream(sFolder + "/" + sName, std::ios::binary) << sContent;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const int nKind = pData[0] % 5;
  const std::string sBytes(reinterpret_cast<const char*>(pData + 1), nSize - 1);
  CDocxPackage package;
  CDocument doc;
  if (nKind == 0) {
    std::string sFile = WriteRaw("pkg.docx", pData + 1, nSize - 1);
    if (package.ReadDocx(sFile.c_str()) == 1) CDocxParser().ParseStruct(package, 0, "", true, doc);
  } else {
    const std::string sFolder = FuzzPath("doc_unzip");
    mkdir(sFolder.c_str(), 0777);
    mkdir((sFolder + "/word").c_str(), 0777);
    mkdir((sFolder + "/word/_rels").c_str(), 0777);
    WritePart(sFolder, "word/document.xml", nKind == 1 ? sBytes : kDocument);
    WritePart(sFolder, "word/styles.xml", nKind == 2 ? sBytes : "<w:styles/>");
    WritePart(sFolder, "word/_rels/document.xml.rels", nKind == 3 ? sBytes : "<Relationships/>");
    WritePart(sFolder, "word/header1.xml", nKind == 4 ? sBytes : "<w:hdr/>");
    package.SetUnpacked(sFolder, "doc");
    CDocxParser().ParseStruct(package, 0, "", true, doc);
  }
  CStructureWriter(doc).Xml();
  CStructureWriter(doc).Json(true);
  return 0;
}
