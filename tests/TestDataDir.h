#pragma once
// A private copy of the built data directory in a fresh temporary folder, so a
// test can remove or rewrite files without touching the shared build output
// (the read-only lexicon folder is linked instead of copied).
// The folder is removed when the object goes out of scope.
#include <string>
#include <vector>

#include <json/json.h>

class CTestDataDir {
 public:
  CTestDataDir();
  ~CTestDataDir();
  CTestDataDir(const CTestDataDir&) = delete;
  CTestDataDir& operator=(const CTestDataDir&) = delete;

  // The folder to hand to TARVOS_Init (it holds "Data/").
  const std::string& Root() const { return m_sRoot; }
  // A path inside "Data/", e.g. Data("Error/ErrorMessage.dat").
  std::string Data(const std::string& sRelative) const { return m_sRoot + "/Data/" + sRelative; }

  void Remove(const std::string& sRelative) const;
  void Write(const std::string& sRelative, const std::string& sContent) const;

 private:
  std::string m_sRoot;  // temporary folder holding the copy
};

// A fresh empty temporary folder, removed with the object.
class CTempDir {
 public:
  CTempDir();
  ~CTempDir();
  CTempDir(const CTempDir&) = delete;
  CTempDir& operator=(const CTempDir&) = delete;
  const std::string& Path() const { return m_sPath; }

 private:
  std::string m_sPath;
};

// The DOCX files of a corpus folder's "zh" and "other" folders, sorted;
// none when the corpus is absent.
std::vector<std::string> CorpusDocx(const std::string& sCorpusDir);

// Copies files into a folder; the copies' paths.
std::vector<std::string> CopyInto(const std::vector<std::string>& vecFiles, const std::string& sDir);

// Reads a whole file; "" when it cannot be read.
std::string ReadWholeFile(const std::string& sPath);

// Today's log file of a kind (".err" or ".log") in a logging folder, read whole.
std::string ReadTodaysLog(const std::string& sLogDir, const char* szExtension = ".err");

// A JSON text parsed strictly; a text that does not parse fails the test
// that asked (and gives a null value).
Json::Value ParseJson(const std::string& sText);
