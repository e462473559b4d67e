#pragma once
// CCheckResult keeps the findings of one document: it drops empty and
// identical ones, scores them by error id with the message catalogue, counts
// them per chapter, and renders them as the "CheckResults" XML text (CR LF
// lines; texts inserted as they are, without escaping) or as JSON. A saved
// result is read back by Import (XML) or ImportJsonFile (JSON).
#include <cstdint>
#include <map>
#include <vector>

#include <json/json.h>

#include "utility/TString.h"

class CDocument;
class CID2Message;
struct _tParagraph;

// The keys a template is chosen by: the organisation handed to the check
// ("*" when none), and "*" for area and argument.
struct _tTemplateKeys {
  tstring organization, area, argument;
  static _tTemplateKeys ForOrganization(const tstring& sOrganization) {
    return _tTemplateKeys{sOrganization.empty() ? "*" : sOrganization, "*", "*"};
  }
};

// One finding.
struct _tCheckResult {
  int page_num = 0;
  uint32_t para_id = 0;
  uint32_t offset = 0;      // byte offset of org_str in the paragraph text
  tstring error_id;         // dotted id, the catalogue's key
  tstring error_msg;        // filled from the catalogue when empty
  tstring text;             // the paragraph's text
  int field_id = 0;         // 0 font, 1 fontSize, 2 text, 3 level, 4 line_space, 5 content
  tstring org_str;          // the offending text
  int revise_type = 0;      // 0 I, 1 U, 2 D, 3 C, 4 M
  tstring new_str;          // the suggested replacement
  uint32_t new_para_id = 0; // target paragraph of revise type 3

  void Reset() { *this = _tCheckResult(); }
  // Smaller paragraph id first, then smaller offset.
  bool operator<(const _tCheckResult& other) const {
    return para_id != other.para_id ? para_id < other.para_id : offset < other.offset;
  }
  // The same place, property and error, and the same offending text (or,
  // when there is none, the same replacement).
  bool operator==(const _tCheckResult& other) const;
  void output(tstring& sOut) const;
  void outputJson(Json::Value& value) const;
  // Fills the finding from one record: XML up to its "</check>", or JSON up
  // to its first "}". Items found past that end are ignored.
  void input(const char* pRecord, bool bJson);
};

struct _tFreqScore {
  int freq = 0;
  float score = 0;
};

class CCheckResult {
 public:
  // pMessages gives messages and scores (may be null: every id is then
  // unknown); it must outlive the result.
  explicit CCheckResult(const CID2Message* pMessages = nullptr) : m_pMessages(pMessages) {}

  // Admits one finding: trims trailing blanks of org_str, drops an empty
  // font finding and a replacement by the same text, fills the message.
  void AddResult(_tCheckResult& result);
  // Admits a finding on a whole paragraph (offset 0): its id, page and text.
  void AddOnParagraph(const _tParagraph& para, const char* szErrorId, int nField, int nReviseType,
                      const tstring& sOrg, const tstring& sNew);
  // Sorts, removes duplicates and counts per error id and per chapter.
  // Findings at one place are ordered by field, error id and texts too, so
  // that equal findings always end up next to each other.
  void SortResult();
  void Reset();
  // Removes every finding of an id; returns how many.
  size_t Remove(const char* sErrorId);

  // The template the findings were made against, as the results name it
  // ("" for each key until set).
  void SetTemplateKeys(const _tTemplateKeys& keys) { m_templateKeys = keys; }

  // The rendered texts; valid until the next rendering. pDoc gives the
  // chapters and their texts; it may be null and must outlive the rendering.
  const char* GetResult(const char* sPath, const char* sFilename, int nReportType, const char* sURLPrefix,
                        const CDocument* pDoc);
  const char* GetResultJson(const char* sPath, const char* sFilename, int nReportType, const char* sURLPrefix,
                            const CDocument* pDoc);
  // Writes a short XML file naming the document. 1, or 0 ("Fail write file").
  int GetResultFile(const char* sFilename);

  // Reads a saved XML result (or, for a ".json" name, a JSON one). 1 on
  // success; -1 when the file cannot be read.
  int Import(const char* sFilename);
  int ImportJsonFile(const char* sFilename);

  // The scores per error id (message, count, each, maximum, deduction) and
  // the total score, as the renderings show them.
  struct _tScoreLine {
    tstring id, message;
    int count;
    float each, max, score;
  };
  std::vector<_tScoreLine> GetScoreLines(double& fTotalScore) const { return ScoreLines(fTotalScore); }
  const std::map<uint32_t, int>& GetChapterCounts() const { return m_mapChapID2freq; }

  const std::vector<_tCheckResult>& GetFindings() const { return m_vecResult; }
  const std::map<tstring, _tFreqScore>& GetCounts() const { return m_mapErrId2FreqScore; }
  unsigned GetErrorCount() const { return m_nErrCount; }

  tstring m_sPath;       // document path (UTF-8)
  tstring m_sFilename;   // document file name (UTF-8)
  tstring m_sURLPrefix;
  int m_nReportType = 0;

 private:
  // The per-id score lines and the total score, from the counts.
  std::vector<_tScoreLine> ScoreLines(double& fTotalScore) const;
  tstring Message(const tstring& sErrorId) const;

  std::vector<_tCheckResult> m_vecResult;
  tstring m_sResult;
  std::map<tstring, _tFreqScore> m_mapErrId2FreqScore;  // findings per error id
  std::map<uint32_t, int> m_mapChapID2freq;              // findings per chapter heading id
  const CID2Message* m_pMessages;                        // not owned; may be null
  const CDocument* m_pDocParser = nullptr;               // not owned; the model of the last rendering
  _tTemplateKeys m_templateKeys;                         // as the results name them
  unsigned m_nErrCount = 0;
  bool m_bSort = false;
};
