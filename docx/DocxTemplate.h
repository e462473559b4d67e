#pragma once
// CDocxTemplate is the library of format templates in "<data>/data/template/":
// each template's text (CDocFormat) filed under report type, organisation,
// area and argument, with an inverted index to find the one that fits a
// document. Ids are positions: deleting a template shifts the later ones.
//
// Files: "docTemplate.dat" (the texts, kept open for appending),
// "docTemplate.pdat" / "docTemplate.wordlist" (the key strings),
// "docTemplate.index" (little-endian, no header or padding between blocks):
//   u64 N, N x 48-byte records {i32 reportType, 4 pad, u64 offset, u64 size,
//   i64 insert_time, i32 organization_id, i32 area_id, i32 argu_id, 4 pad},
//   u64 M, M x 16-byte lists {u64 df, i32 start, i32 end},
//   i32 K, K x i32 pool entries, u64 L, L bytes of string pool.
// Index lists: t (0..19) the templates of report type t; 20 + id those of an
// organisation; 20 + D + id those of an argument or area (D key strings).
// Every file that replaces another is written under a temporary name and
// renamed into place, so a crash leaves the old store whole.
//
// The const calls (finding and reading templates) are safe from several
// threads at once; the calls that change the store must run alone.
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <map>
#include <memory>
#include <vector>

#include "utility/IntArray.h"
#include "utility/PDAT.h"
#include "utility/StaticStr.h"
#include "utility/TString.h"
#include "utility/WordList.h"

class CDocFormat;

struct _tTemplateMetaData {
  int32_t reportType = 0;           // negative: deleted
  uint64_t template_data_offset = 0;
  uint64_t template_data_size = 0;
  int64_t insert_time = 0;
};

struct _tTemplateOrg : _tTemplateMetaData {
  tstring organization, area, argu;
};

struct _tTemplate : _tTemplateMetaData {
  int32_t organization_id = -1, area_id = -1, argu_id = -1;
};

struct _tFormatInvertList {
  uint64_t df = 0;  // templates in the list
  _tIntArray data;  // their ids in the pool
};

class CDocxTemplate {
 public:
  explicit CDocxTemplate(const char* sDataPath);
  ~CDocxTemplate();
  CDocxTemplate(const CDocxTemplate&) = delete;  // owns an open file
  CDocxTemplate& operator=(const CDocxTemplate&) = delete;

  // 1; -3 when the data or index file cannot be opened; -1 / -2 when the
  // dictionary / word list cannot be loaded (the store is then empty).
  int Load();
  // 0 when nothing changed; 1 saved; -1 / -2 / -3 dictionary / word list / index not written.
  int Save();
  // Compacts the data file when it holds dropped texts, then saves. 1, or -3.
  int RebuildAll();

  int ImportTemplate(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                     const char* sTemplateFile);
  int EditTemplate(int nTemplateID, int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                   const char* sTemplateFile);
  int DeleteTemplate(int nTemplateID);
  // The template filed under the keys; "*" stands for any value unless bPrecise.
  int FindTemplate(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                   bool bPrecise) const;
  // As above, not precise; fills docFormat (template 0 when none fits). -1 and
  // nothing filled only for an empty store.
  int FindTemplate(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                   CDocFormat& docFormat) const;
  // The template as JSON; "" for an unknown id. Its values are written as
  // they are, unescaped, so the text is not well-formed JSON (the template
  // text holds line breaks and quotes): GetTemplateJson gives the same
  // object well-formed.
  tstring GetTemplate(int nTemplateID) const;
  tstring GetTemplateJson(int nTemplateID) const;
  // Reads template nTemplateID into docFormat. Its id; -1 for an unknown id.
  int GetTemplate(int nTemplateID, CDocFormat& docFormat) const;
  // The arguments and areas of a report type and organisation as JSON (the
  // names unescaped, as GetTemplate's values).
  tstring GetTemplateList(int reportType, const char* sOrganization) const;
  size_t GetCount() const { return m_nTemplateCount; }
  // The organisation a template is filed under; "" for an unknown id.
  tstring GetOrganization(int nTemplateID) const;
  int Export() const;
  // A stored text; safe from several threads at once.
  const char* GetFileContent(uint64_t nOffset, uint64_t nSize, tstring& sStr) const;

  const std::map<int, tstring>& GetLevelNames() const { return m_mapLevelId2Type; }

 private:
  void Data2Org();
  void Org2Data();
  void Indexing();
  bool WriteIndex(const tstring& sFile) const;
  bool ReadIndex(const tstring& sFile);
  std::vector<int32_t> List(int64_t nList) const;
  bool IsLive(int nTemplateID) const;
  // Writes the template text of a sample DOCX; the caller has brought m_vecTemplateOrg up to date.
  bool MakeRecord(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                  const char* sTemplateFile, _tTemplateOrg& record);
  tstring File(const char* sName) const { return m_sDataPath + sName; }

  std::vector<_tTemplateOrg> m_vecTemplateOrg;     // editable list, live templates only
  std::vector<_tTemplate> m_pTemplateList;         // stored form
  size_t m_nTemplateCount = 0;
  std::map<int, tstring> m_mapLevelId2Type;
  std::map<tstring, int> m_mapType2LevelId;
  FILE* m_fpTemplateData = nullptr;                // "docTemplate.dat", "ab+"
  std::unique_ptr<CStaticStr> m_pStaticStr;
  std::unique_ptr<CIntArray> m_pIntArray;
  std::unique_ptr<CPDAT> m_pDict;
  std::unique_ptr<CWordList> m_pWordList;
  std::vector<_tFormatInvertList> m_pInvertList;
  tstring m_sDataPath;                             // "<data>/data/template/"
  bool m_bDirty = false;                           // records changed since the last save
  bool m_bFileDirty = false;                       // the data file holds texts no record uses, or new ones
};
