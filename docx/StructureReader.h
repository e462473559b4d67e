#pragma once
// CStructureReader reads a structure XML text written by CStructureWriter
// back into a document model, so that a document need not be parsed again:
// written again, the model gives the same text. Texts are read back as the
// writer escaped them: "&lt;" and "&gt;" only. Elements are found by
// bounded search; a missing element leaves its field at its default, and
// text past a cut keeps whatever was complete before it.
#include "utility/TString.h"

class CDocument;
struct _tParagraph;

class CStructureReader {
 public:
  // Replaces the model's content with the text's. Returns the number of
  // paragraphs read; 0 when the text holds no "<Docx>" element.
  static size_t Read(const char* pText, const char* pEnd, CDocument& doc);

 private:
  static void ReadPara(const char* p, const char* pEnd, _tParagraph& para);
};
