#include "utility/SearchIndex.h"

#include <errno.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/TextNormalizer.h"
#include "utility/Utf8.h"
#include "utility/XmlScan.h"

namespace {

const char kStatusCurrent[] = "现行";
const char kStatusWithdrawn[] = "废止";
const char kStatusReplaced[] = "被代替";
const char kTrialMark[] = "(试行)";

tstring Trim(const tstring& sText) {
  const char* kBlanks = " \t\r\n";
  size_t nStart = sText.find_first_not_of(kBlanks);
  if (nStart == tstring::npos) return "";
  return sText.substr(nStart, sText.find_last_not_of(kBlanks) - nStart + 1);
}

bool EndsWith(const tstring& sText, const tstring& sEnd) {
  return sText.size() >= sEnd.size() && sText.compare(sText.size() - sEnd.size(), sEnd.size(), sEnd) == 0;
}

bool AllDigits(const tstring& sText) {
  return !sText.empty() && sText.find_first_not_of("0123456789") == tstring::npos;
}

// Calls fn(line number, columns) for each line of a table text that is not
// empty or a comment; stops at the first false.
template <class F>
bool ForEachRow(const tstring& sText, F&& fn) {
  size_t nPos = sText.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  for (int nLine = 1; nPos < sText.size(); ++nLine) {
    size_t nEnd = sText.find('\n', nPos);
    if (nEnd == tstring::npos) nEnd = sText.size();
    tstring sLine = sText.substr(nPos, nEnd - nPos);
    nPos = nEnd + 1;
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    if (Trim(sLine).empty() || sLine[0] == '#') continue;
    std::vector<tstring> vecColumns;
    for (size_t nStart = 0;;) {
      size_t nTab = sLine.find('\t', nStart);
      vecColumns.push_back(Trim(sLine.substr(nStart, nTab == tstring::npos ? tstring::npos : nTab - nStart)));
      if (nTab == tstring::npos) break;
      nStart = nTab + 1;
    }
    if (!fn(nLine, vecColumns)) return false;
  }
  return true;
}

bool RowError(const tstring& sSource, int nLine, const tstring& sWhat) {
  SetLastError(sSource + " line " + std::to_string(nLine) + ": " + sWhat);
  return false;
}

// The number key without its "-year" ending; "" when it has none.
tstring WithoutYear(const tstring& sKey) {
  size_t nDash = sKey.rfind('-');
  if (nDash == tstring::npos || nDash == 0) return "";
  tstring sYear = sKey.substr(nDash + 1);
  return sYear.size() == 4 && AllDigits(sYear) ? sKey.substr(0, nDash) : "";
}

// One condition of a query: "[field] NAME" then "[whole] VALUE" or "[and] VALUE".
struct _tCondition {
  tstring sField;  // field name
  tstring sValue;  // the value it must match
};

// Splits a query into its conditions; false with sError when it does not
// follow the pattern.
bool ParseQuery(const tstring& sQuery, std::vector<_tCondition>& vecConditions, tstring& sError) {
  static const char* const kOperators[] = {"[field]", "[whole]", "[and]"};
  // The operators in order, with the text that follows each.
  std::vector<std::pair<tstring, tstring>> vecParts;
  size_t nPos = 0;
  tstring sLeading;
  while (nPos <= sQuery.size()) {
    size_t nNext = tstring::npos;
    const char* szFound = nullptr;
    for (const char* szOp : kOperators) {
      size_t n = sQuery.find(szOp, nPos);
      if (n < nNext) nNext = n, szFound = szOp;
    }
    tstring sText = Trim(sQuery.substr(nPos, nNext == tstring::npos ? tstring::npos : nNext - nPos));
    if (vecParts.empty())
      sLeading = sText;
    else
      vecParts.back().second = sText;
    if (szFound == nullptr) break;
    vecParts.emplace_back(szFound, "");
    nPos = nNext + strlen(szFound);
  }
  if (vecParts.empty()) {
    sError = Trim(sQuery).empty() ? "empty query" : "a query is \"[field] NAME [whole] VALUE\"";
    return false;
  }
  if (!sLeading.empty()) {
    sError = "a query starts with [field]";
    return false;
  }
  for (size_t i = 0; i < vecParts.size(); i += 2) {
    if (vecParts[i].first != "[field]" || vecParts[i].second.empty()) {
      sError = "expected [field] and a field name";
      return false;
    }
    const tstring& sField = vecParts[i].second;
    if (i + 1 >= vecParts.size() || vecParts[i + 1].first == "[field]") {
      sError = "no [whole] or [and] value for field " + sField;
      return false;
    }
    if (vecParts[i + 1].second.empty()) {
      sError = "empty value for field " + sField;
      return false;
    }
    vecConditions.push_back({sField, vecParts[i + 1].second});
  }
  return true;
}

// Reads one line of at most kMaxSearchQuery bytes before the deadline. 1 for
// a line (or the text before the client closed), 0 for a time-out or a
// failure, -1 for a line that is too long.
int ReadQueryLine(int fd, SearchDeadline deadline, tstring& sLine) {
  sLine.clear();
  char buffer[4096];
  for (;;) {
    if (WaitSocket(fd, POLLIN, deadline) != kSocketReady) return 0;
    ssize_t n = recv(fd, buffer, sizeof buffer, 0);
    if (n < 0) {
      if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK) continue;
      return 0;
    }
    if (n == 0) return sLine.empty() ? 0 : 1;
    sLine.append(buffer, (size_t)n);
    size_t nEnd = sLine.find('\n');
    if (nEnd != tstring::npos && nEnd < kMaxSearchQuery) {
      sLine.resize(nEnd);
      if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
      return 1;
    }
    if (sLine.size() >= kMaxSearchQuery) return -1;
  }
}

}  // namespace

tstring CSearchIndex::NameKey(const tstring& sText) {
  const tstring sCompact = CompactTitle(sText);
  tstring sKey;
  for (size_t i = 0; i < sCompact.size();) {
    uint32_t c = 0;
    i += DecodeUtf8(sCompact.data() + i, sCompact.size() - i, c);
    switch (c) {
      case 0x300A: case 0x300B: case 0x3008: case 0x3009:  // 《》〈〉
      case 0x300C: case 0x300D: case 0x300E: case 0x300F:  // 「」『』
      case 0x201C: case 0x201D: case 0x2018: case 0x2019:  // “”‘’
      case '"': case '\'': case '<': case '>':
        continue;
      case 0x2010: case 0x2011: case 0x2012: case 0x2013: case 0x2014: case 0x2015: case 0x2212:
      case 0xFE58: case 0xFE63:
        c = '-';
        break;
      default:
        if (c >= 'a' && c <= 'z') c -= 'a' - 'A';
    }
    AppendUtf8(sKey, c);
  }
  if (EndsWith(sKey, kTrialMark)) sKey.resize(sKey.size() - strlen(kTrialMark));
  return sKey;
}

tstring CSearchIndex::NumberKey(const tstring& sText) {
  tstring sKey = NameKey(sText);
  sKey.erase(std::remove(sKey.begin(), sKey.end(), '/'), sKey.end());
  // An edition note after the number: "GB 50016-2014(2018年版)".
  size_t nOpen = sKey.find('(');
  if (nOpen != tstring::npos && nOpen > 0 && sKey.back() == ')') sKey.resize(nOpen);
  size_t nDash = sKey.rfind('-');
  if (nDash != tstring::npos && sKey.size() - nDash == 3 && AllDigits(sKey.substr(nDash + 1)))
    sKey.insert(nDash + 1, "19");
  return sKey;
}

bool CSearchIndex::Load(const tstring& sDataDir) {
  const tstring sFolder = sDataDir + "/Data/Standards/";
  for (const char* szName : {"standards.txt", "requirements.txt"}) {
    const tstring sPath = sFolder + szName;
    tstring sText;
    if (!ReadFileText(sPath, sText)) {
      SetLastError("Failed reading file " + sPath);
      return false;
    }
    bool bStandards = strcmp(szName, "standards.txt") == 0;
    if (!(bStandards ? AddStandards(sText, sPath) : AddRequirements(sText, sPath))) return false;
  }
  return true;
}

bool CSearchIndex::AddStandards(const tstring& sText, const tstring& sSource) {
  return ForEachRow(sText, [&](int nLine, std::vector<tstring>& vecColumns) {
    if (vecColumns.size() > 6) return RowError(sSource, nLine, "more than 6 columns");
    vecColumns.resize(6);
    _tStandard standard{vecColumns[0], vecColumns[1], vecColumns[2], vecColumns[3], vecColumns[4], vecColumns[5]};
    if (standard.sNumber.empty() || standard.sName.empty()) return RowError(sSource, nLine, "no number or no name");
    if (standard.sStatus != kStatusCurrent && standard.sStatus != kStatusWithdrawn &&
        standard.sStatus != kStatusReplaced)
      return RowError(sSource, nLine, "status is not 现行, 废止 or 被代替");
    if (standard.sStatus == kStatusReplaced && standard.sReplacedBy.empty())
      return RowError(sSource, nLine, "被代替 without the replacing number");
    const tstring sNumberKey = NumberKey(standard.sNumber);
    if (m_mapNumber.count(sNumberKey)) return RowError(sSource, nLine, standard.sNumber + " is listed twice");
    const size_t nIndex = m_vecStandard.size();
    m_mapNumber.emplace(sNumberKey, nIndex);
    tstring sNoYear = WithoutYear(sNumberKey);
    if (!sNoYear.empty()) m_mapNumberNoYear.emplace(sNoYear, nIndex);
    m_mapName.emplace(NameKey(standard.sName), nIndex);
    m_vecStandard.push_back(std::move(standard));
    return true;
  });
}

bool CSearchIndex::AddRequirements(const tstring& sText, const tstring& sSource) {
  return ForEachRow(sText, [&](int nLine, const std::vector<tstring>& vecColumns) {
    if (vecColumns.size() != 5) return RowError(sSource, nLine, "not 5 columns");
    for (const tstring& sColumn : vecColumns)
      if (sColumn.empty()) return RowError(sSource, nLine, "an empty column");
    m_mapRequirementFile.emplace(NumberKey(vecColumns[0]), m_vecRequirement.size());
    m_vecRequirement.push_back({vecColumns[0], vecColumns[1], vecColumns[2], vecColumns[3], vecColumns[4]});
    return true;
  });
}

void CSearchIndex::SearchStandards(const tstring& sName, std::vector<SearchRecord>& vecRecords) const {
  std::set<size_t> setFound;  // ordered: records come in table order
  auto range = m_mapName.equal_range(NameKey(sName));
  for (auto it = range.first; it != range.second; ++it) setFound.insert(it->second);
  const tstring sNumberKey = NumberKey(sName);
  auto itNumber = m_mapNumber.find(sNumberKey);
  if (itNumber != m_mapNumber.end()) setFound.insert(itNumber->second);
  if (WithoutYear(sNumberKey).empty()) {
    auto editions = m_mapNumberNoYear.equal_range(sNumberKey);
    for (auto it = editions.first; it != editions.second; ++it) setFound.insert(it->second);
  }
  // A standard no longer in force brings its successor along, so the asker
  // learns of the newer issue from the same answer.
  std::set<size_t> setSuccessors;
  for (size_t nIndex : setFound) {
    const tstring& sNext = m_vecStandard[nIndex].sReplacedBy;
    auto itNext = sNext.empty() ? m_mapNumber.end() : m_mapNumber.find(NumberKey(sNext));
    if (itNext != m_mapNumber.end()) setSuccessors.insert(itNext->second);
  }
  setFound.insert(setSuccessors.begin(), setSuccessors.end());
  for (size_t nIndex : setFound) {
    const _tStandard& standard = m_vecStandard[nIndex];
    // A note worth a reader's check: why a standard is out of force. The
    // table's memo of a standard in force (its date of effect) is no remark.
    tstring sMemo;
    if (standard.sStatus != kStatusCurrent) {
      sMemo = standard.sStatus;
      if (!standard.sReplacedBy.empty()) sMemo += "，由 " + standard.sReplacedBy + " 代替";
      if (!standard.sMemo.empty()) sMemo += "；" + standard.sMemo;
    }
    vecRecords.push_back({{"Safety_Tiaowenhao", standard.sNumber},
                          {"Safety_Tiaowen", standard.sName},
                          {"Safety_Date", standard.sDate},
                          {"Memo", sMemo},
                          {"Status", standard.sStatus},
                          {"Replaced_By", standard.sReplacedBy}});
  }
}

void CSearchIndex::SearchRequirements(const tstring& sFile, const tstring* pClause,
                                      std::vector<SearchRecord>& vecRecords) const {
  // The file is a number, or the name of one or more standards.
  std::set<tstring> setFileKeys{NumberKey(sFile)};
  auto range = m_mapName.equal_range(NameKey(sFile));
  for (auto it = range.first; it != range.second; ++it) setFileKeys.insert(NumberKey(m_vecStandard[it->second].sNumber));
  tstring sClauseKey;
  if (pClause) {
    sClauseKey = NameKey(*pClause);
    if (sClauseKey.compare(0, 3, "第") == 0) sClauseKey.erase(0, 3);
    if (EndsWith(sClauseKey, "条")) sClauseKey.resize(sClauseKey.size() - 3);
  }
  std::set<size_t> setFound;
  for (const tstring& sKey : setFileKeys) {
    auto rows = m_mapRequirementFile.equal_range(sKey);
    for (auto it = rows.first; it != rows.second; ++it)
      if (pClause == nullptr || NameKey(m_vecRequirement[it->second].sClause) == sClauseKey) setFound.insert(it->second);
  }
  for (size_t nIndex : setFound) {
    const _tRequirement& requirement = m_vecRequirement[nIndex];
    vecRecords.push_back({{"file_name", requirement.sFile},
                          {"section_no", requirement.sClause},
                          {"row_name", requirement.sRow},
                          {"col_name", requirement.sCol},
                          {"value", requirement.sValue}});
  }
}

bool CSearchIndex::Search(const tstring& sQuery, std::vector<SearchRecord>& vecRecords, tstring& sError) const {
  vecRecords.clear();
  sError.clear();
  std::vector<_tCondition> vecConditions;
  if (!ParseQuery(sQuery, vecConditions, sError)) return false;
  std::map<tstring, tstring> mapValue;
  for (const _tCondition& condition : vecConditions) {
    if (condition.sField != "Safety_Tiaowen" && condition.sField != "file_name" && condition.sField != "section_no") {
      sError = "unknown field " + condition.sField.substr(0, 64);
      return false;
    }
    if (!mapValue.emplace(condition.sField, condition.sValue).second) {
      sError = "field " + condition.sField + " given twice";
      return false;
    }
  }
  auto itName = mapValue.find("Safety_Tiaowen");
  if (itName != mapValue.end()) {
    if (mapValue.size() > 1) {
      sError = "Safety_Tiaowen is searched alone";
      return false;
    }
    SearchStandards(itName->second, vecRecords);
    return true;
  }
  auto itFile = mapValue.find("file_name");
  if (itFile == mapValue.end()) {
    sError = "section_no needs file_name";
    return false;
  }
  auto itClause = mapValue.find("section_no");
  SearchRequirements(itFile->second, itClause == mapValue.end() ? nullptr : &itClause->second, vecRecords);
  return true;
}

tstring CSearchIndex::RecordsXml(const std::vector<SearchRecord>& vecRecords) {
  tstring sXml = "<records>\r\n";
  for (const SearchRecord& record : vecRecords) {
    sXml += "<record>";
    for (const auto& field : record) sXml += "<" + field.first + ">" + EscapeXml(field.second) + "</" + field.first + ">";
    sXml += "</record>\r\n";
  }
  return sXml + "</records>\r\n";
}

tstring CSearchIndex::ErrorXml(const tstring& sError) {
  return "<records><error>" + EscapeXml(sError) + "</error></records>\r\n";
}

tstring CSearchIndex::Answer(const tstring& sQuery) const {
  std::vector<SearchRecord> vecRecords;
  tstring sError;
  return Search(sQuery, vecRecords, sError) ? RecordsXml(vecRecords) : ErrorXml(sError);
}

bool ServeSearchConnection(const CSearchIndex& index, int fd, int nTimeoutMs, tstring& sLog) {
  using Clock = std::chrono::steady_clock;
  if (!SetNonBlocking(fd)) {
    sLog = "cannot make the connection non-blocking";
    return false;
  }
  tstring sLine, sAnswer;
  int nRead = ReadQueryLine(fd, Clock::now() + std::chrono::milliseconds(nTimeoutMs), sLine);
  if (nRead == 0) {
    sLog = "no complete query within " + std::to_string(nTimeoutMs) + " ms";
    return false;
  }
  if (nRead < 0) {
    sAnswer = CSearchIndex::ErrorXml("query longer than " + std::to_string(kMaxSearchQuery - 1) + " bytes");
    sLog = "query too long";
  } else {
    std::vector<SearchRecord> vecRecords;
    tstring sError;
    if (index.Search(sLine, vecRecords, sError)) {
      sAnswer = CSearchIndex::RecordsXml(vecRecords);
      sLog = sLine.substr(0, 200) + " -> " + std::to_string(vecRecords.size()) + " records";
    } else {
      sAnswer = CSearchIndex::ErrorXml(sError);
      sLog = sLine.substr(0, 200) + " -> error: " + sError;
    }
  }
  bool bTimedOut = false;
  if (!SendBefore(fd, sAnswer.data(), sAnswer.size(), Clock::now() + std::chrono::milliseconds(nTimeoutMs),
                  bTimedOut)) {
    sLog += bTimedOut ? "; answer not taken in time" : "; client gone before the answer";
    return false;
  }
  // Closing with unread input would reset the connection and could destroy
  // the answer in flight, so the rest of the input (a line too long, a client
  // that never half-closes) is read and dropped first, within bounds.
  shutdown(fd, SHUT_WR);
  const SearchDeadline drainBy = Clock::now() + std::chrono::milliseconds(std::min(nTimeoutMs, 1000));
  char buffer[4096];
  for (size_t nDropped = 0; nDropped < (1u << 20) && WaitSocket(fd, POLLIN, drainBy) == kSocketReady;) {
    ssize_t n = recv(fd, buffer, sizeof buffer, 0);
    if (n == 0 || (n < 0 && errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK)) break;
    if (n > 0) nDropped += (size_t)n;
  }
  return true;
}
