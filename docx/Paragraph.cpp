#include "docx/Paragraph.h"

#include <cstdio>

tstring ParaIdText(uint32_t nParaId) {
  char s[16];
  snprintf(s, sizeof(s), "%08X", nParaId);
  return s;
}

bool _tTable::GetValue(size_t nRow, size_t nCol, tstring& sValue) const {
  sValue.clear();
  if (nRow >= rows.size() || nCol >= rows[nRow].size()) return false;
  for (size_t i = 0; i < rows[nRow][nCol].size(); ++i) {
    if (i > 0) sValue += "\n";
    sValue += rows[nRow][nCol][i].text;
  }
  return true;
}

// A blank between label and text whatever the numbering's own separator
// (tab, blank or none): the number is read apart from the words after it.
tstring _tParagraph::NumberedText() const {
  if (num_label.empty()) return text;
  return text.empty() ? num_label : num_label + " " + text;
}
