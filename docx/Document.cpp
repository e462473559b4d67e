#include "docx/Document.h"

#include "docx/PaperStructure.h"
#include "utility/NumberOrder.h"
#include "utility/TextNormalizer.h"

namespace {

// A heading or caption that names the reference list.
bool NamesReferences(const tstring& sText) {
  _tSection_Info info;
  ExtractOrder(sText, kOrderHeading, info);
  const tstring sTitle = CompactTitle(sText.substr(sText.find(info.text) == 0 ? info.text.size() : 0));
  return CPaperStructure::CaptionLevel(sTitle) == kReferenceCaption;
}

}  // namespace

// The contents entries: the entries of a contents field or style when the
// document has such, else every paragraph that holds a page reference;
// never the entries of a list of figures or tables.
void CDocument::IndexContents() {
  bool bMarked = false;
  for (const _tParagraph& para : m_vecParagraph)
    if (para.level == kLevelContent && (para.kinds & kKindInContents) && !(para.kinds & kKindFigureList)) bMarked = true;
  for (size_t i = 0; i < m_vecParagraph.size(); ++i) {
    const _tParagraph& para = m_vecParagraph[i];
    if (para.level != kLevelContent || (para.kinds & kKindFigureList)) continue;
    if (!bMarked || (para.kinds & kKindInContents)) m_vecContentStruct.push_back((int)i);
  }
}

void CDocument::BuildIndexes() {
  m_mapParaId2Index.clear();
  m_vecFormulaIndex.clear();
  m_vecDocStruct.clear();
  m_vecContentStruct.clear();
  m_vecChapterParaIndex.clear();
  m_vecChapterId.clear();
  m_nReferenceStartIndex = m_nReferenceEndIndex = -1;
  int nReferenceHeading = -1;
  for (size_t i = 0; i < m_vecParagraph.size(); ++i) {
    const _tParagraph& para = m_vecParagraph[i];
    const int nIndex = (int)i;
    if (para.level == kLevelTable || para.level == kLevelFigure) continue;
    _tParaIndex place;
    place.para_index = (unsigned)i;
    m_mapParaId2Index.emplace(para.id, place);
    if (para.level == kLevelFormula) m_vecFormulaIndex.push_back(nIndex);
    if (para.level >= 1 && para.level <= 4) {
      m_vecDocStruct.push_back(nIndex);
      if (nReferenceHeading >= 0 && m_nReferenceEndIndex < 0) m_nReferenceEndIndex = nIndex - 1;
      if (para.level == 1) {
        m_vecChapterParaIndex.push_back(nIndex);
        m_vecChapterId.push_back((int)m_vecChapterParaIndex.size());
      }
    }
    if (nReferenceHeading < 0 && para.level != 0 && para.level != kLevelContent && NamesReferences(para.NumberedText())) {
      nReferenceHeading = nIndex;
      m_nReferenceStartIndex = nIndex + 1;
    }
  }
  IndexContents();
  if (nReferenceHeading >= 0 && m_nReferenceEndIndex < 0) m_nReferenceEndIndex = (int)m_vecParagraph.size() - 1;
  if (m_nReferenceStartIndex > m_nReferenceEndIndex) m_nReferenceStartIndex = m_nReferenceEndIndex = -1;
  // Cell paragraphs come after the list: a list paragraph keeps its place
  // should a broken document repeat an id inside a table.
  for (size_t t = 0; t < m_vecTable.size(); ++t)
    for (size_t r = 0; r < m_vecTable[t].rows.size(); ++r)
      for (size_t c = 0; c < m_vecTable[t].rows[r].size(); ++c)
        for (size_t p = 0; p < m_vecTable[t].rows[r][c].size(); ++p)
          m_mapParaId2Index.emplace(m_vecTable[t].rows[r][c][p].id, _tParaIndex{(int)t, (int)r, (int)c, (unsigned)p});
}

void CDocument::SetChapters(std::vector<int> vecParaIndex, std::vector<int> vecChapterId) {
  m_vecChapterParaIndex = std::move(vecParaIndex);
  m_vecChapterId = std::move(vecChapterId);
}

bool CDocument::GetParaIndex(uint32_t nParaId, _tParaIndex& index) const {
  auto it = m_mapParaId2Index.find(nParaId);
  index = it != m_mapParaId2Index.end() ? it->second : _tParaIndex();
  return it != m_mapParaId2Index.end();
}

const tstring& CDocument::GetText(uint32_t nParaId) const {
  static const tstring s_sEmpty;
  _tParaIndex index;
  if (!GetParaIndex(nParaId, index)) return s_sEmpty;
  if (index.table_index < 0) return m_vecParagraph[index.para_index].text;
  return m_vecTable[index.table_index].rows[index.row_index][index.col_index][index.para_index].text;
}

int CDocument::GetLevel(uint32_t nParaId) const {
  _tParaIndex index;
  if (!GetParaIndex(nParaId, index)) return 0;
  if (index.table_index < 0) return m_vecParagraph[index.para_index].level;
  return m_vecTable[index.table_index].rows[index.row_index][index.col_index][index.para_index].level;
}

uint32_t CDocument::LocateChapterID(uint32_t nParaId) const {
  uint32_t nChapter = 0;
  for (int nIndex : m_vecChapterParaIndex) {
    if (nIndex < 0 || (size_t)nIndex >= m_vecParagraph.size() || m_vecParagraph[nIndex].id > nParaId) break;
    nChapter = m_vecParagraph[nIndex].id;
  }
  return nChapter;
}

_tCharCount CDocument::DocCharStat() const {
  _tCharCount count;
  ForEachParagraph([&count](const _tParagraph& para) {
    // Placeholders are copies (a figure's is its image paragraph): counting
    // them would count those texts twice, and a loaded structure could not
    // give the same counts.
    if (para.level == kLevelTable || para.level == kLevelFigure) return;
    int64_t nSingle = 0, nMulti = 0;
    CharStat(para.text, nSingle, nMulti);
    count.single_byte += nSingle;
    count.multi_byte += nMulti;
  });
  count.total = count.single_byte + count.multi_byte;
  return count;
}
