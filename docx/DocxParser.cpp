#include "docx/DocxParser.h"

#include "utility/ErrorLog.h"

int CDocxParser::ImportFile(const char*, const char*, int, int) {
  return ServiceMissing("document import (CDocxParser::ImportFile)");
}

int CDocxParser::ImportMemory(const char*, int, int) {
  return ServiceMissing("text import (CDocxParser::ImportMemory)");
}

const char* CDocxParser::ImportDocx(const char*, const char*, int, int) {
  ServiceMissing("DOCX import (CDocxParser::ImportDocx)");
  return nullptr;
}

size_t CDocxParser::LoadDocResult(const char*) {
  return (size_t)ServiceMissing("structure file loading (CDocxParser::LoadDocResult)");
}

const char* CDocxParser::GetCurTemplateInfo() {
  ServiceMissing("template information (CDocxParser::GetCurTemplateInfo)");
  return nullptr;
}
