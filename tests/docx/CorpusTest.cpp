// Properties that must hold for any real document: the corpus of documents
// nobody here wrote. Each DOCX is read into the model; then every paragraph
// id points at the "p" of a "<w:p" tag, ids strictly increase, and the body
// paragraphs that an independent reading finds (outside tables and text
// boxes) have their text, blanks removed, inside the model's text.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "TestDataDir.h"
#include "docx/DocImporter.h"
#include "docx/Document.h"
#include "docx/StructureWriter.h"
#include "utility/XmlScan.h"

namespace fs = std::filesystem;

namespace {

std::vector<std::string> CorpusDocuments() {
  std::vector<std::string> vecFiles;
  std::error_code ec;
  for (const auto& entry : fs::recursive_directory_iterator(TARVOS_CORPUS_DIR, ec))
    if (entry.path().extension() == ".docx") vecFiles.push_back(entry.path().string());
  std::sort(vecFiles.begin(), vecFiles.end());
  return vecFiles;
}

std::string WithoutBlanks(const std::string& s) {
  std::string sOut;
  for (char c : s)
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') sOut += c;
  return sOut;
}

// Model text without the vertical-alignment marks "<sup>" ... "</sup>".
std::string WithoutMarks(const std::string& s) {
  std::string sOut;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '<') {
      size_t j = i + 1 + (i + 1 < s.size() && s[i + 1] == '/');
      size_t k = j;
      while (k < s.size() && isalpha((unsigned char)s[k])) ++k;
      if (k > j && k < s.size() && s[k] == '>') {
        i = k;
        continue;
      }
    }
    sOut += s[i];
  }
  return sOut;
}

bool IsSubsequence(const std::string& sNeedle, const std::string& sHay) {
  size_t j = 0;
  for (size_t i = 0; i < sHay.size() && j < sNeedle.size(); ++i)
    if (sHay[i] == sNeedle[j]) ++j;
  return j == sNeedle.size();
}

std::string DecodeEntities(std::string s) {
  const std::pair<const char*, const char*> kEntities[] = {
      {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
  for (const auto& e : kEntities)
    for (size_t i = s.find(e.first); i != std::string::npos; i = s.find(e.first, i + 1)) s.replace(i, strlen(e.first), e.second);
  return s;
}

// The independent reading: top-level body paragraphs (not in a table or a
// text box) by the offset of their "p", with their w:t texts joined.
std::vector<std::pair<uint32_t, std::string>> ReadBodyParagraphs(const std::string& sXml) {
  std::vector<std::pair<uint32_t, std::string>> vecParas;
  int nTable = 0, nBox = 0, nPara = 0;
  uint32_t nId = 0;
  std::string sText;
  for (size_t i = sXml.find("<w:body"); i != std::string::npos && i < sXml.size(); i = sXml.find('<', i + 1)) {
    auto fnAt = [&](const char* sTag) { return sXml.compare(i, strlen(sTag), sTag) == 0; };
    auto fnNameEnds = [&](size_t n) { return i + n < sXml.size() && (sXml[i + n] == ' ' || sXml[i + n] == '>'); };
    size_t nGt = sXml.find('>', i);
    bool bSelfClosed = nGt != std::string::npos && sXml[nGt - 1] == '/';
    if (fnAt("<w:tbl") && fnNameEnds(6)) ++nTable;
    else if (fnAt("</w:tbl>")) --nTable;
    else if (fnAt("<w:txbxContent")) ++nBox;
    else if (fnAt("</w:txbxContent>")) --nBox;
    else if (fnAt("<w:p") && fnNameEnds(4) && !bSelfClosed) {
      if (++nPara == 1) {
        nId = (uint32_t)(i + 3);
        sText.clear();
      }
    } else if (fnAt("</w:p>")) {
      if (--nPara == 0 && nTable == 0 && nBox == 0 && !WithoutBlanks(sText).empty()) vecParas.emplace_back(nId, sText);
      if (nPara < 0) nPara = 0;
    } else if (fnAt("<w:t") && fnNameEnds(4) && !bSelfClosed && nBox == 0 && nPara == 1) {
      size_t nClose = sXml.find("</w:t>", nGt);
      if (nClose != std::string::npos) sText += DecodeEntities(sXml.substr(nGt + 1, nClose - nGt - 1));
    }
  }
  return vecParas;
}

// Text agreement is counted over the whole corpus: the text a paragraph holds
// after its own text box is refused by the ascending-id rule of the model,
// so a page of text boxes can lower one document's share on its own.
TEST(CorpusTest, EveryDocumentReadsIntoASoundModel) {
  std::vector<std::string> vecFiles = CorpusDocuments();
  if (vecFiles.empty()) GTEST_SKIP() << "no corpus at " << TARVOS_CORPUS_DIR;
  CTempDir dir;
  size_t nAgreeAll = 0, nReferenceAll = 0;
  for (const std::string& sSource : vecFiles) {
    std::string sCopy = dir.Path() + "/" + fs::path(sSource).filename().string();
    fs::copy_file(sSource, sCopy, fs::copy_options::overwrite_existing);
    CDocument doc;
    ASSERT_GE(CDocImporter(nullptr).ParseDocx(doc, sCopy.c_str(), "", 0), 0) << sSource;
    std::string sXml = ReadWholeFile(doc.m_sPath + "/word/document.xml");

    uint32_t nPrevious = 0;
    bool bFirst = true;
    std::map<uint32_t, const _tParagraph*> mapById;
    for (const _tParagraph& para : doc.m_vecParagraph) {
      if (para.level == kLevelTable || para.level == kLevelFigure) continue;
      ASSERT_GE(para.id, 3u) << sSource;
      ASSERT_LT(para.id + 1, sXml.size()) << sSource;
      EXPECT_EQ(sXml.compare(para.id - 3, 4, "<w:p"), 0) << sSource << " id " << para.id;
      EXPECT_TRUE(sXml[para.id + 1] == ' ' || sXml[para.id + 1] == '>') << sSource << " id " << para.id;
      if (para.level != kLevelTableCaption) {
        EXPECT_TRUE(bFirst || para.id > nPrevious) << sSource << " id " << para.id << " after " << nPrevious;
        nPrevious = para.id;
        bFirst = false;
      }
      mapById[para.id] = &para;
    }

    auto vecReference = ReadBodyParagraphs(sXml);
    size_t nAgree = 0;
    for (const auto& ref : vecReference) {
      auto it = mapById.find(ref.first);
      if (it != mapById.end() && IsSubsequence(WithoutBlanks(ref.second), WithoutMarks(it->second->text))) ++nAgree;
    }
    nAgreeAll += nAgree;
    nReferenceAll += vecReference.size();
    // The structure renders and writes for every document.
    EXPECT_NE(CStructureWriter(doc).Xml().find("</Docx>"), std::string::npos) << sSource;
    ASSERT_NE(CStructureWriter::WriteStructureFile(doc, 1), "") << sSource;
  }
  EXPECT_GE(nAgreeAll * 100, nReferenceAll * 98) << nAgreeAll << " of " << nReferenceAll << " body paragraphs agree";
  printf("%zu of %zu body paragraphs agree with the independent reading\n", nAgreeAll, nReferenceAll);
}

}  // namespace

namespace {

// The paragraph ("p" offsets) that holds each "_Toc" bookmark, read from
// the XML apart from the model.
std::map<std::string, uint32_t> TocBookmarks(const std::string& sXml) {
  std::map<std::string, uint32_t> mapBookmarks;
  uint32_t nPara = 0;
  for (size_t i = sXml.find('<'); i != std::string::npos; i = sXml.find('<', i + 1)) {
    if (sXml.compare(i, 4, "<w:p") == 0 && i + 4 < sXml.size() && (sXml[i + 4] == ' ' || sXml[i + 4] == '>'))
      nPara = (uint32_t)(i + 3);
    if (sXml.compare(i, 16, "<w:bookmarkStart") != 0) continue;
    size_t nName = sXml.find("w:name=\"_Toc", i), nGt = sXml.find('>', i);
    if (nName == std::string::npos || nName > nGt) continue;
    size_t nQuote = sXml.find('"', nName + 8);
    mapBookmarks[sXml.substr(nName + 8, nQuote - nName - 8)] = nPara;
  }
  return mapBookmarks;
}

// A contents entry that names its heading (the table of contents is current
// for it) starts with the number the heading shows: its automatic label
// when it has one.
TEST(CorpusTest, ContentsEntriesShowTheLabelsOfTheirHeadings) {
  std::vector<std::string> vecFiles = CorpusDocuments();
  if (vecFiles.empty()) GTEST_SKIP() << "no corpus at " << TARVOS_CORPUS_DIR;
  CTempDir dir;
  size_t nCompared = 0;
  for (const std::string& sSource : vecFiles) {
    std::string sCopy = dir.Path() + "/" + fs::path(sSource).filename().string();
    fs::copy_file(sSource, sCopy, fs::copy_options::overwrite_existing);
    CDocument doc;
    ASSERT_GE(CDocImporter(nullptr).ParseDocx(doc, sCopy.c_str(), "", 0), 0) << sSource;
    const std::string sXml = ReadWholeFile(doc.m_sPath + "/word/document.xml");
    const std::map<std::string, uint32_t> mapBookmarks = TocBookmarks(sXml);
    for (int nEntry : doc.ContentEntries()) {
      const _tParagraph& entry = doc.m_vecParagraph[nEntry];
      size_t nEnd = sXml.find("</w:p>", entry.id);
      size_t nRef = sXml.find("PAGEREF _Toc", entry.id);
      if (nRef == std::string::npos || nRef > nEnd) continue;
      const std::string sName = sXml.substr(nRef + 8, sXml.find_first_of(" \\<", nRef + 8) - nRef - 8);
      auto it = mapBookmarks.find(sName);
      _tParaIndex index;
      if (it == mapBookmarks.end() || !doc.GetParaIndex(it->second, index) || index.table_index >= 0) continue;
      const _tParagraph& heading = doc.m_vecParagraph[index.para_index];
      if (heading.num_label.empty() || heading.text.empty() || entry.text.find(heading.text) == std::string::npos) continue;
      ++nCompared;
      EXPECT_EQ(entry.text.compare(entry.text.find_first_not_of(" \t"), heading.num_label.size(), heading.num_label), 0)
          << sSource << ": the entry \"" << entry.text << "\" for the heading labelled \"" << heading.num_label << "\"";
    }
  }
  printf("%zu contents entries compared with the labels of their headings\n", nCompared);
}

}  // namespace
