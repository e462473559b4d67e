#pragma once
// The query engine of our search server (tarvos-searchd): a table of
// standards and a table of values that clauses of standards require, both
// loaded from UTF-8 text files and read-only afterwards, so any number of
// connection threads may query one index at once.
//
// "<data>/Data/Standards/standards.txt", one standard a line, tab-separated:
//   number  name  issue date  status  replacing number  memo
//   GB 50014-2006	室外排水设计规范	2006-01-18	被代替	GB 50014-2021	2016年版
// status is 现行 (current), 废止 (withdrawn) or 被代替 (replaced, which needs
// the replacing number). Only number and name are required; missing trailing
// columns are empty. A number is listed once.
//
// "<data>/Data/Standards/requirements.txt", one required value a line:
//   file name  clause number  row name  column name  value
//   GB 50015-2019	3.2.1	普通住宅Ⅰ类	最高日用水定额(L/(人·d))	130~300
// The file name is the standard's number; every column is required.
//
// In both files empty lines and lines starting with "#" are skipped.
//
// Queries (one line each; see utility/SearchClient.h for the exchange):
//   [field] Safety_Tiaowen [whole] NAME
//     every standard whose name or number is NAME. Names match whole after
//     normalising (full-width forms, blanks, 《》 and quotes, dashes, a final
//     "(试行)" and letter case do not count); numbers match with or without
//     "/", blanks and dash forms, "-95" as "-1995", and a number without a
//     year matches every edition. Records, in table order:
//     Safety_Tiaowenhao (number), Safety_Tiaowen (name), Safety_Date (issue
//     date), Memo (status, "，由 X 代替" when replaced, then "；" and the
//     memo column), Status, Replaced_By.
//   [field] file_name [and] FILE [field] section_no [whole] CLAUSE
//     the values clause CLAUSE of FILE requires; FILE is a standard's number
//     (as above) or name, CLAUSE may be written "第4.1.3条". Without the
//     section_no part, every clause of FILE. Records, in table order:
//     file_name, section_no, row_name, col_name, value.
#include <map>
#include <vector>

#include "utility/SearchClient.h"
#include "utility/TString.h"

// One standard of the table.
struct _tStandard {
  tstring sNumber;      // "GB 50014-2021"
  tstring sName;        // "室外排水设计标准"
  tstring sDate;        // issue date "2021-04-09"; may be empty
  tstring sStatus;      // 现行, 废止 or 被代替
  tstring sReplacedBy;  // number of the standard that replaces it; may be empty
  tstring sMemo;        // free note; may be empty
};

// One value a clause requires.
struct _tRequirement {
  tstring sFile;    // the standard's number
  tstring sClause;  // "4.1.15"
  tstring sRow;     // row of the clause's table (or the subject)
  tstring sCol;     // column (or the quantity)
  tstring sValue;   // the required value as written: "2.7", "130~300", "≤0.45"
};

class CSearchIndex {
 public:
  CSearchIndex() = default;

  // Loads both tables from sDataDir + "/Data/Standards/". False with the
  // last error ("Failed reading file " + path, or a line that is not valid).
  bool Load(const tstring& sDataDir);

  // Adds the lines of one table's text; sSource names it in error texts.
  // False with the last error at the first line that is not valid (the lines
  // before it stay added).
  bool AddStandards(const tstring& sText, const tstring& sSource);
  bool AddRequirements(const tstring& sText, const tstring& sSource);

  size_t GetStandardCount() const { return m_vecStandard.size(); }
  size_t GetRequirementCount() const { return m_vecRequirement.size(); }

  // Runs one query. False, with the reason in sError, for a query that is
  // not one of the forms above; a query that finds nothing is true.
  bool Search(const tstring& sQuery, std::vector<SearchRecord>& vecRecords, tstring& sError) const;

  // The whole answer text for a query line: its records, or its <error>.
  tstring Answer(const tstring& sQuery) const;

  // An answer text of records, and of an error (CR LF line ends).
  static tstring RecordsXml(const std::vector<SearchRecord>& vecRecords);
  static tstring ErrorXml(const tstring& sError);

  // The keys texts are compared under (described above).
  static tstring NameKey(const tstring& sText);
  static tstring NumberKey(const tstring& sText);

 private:
  void SearchStandards(const tstring& sName, std::vector<SearchRecord>& vecRecords) const;
  void SearchRequirements(const tstring& sFile, const tstring* pClause, std::vector<SearchRecord>& vecRecords) const;

  std::vector<_tStandard> m_vecStandard;                // the standards in file order
  std::vector<_tRequirement> m_vecRequirement;          // the required values in file order
  std::multimap<tstring, size_t> m_mapName;             // NameKey of a name -> standard
  std::map<tstring, size_t> m_mapNumber;                // NumberKey of a number -> standard
  std::multimap<tstring, size_t> m_mapNumberNoYear;     // NumberKey without "-year" -> standard
  std::multimap<tstring, size_t> m_mapRequirementFile;  // NumberKey of a file name -> requirement
};

// Serves one accepted connection on fd (which the caller closes): reads one
// query line of at most kMaxSearchQuery bytes within nTimeoutMs, then writes
// the answer within nTimeoutMs more. A longer line gets an <error> answer;
// a client that sends no complete line in time gets none. After the answer
// it closes its sending side and drops what the client still sends (up to
// 1 MiB, for at most a second) so that the answer is not lost to a reset.
// False when no answer was delivered. sLog receives one line for the log.
bool ServeSearchConnection(const CSearchIndex& index, int fd, int nTimeoutMs, tstring& sLog);
