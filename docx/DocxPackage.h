#pragma once
// CDocxPackage is a DOCX unpacked into its working folder "<name>_unzip"
// beside the document, and the reading of its parts. Relative document
// names are resolved once against the working directory, which the engine
// never changes.
#include "utility/TString.h"

class CDocxPackage {
 public:
  // Unpacks a DOCX into its working folder. Returns 1; -2 when the package
  // is missing, unreadable or holds no item ("Error unzip <file> to path
  // <folder>"; no folder is made for a missing document); -3 when it is
  // refused as unsafe (nothing is written then).
  int ReadDocx(const char* sFile);

  // Takes a folder that holds an unpacked document already.
  void SetUnpacked(const tstring& sFolder, const tstring& sFilename) {
    m_sPath = sFolder;
    m_sFilename = sFilename;
  }

  // Reads a part by its name in the package ("word/document.xml"). False
  // when it is missing; with sMissing, sMissing + path goes to the error log.
  bool ReadPart(const tstring& sRelative, tstring& sText, const char* sMissing = nullptr) const;

  const tstring& GetPath() const { return m_sPath; }          // the working folder
  const tstring& GetFilename() const { return m_sFilename; }  // the document's name without extension

 private:
  tstring m_sPath;
  tstring m_sFilename;
};
