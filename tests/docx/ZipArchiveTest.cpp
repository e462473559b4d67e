// Hostile packages: each gives its error or a partial model, never a crash
// and never a file outside the working folder.
#include <gtest/gtest.h>
#include <minizip/zip.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "DocxFixture.h"
#include "TestDataDir.h"
#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/DocxParser.h"
#include "utility/ErrorLog.h"

namespace fs = std::filesystem;

namespace {

// A zip of one entry with chosen attributes and content written in pieces.
bool WriteSpecialZip(const std::string& sFile, const std::string& sName, uint32_t nAttr, size_t nBytes, char cFill) {
  zipFile zip = zipOpen64(sFile.c_str(), 0);
  zip_fileinfo info = {};
  info.external_fa = nAttr;
  bool bOk = zipOpenNewFileInZip64(zip, sName.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED, Z_BEST_COMPRESSION,
                                   nBytes > 0xffffffffu) == ZIP_OK;
  std::string sChunk(1 << 20, cFill);
  for (size_t nDone = 0; bOk && nDone < nBytes; nDone += sChunk.size())
    bOk = zipWriteInFileInZip(zip, sChunk.data(), (unsigned)std::min(sChunk.size(), nBytes - nDone)) == ZIP_OK;
  bOk = bOk && zipCloseFileInZip(zip) == ZIP_OK;
  return zipClose(zip, nullptr) == ZIP_OK && bOk;
}

class ZipArchiveTest : public ::testing::Test {
 protected:
  std::string Doc(const char* szName) { return m_dir.Path() + "/docs/" + szName; }
  void SetUp() override { fs::create_directory(m_dir.Path() + "/docs"); }
  // Nothing may appear beside the documents folder but the folder itself.
  void ExpectNothingOutside() {
    for (const auto& entry : fs::directory_iterator(m_dir.Path()))
      EXPECT_EQ(entry.path().filename(), "docs") << "written outside: " << entry.path();
  }
  CTempDir m_dir;
};

TEST_F(ZipArchiveTest, UnsafeNamesAndLinksAreRefusedWholesale) {
  struct { const char* szName; uint32_t nAttr; const char* szWhy; } kCases[] = {
      {"../evil.txt", 0, "\"..\" in the name"},
      {"word/../../evil.txt", 0, "\"..\" in the name"},
      {"/tmp/tarvos-evil.txt", 0, "absolute name"},
      {"word\\..\\evil.txt", 0, "unusual characters"},
      {"word/link.xml", (uint32_t)(S_IFLNK | 0777) << 16, "a link"},
  };
  for (const auto& c : kCases) {
    ASSERT_TRUE(WriteSpecialZip(Doc("hostile2.docx"), c.szName, c.nAttr, 10, 'x'));
    CDocxPackage package;
    EXPECT_EQ(package.ReadDocx(Doc("hostile2.docx").c_str()), -3) << c.szName;
    EXPECT_NE(GetLastError().find(c.szWhy), std::string::npos) << c.szName << ": " << GetLastError();
    EXPECT_FALSE(fs::exists(Doc("hostile2_unzip/word"))) << "nothing is unpacked from a refused package";
  }
  EXPECT_FALSE(fs::exists("/tmp/tarvos-evil.txt"));
  ExpectNothingOutside();
}

TEST_F(ZipArchiveTest, TooManyEntriesAreRefused) {
  std::vector<std::pair<std::string, std::string>> vecEntries;
  for (int i = 0; i < 20000; ++i) vecEntries.emplace_back("f/" + std::to_string(i), "");
  ASSERT_TRUE(WriteZip(Doc("many.docx"), vecEntries, true));
  CDocxPackage package;
  EXPECT_EQ(package.ReadDocx(Doc("many.docx").c_str()), -3);
  EXPECT_NE(GetLastError().find("20000 entries"), std::string::npos) << GetLastError();
}

TEST_F(ZipArchiveTest, CompressionBombsAreRefused) {
  ASSERT_TRUE(WriteSpecialZip(Doc("bomb.docx"), "word/document.xml", 0, (size_t)1 << 30, '\0'));
  EXPECT_LT(fs::file_size(Doc("bomb.docx")), (uintmax_t)2 << 20) << "1 GB packed into about 1 MB";
  CDocxPackage package;
  EXPECT_EQ(package.ReadDocx(Doc("bomb.docx").c_str()), -3);
  EXPECT_NE(GetLastError().find("times its size"), std::string::npos) << GetLastError();
  ExpectNothingOutside();
}

TEST_F(ZipArchiveTest, BrokenPackagesFailOrGivePartialModels) {
  ASSERT_TRUE(WriteDocx(Doc("whole.docx"), Para(TextRun("第一段")) + Para(TextRun("第二段"))));
  std::string sWhole = ReadWholeFile(Doc("whole.docx"));
  std::ofstream(Doc("cut.docx"), std::ios::binary) << sWhole.substr(0, sWhole.size() / 2);
  CDocxPackage package;
  CDocument doc;
  EXPECT_EQ(package.ReadDocx(Doc("cut.docx").c_str()), -2) << "a truncated zip cannot be read";
  EXPECT_NE(GetLastError().find("Error unzip"), std::string::npos);
  EXPECT_EQ(package.ReadDocx(Doc("none.docx").c_str()), -2);

  ASSERT_TRUE(WriteZip(Doc("nodoc.docx"), {{"word/styles.xml", "<w:styles/>"}}));
  ASSERT_EQ(package.ReadDocx(Doc("nodoc.docx").c_str()), 1);
  EXPECT_EQ(CDocxParser().ParseStruct(package, 0, "", true, doc), -1);
  EXPECT_TRUE(doc.m_vecParagraph.empty());

  const std::string sXml = DocumentXml(Para(TextRun("第一段")) + Para(TextRun("第二段，<tag>")));
  for (size_t nCut = 0; nCut < sXml.size(); nCut += 7) {
    ASSERT_TRUE(WriteZip(Doc("half.docx"), {{"word/document.xml", sXml.substr(0, nCut)}}));
    ASSERT_EQ(package.ReadDocx(Doc("half.docx").c_str()), 1);
    int nParas = CDocxParser().ParseStruct(package, 0, "", true, doc);
    EXPECT_LE(nParas, 2) << "cut at " << nCut;
  }
  ExpectNothingOutside();
}

TEST_F(ZipArchiveTest, ReadingTwiceOverwritesTheWorkingFolder) {
  ASSERT_TRUE(WriteDocx(Doc("twice.docx"), Para(TextRun("旧的"))));
  CDocxPackage package;
  ASSERT_EQ(package.ReadDocx(Doc("twice.docx").c_str()), 1);
  ASSERT_TRUE(WriteDocx(Doc("twice.docx"), Para(TextRun("新的"))));
  ASSERT_EQ(package.ReadDocx(Doc("twice.docx").c_str()), 1);
  CDocument doc;
  ASSERT_EQ(CDocxParser().ParseStruct(package, 0, "", true, doc), 1);
  EXPECT_EQ(doc.m_vecParagraph[0].text, "新的");
  EXPECT_EQ(doc.m_sPath, Doc("twice_unzip"));
}

}  // namespace
