#include "cli/StructCommand.h"

#include "docx/DocxParser.h"
#include "utility/ErrorLog.h"
#include "utility/lexical/Lexical.h"

int RunStruct(const std::string& sDataDir, const std::string& sFile, bool bJson, std::ostream& out,
              std::ostream& err) {
  // The segmenter fills each paragraph's segmented text; without it the
  // structure is still written, with that text empty.
  if (QUENDA_Init(sDataDir.c_str()) != 1)
    err << "tarvos: note: no lexical analyser on " << sDataDir << ", segmented texts stay empty\n";
  CDocxParser parser;
  const char* sResult = parser.ImportDocx(sFile.c_str(), "", 0, bJson ? 1 : 0);
  QUENDA_Exit();
  if (sResult == nullptr) {
    err << "tarvos: " << sFile << ": " << GetLastError() << "\n";
    return 1;
  }
  out << sResult << "\n";
  err << parser.m_vecParagraph.size() << " paragraphs, " << parser.m_vecTable.size() << " tables, "
      << parser.m_vecFigure.size() << " figures\n";
  return 0;
}
