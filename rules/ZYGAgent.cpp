#include "rules/ZYGAgent.h"
// How the agent scans, and the decisions the matching leaves open.
//
// Tokens. A text is normalised (NormalizeText: full-width ASCII forms to
// ASCII, white-space runs to one blank, trimmed) into m_sTextStand and cut
// by the lexical analyser; every token keeps its byte offset in that text.
// A user word with blanks arrives as one token whose word is the text span
// (blanks included), so no bracket handling is needed here. The list is
// framed by two sentinels of the tags "/LB" and "/LE" (offsets 0 and the
// text's length). ScanWords builds the same list from words given by hand.
//
// Candidates. Every token's term gives the index postings to try. Besides
// the field restrictions of ScanText, postings of the generating actions
// are never tried on text (their elements are attribute ids; they run after
// the scan), and a posting whose skip list names a term absent from the
// text is passed by. A document scan says per part which fields the text
// stands for (mask of _tScope): body paragraphs "text" and the key field 11
// (field 11 keeps running on text as well as in the key-bound pass);
// headings also "title" and, by level 1 to 3, "title1" to "title3"; table
// cells "text" and 11, the cells of the first row "ColHead", of the first
// column "RowHead", the top-left cell both and "RowColHead"; every row once
// more as one text (its cells joined by blanks) for "SingleRow". A table's
// values (GetTables) are its rows under the keys that "ColHead" rules found
// in the column heads (the first argument's key), or, with no such key, its
// columns under the keys that "RowHead" rules found in the row heads.
//
// Matching. The backward search for the first block stops at the farthest
// token from which a match of the rule could still reach the indexed token
// (the sum of every block's repeat and step and every grid's step), so a
// search never costs more than the rule's own span and a scan stays linear
// in the tokens. The same bound caps a grid whose limit is negative. A
// block of repeat 0 matches at most once; a block whose gap runs out before
// its repeat count is reached ends there (the tokens matched so far stand);
// a grid left with blocks when the tokens or its limit run out succeeds
// when those blocks are the current, already matched one and optional
// ones. A match must cover the indexed token: its one-past-last token lies
// beyond it. De-duplication: a rule is reported once per start and end
// token in one scan, however many of its terms found it; an extracted value
// (paragraph, offset, key, value, rule) is recorded once.
//
// Records of a match keep the paragraph's text (org_para_text); past 4 KiB
// only the 256 bytes around the match.
//
// Offsets of selected values: the token's byte offset in the normalised
// text, less the bytes of markup ("<", optional "/", a "/x" token, ">")
// before it, plus the scan's start offset (the result's offset).
//
// Values and keys. Selected value i is recorded under the key of argument
// i (its attribute); the first selected value under each key name too. The
// revising actions record no values but findings (below).
//
// Actions, when the rule selected nothing unless said otherwise:
// - "convert": each selected value is rewritten: a date as YYYY-MM-DD, a
//   whole Chinese numeral as its digits, thousands commas dropped, and in
//   an ASCII value the blanks beside "-/.~" dropped ("GB 50014-2021").
// - "paragraphextract": the whole (normalised) paragraph.
// - "between_extract": the text between the first grid's last token and
//   the last grid's first token, blanks trimmed; nothing with one grid.
// - "unit_extract", "email_extract", "country_extract": every value that
//   CValueExtractor finds from the match's first token to the paragraph's
//   end. Country detection not started: the message "ZYG-Configure.json
//   must set CountryDetect on before execute country_extract " (once).
// - "sectionextract": number and name of the section holding the
//   paragraph (its heading in a document, else the text itself), as two
//   values with the heading's paragraph.
// - "title_extract": the paragraph without its section number.
// - "format_extract": font name and size (half-points) of the document
//   paragraph, as two values; nothing for plain text.
// - "tableextract" (always): the value (or, when nothing is selected, the
//   paragraph) is also recorded under the key "tablename", and the next
//   table of the document gives a table argument per data cell (file,
//   section number and name, row head, column head, value).
// - "insert", "update", "delete" (always): a finding with the rule number
//   as error id and the rule name as message, on the first selected value
//   (else the matched words); revise type 0, 1 or 2; the replacement of
//   "update" and the text inserted by "insert" is the display name of the
//   first argument ("attribute|display name").
//
// Generating rules run in ScanRules after the key-bound rules; their
// elements name attributes, i.e. keys.
// - "generate_tuple": values of the named keys grouped by table row (for
//   cells) or paragraph; a group holding at least two of the keys (one when
//   the rule names one) becomes a tuple, ordered by key then offset.
// - "generate_date": exactly one block ("Block count must be 1 in " + rule
//   number otherwise). Its keys' values are read in order: "[a to b]", two
//   dates joined by 至/到/~/～/—/－/-/to, a date (ParseDate), "YYYY年M月"
//   or "YYYY年(度)". The first single date becomes "report_date", the first
//   period "report_during" written "[YYYY-MM-DD to YYYY-MM-DD]" with
//   "report_during_end" (its end) and "report_during_data" /
//   "report_during_end_data" (the texts they came from), each when the rule
//   set knows the key. Messages (last error): value + " Invalid format need
//   [startDate to EndDate]." for a bracketed value without " to ", value +
//   " is invalid this year number" for a year outside 1900..2100, value +
//   " is invalid! " for anything unreadable.
// - "generate_singlekey": the rule's one key and two arguments, a name key
//   and a value key. Each name value is paired with the nearest value of the
//   value key in the same paragraph or table row (the first at or after it,
//   else the last before it) into a single key value of the rule's key
//   whose text is "name:value".
//
// Knowledge graph: per match, the argument of role "entity" names the
// entity; each argument of role "attribute" gives (entity, display name,
// value); roles "head", "relation" and "tail" give a triple (relation: the
// value, else the rule's name); entity values are named-entity key values.
//
// Findings (switch SetPunctuationCheck, default on), on the original text
// with its own byte offsets, skipped in the key-bound pass:
// - "1.5.3" (update to one copy): the same word twice in a row where that is
//   a slip, not a reduplication: a Chinese word of two or more characters
//   that is no verb, adjective, adverb, numeral or quantifier ("我们我们"),
//   or one of a closed list of function characters (的的, 在在, 是是)
//   outside an AABB form (的的确确). Lexicon words such as 常常, 看看, 人人
//   are single tokens and never two.
// - "99.3" (delete the comma): "，" directly before the word 及, 和, 与 or
//   或 when the clause before it is an enumeration with "、" whose last item
//   is short (8 characters) and not closed by "等" ("甲、乙，和丙"); a comma
//   before 和 that opens a clause is correct, and so is "，即" and "，就是",
//   which open an explanation.
// Paragraphs without a Chinese character get none of these findings.
// - "99.4" (update to the strongest mark): two or more of "，、；：。" in a row.
// - "99.5" (insert the partner): an unpaired “” ‘’ （） 《》, counted per kind;
//   a list label such as "1）" or "a）" and an apostrophe ’ after a Latin
//   letter or digit are not marks of a pair.
//
// Debug trace: per scanned text one JSON object with "original" (the text),
// "segment" (word/tag tokens), "debug" (the token list) and "process" (the
// match trace); ScanDoc and ScanTextFile write the array to
// "Match_Debug.txt" beside the scanned file.
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>

#include "docx/Document.h"
#include "rules/ValueExtractor.h"
#include "rules/ZYG.h"
#include "rules/ZYGResultWriter.h"
#include "utility/ChineseNumber.h"
#include "utility/CodePage.h"
#include "utility/CountryDetect.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/TextNormalizer.h"
#include "utility/Utf8.h"
#include "utility/Validators.h"
#include "utility/lexical/CharClass.h"
#include "utility/lexical/Lexical.h"
#include "utility/lexical/LexicalAnalyser.h"
#include "utility/lexical/Segmenter.h"

namespace {

// Repeats and steps come from rule files; clamped so limits never overflow.
constexpr int kMaxCount = 1 << 20;
constexpr uint32_t kDumpParaId = 620960;  // always dumps its token list

bool IsBlankChar(uint32_t c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f' || c == 0xA0 || c == 0x3000;
}

bool IsAsciiByte(char c) { return (unsigned char)c < 0x80; }

bool StartsWith(const tstring& s, const char* szPrefix) { return s.compare(0, strlen(szPrefix), szPrefix) == 0; }

tstring Trim(const tstring& s) {
  size_t b = s.find_first_not_of(' ');
  if (b == tstring::npos) return "";
  size_t e = s.find_last_not_of(' ');
  return s.substr(b, e - b + 1);
}

tstring FormatDate(int y, int m, int d) {
  char sz[32];
  snprintf(sz, sizeof(sz), "%04d-%02d-%02d", y, m, d);
  return sz;
}

int DaysInMonth(int y, int m) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (m == 2 && ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0)) return 29;
  return (m >= 1 && m <= 12) ? kDays[m - 1] : 30;
}

// Leading ASCII digits of s from nPos; -1 when there are none or too many.
int ReadNumber(const tstring& s, size_t& nPos) {
  int n = 0, nDigits = 0;
  while (nPos < s.size() && s[nPos] >= '0' && s[nPos] <= '9' && nDigits < 6) {
    n = n * 10 + (s[nPos++] - '0');
    ++nDigits;
  }
  return nDigits ? n : -1;
}

// A date, or a month or year standing for its first (or, bEnd, last) day.
// nYear is set whenever a year was read, so a bad year can be named.
bool ReadLooseDate(const tstring& sText, bool bEnd, int& y, int& m, int& d) {
  tstring s = Trim(sText);
  y = -1;
  if (ParseDate(s, y, m, d)) return true;
  size_t nPos = 0;
  y = ReadNumber(s, nPos);
  if (y < 0 || s.compare(nPos, 3, "年") != 0) return false;
  nPos += 3;
  if (nPos == s.size() || s.compare(nPos, tstring::npos, "度") == 0) {
    m = bEnd ? 12 : 1;
    d = bEnd ? 31 : 1;
    return true;
  }
  m = ReadNumber(s, nPos);
  if (m < 1 || m > 12 || s.compare(nPos, tstring::npos, "月") != 0) return false;
  d = bEnd ? DaysInMonth(y, m) : 1;
  return true;
}

bool YearValid(int y) { return y >= 1900 && y <= 2100; }

// The function characters whose doubling is a slip in written reports.
bool IsDoubledSlipChar(const tstring& s) {
  static const char* const kChars[] = {"的", "在", "是", "和", "与", "及", "对", "将", "把", "被", "从", "向",
                                       "于", "为", "而", "并", "或", "但", "也", "就", "都", "又", "已", "其",
                                       "该", "之", "以", "由", "因", "所", "给", "让", "使", "比", "跟"};
  for (const char* sz : kChars)
    if (s == sz) return true;
  return false;
}

bool IsHanWord(const tstring& s) {
  if (s.empty()) return false;
  for (size_t i = 0, n = 0; i < s.size(); i += n) {
    uint32_t c;
    n = DecodeUtf8(s.data() + i, s.size() - i, c);
    if (c < 0x3400 || c > 0x9FFF) return false;
  }
  return true;
}

// Tags of words whose doubling is a normal reduplication (研究研究, 雪白雪白,
// 非常非常) or not a word at all.
bool IsReduplicableTag(const tstring& sPos) {
  static const char* const kTags[] = {"/v", "/a", "/d", "/m", "/q", "/w", "/x", "/eng", "/o", "/e", "/y"};
  for (const char* sz : kTags)
    if (StartsWith(sPos, sz)) return true;
  return false;
}

// Full-width clause marks that never stand two in a row, strongest first.
const char* const kClauseMarks[] = {"。", "；", "：", "，", "、"};

int ClauseMarkRank(const tstring& s, size_t nPos) {
  // Every clause mark starts with the byte EF or E3: other bytes are no mark.
  unsigned char c = nPos < s.size() ? (unsigned char)s[nPos] : 0;
  if (c != 0xEF && c != 0xE3) return -1;
  for (int i = 0; i < 5; ++i)
    if (s.compare(nPos, 3, kClauseMarks[i]) == 0) return i;
  return -1;
}

bool IsLabelChar(uint32_t c) {
  return (c < 0x80 && isalnum((int)c)) || IsChineseNumeralChar(c) || (c >= 0x2460 && c <= 0x2473);
}

bool IsAsciiAlnum(uint32_t c) { return c < 0x80 && isalnum((int)c); }

// The character that ends just before nPos (0 when none) and its start.
uint32_t CharBefore(const tstring& s, size_t nPos, size_t& nStart) {
  if (nPos == 0) return 0;
  size_t i = nPos - 1;
  while (i > 0 && nPos - i < 4 && ((unsigned char)s[i] & 0xC0) == 0x80) --i;
  uint32_t c;
  size_t n = DecodeUtf8(s.data() + i, s.size() - i, c);
  if (i + n != nPos) {  // not a whole character: step one byte
    i = nPos - 1;
    c = kInvalidByteBase + (unsigned char)s[i];
  }
  nStart = i;
  return c;
}

// A closing "）" that ends a list label ("1）", "a）", "二）") at the start of
// the text or after a blank or a mark; a label of one or two ASCII digits or
// letters counts anywhere ("如在节内容1）还包含分点").
bool EndsListLabel(const tstring& s, size_t nClose) {
  size_t nPos = nClose, nStart = 0;
  int nLabel = 0;
  bool bAscii = true;
  while (nPos > 0 && nLabel < 4) {
    uint32_t c = CharBefore(s, nPos, nStart);
    if (!IsLabelChar(c)) break;
    bAscii = bAscii && c < 0x80;
    ++nLabel;
    nPos = nStart;
  }
  if (nLabel == 0 || nLabel > 3) return false;
  if (nPos == 0 || (bAscii && nLabel <= 2)) return true;
  uint32_t c = CharBefore(s, nPos, nStart);
  return IsBlankChar(c) || c == 0xFF1A || c == 0xFF1B || c == 0x3002 || c == 0xFF0C || c == 0x3001 ||
         c == ':' || c == ';' || c == ',' || c == 0xFF09;
}

}  // namespace

CZYGAgent::CZYGAgent(const CZYG* pZYG, const CLexicalAnalyser* pAnalyser) : m_pZYG(pZYG), m_pAnalyser(pAnalyser) {
  m_jsonDebug = Json::Value(Json::arrayValue);
}

// ---------------------------------------------------------------------------
// Scanning entries

int CZYGAgent::ScanText(const tstring& sText, uint32_t nParaId, int nLevel, int nFieldID, int nRuleIDSelected,
                        int nOffsetStart) {
  _tScope scope;
  scope.nLevel = nLevel;
  scope.nFieldID = nFieldID;
  scope.nRuleID = nRuleIDSelected;
  scope.bCheck = nRuleIDSelected < 0 && nFieldID <= kFieldTitle3;
  return ScanTextScoped(sText, nParaId, scope, nOffsetStart);
}

int CZYGAgent::ScanTextScoped(const tstring& sText, uint32_t nParaId, const _tScope& scope, int nOffsetStart) {
  Normalise(sText);
  m_vecScanResult.clear();
  AddToken("", "/LB", 0);
  std::shared_ptr<CLexicalAnalyser> pShared;
  const CLexicalAnalyser* pAnalyser = m_pAnalyser;
  if (!pAnalyser) {
    pShared = QUENDA_Analyser();
    pAnalyser = pShared.get();
  }
  std::vector<_tToken> vecTokens;
  if (pAnalyser && !m_sTextStand.empty()) pAnalyser->Segment(m_sTextStand, vecTokens);
  for (const _tToken& token : vecTokens) {
    if (token.offset >= m_sTextStand.size()) continue;
    size_t nLength = std::min(token.length, m_sTextStand.size() - token.offset);
    tstring sPos = "/";
    sPos += token.tag ? (token.tag[0] == '/' ? token.tag + 1 : token.tag) : "x";
    AddToken(m_sTextStand.substr(token.offset, nLength), sPos, (int)token.offset);
  }
  AddToken("", "/LE", (int)m_sTextStand.size());
  if (m_bDebug) {
    Json::Value item;
    item["original"] = sText;
    item["segment"] = CSegmenter::Format(m_sTextStand, vecTokens, true);
    m_jsonDebug.append(item);
  }
  return ScanPrepared(sText, nParaId, scope, nOffsetStart);
}

int CZYGAgent::ScanWords(const std::vector<std::pair<tstring, tstring>>& vecWordPos, uint32_t nParaId, int nLevel,
                         int nFieldID, int nRuleIDSelected, int nOffsetStart) {
  m_sTextStand.clear();
  m_vecScanResult.clear();
  AddToken("", "/LB", 0);
  tstring sSegment;
  for (const auto& wordPos : vecWordPos) {
    if (wordPos.first.empty()) continue;
    if (!m_sTextStand.empty() && IsAsciiByte(m_sTextStand.back()) && IsAsciiByte(wordPos.first[0]))
      m_sTextStand.push_back(' ');
    tstring sPos = wordPos.second.empty() || wordPos.second[0] != '/' ? "/" + wordPos.second : wordPos.second;
    AddToken(wordPos.first, sPos, (int)m_sTextStand.size());
    m_sTextStand += wordPos.first;
    sSegment += (sSegment.empty() ? "" : " ") + wordPos.first + sPos;
  }
  AddToken("", "/LE", (int)m_sTextStand.size());
  m_vecSource.resize(m_sTextStand.size());
  for (size_t i = 0; i < m_sTextStand.size(); ++i) m_vecSource[i] = {(uint32_t)i, (uint32_t)i + 1};
  if (m_bDebug) {
    Json::Value item;
    item["original"] = m_sTextStand;
    item["segment"] = sSegment;
    m_jsonDebug.append(item);
  }
  _tScope scope;
  scope.nLevel = nLevel;
  scope.nFieldID = nFieldID;
  scope.nRuleID = nRuleIDSelected;
  scope.bCheck = nRuleIDSelected < 0 && nFieldID <= kFieldTitle3;
  tstring sOriginal = m_sTextStand;
  return ScanPrepared(sOriginal, nParaId, scope, nOffsetStart);
}

// The part of a scan after tokenising: candidates, matches, actions, checks.
int CZYGAgent::ScanPrepared(const tstring& sOriginal, uint32_t nParaId, const _tScope& scope, int nOffsetStart) {
  m_nParaId = nParaId;
  m_nOffsetStart = nOffsetStart;
  m_sMatchProcess.clear();
  m_setMatched.clear();
  ComputeMarkup();
  if (m_bDebug || nParaId == kDumpParaId) DumpTokens(nParaId);
  int nMatches = 0;
  if (m_pZYG) {
    size_t nTerms = m_pZYG->GetTermCount();
    if (m_vecTermStamp.size() < nTerms) m_vecTermStamp.resize(nTerms, 0);
    if (++m_nStamp == 0) {  // wrapped: forget every old stamp
      std::fill(m_vecTermStamp.begin(), m_vecTermStamp.end(), 0);
      m_nStamp = 1;
    }
    for (const _tZYGScanResult& token : m_vecScanResult)
      if (token.word_id >= 0 && (size_t)token.word_id < m_vecTermStamp.size()) m_vecTermStamp[token.word_id] = m_nStamp;
    size_t nRules = m_pZYG->GetRuleCount();
    for (size_t t = 0; t < m_vecScanResult.size(); ++t) {
      int nTerm = m_vecScanResult[t].word_id;
      const _tZYGIndex* pIndex = nTerm >= 0 ? m_pZYG->GetPostings(nTerm) : nullptr;
      if (!pIndex) continue;
      for (const _tZYGIndexData& data : pIndex->pData) {
        if (data.knowledge_index < 0 || (size_t)data.knowledge_index >= nRules) continue;
        const _tRule& rule = m_pZYG->GetRule(data.knowledge_index);
        if (!Eligible(rule, data.knowledge_index, scope) || !SkipListHolds(data)) continue;
        _tZYG_Result result;
        _tMatchSpan span;
        if (!MatchRule((int)t, data, result, span)) continue;
        if (!m_setMatched.insert({result.rule_index, {span.nStart, span.nEnd}}).second) continue;
        AddResult(result, span);
        ++nMatches;
      }
    }
  }
  if (scope.bCheck && m_bPunctuationCheck) PunctuationCheck(sOriginal, nParaId);
  if (m_bDebug && !m_jsonDebug.empty()) m_jsonDebug[m_jsonDebug.size() - 1]["process"] = m_sMatchProcess;
  return nMatches;
}

// NormalizeText, keeping for every output byte the source bytes it came
// from, so findings can point into the original paragraph.
void CZYGAgent::Normalise(const tstring& sText) {
  m_sTextStand.clear();
  m_vecSource.clear();
  m_sTextStand.reserve(sText.size());
  m_vecSource.reserve(sText.size());
  bool bPendingBlank = false;
  size_t nBlankStart = 0;
  for (size_t i = 0, n = 0; i < sText.size(); i += n) {
    // Common characters go straight through: printable ASCII, and the
    // three-byte characters led by E4..E9 (most Chinese), which are neither
    // blanks nor full-width forms.
    unsigned char b = (unsigned char)sText[i];
    n = b > 0x20 && b < 0x7F ? 1
        : (b >= 0xE4 && b <= 0xE9 && i + 2 < sText.size() && ((unsigned char)sText[i + 1] & 0xC0) == 0x80 &&
           ((unsigned char)sText[i + 2] & 0xC0) == 0x80)
            ? 3
            : 0;
    if (n > 0 && !bPendingBlank) {
      m_sTextStand.append(sText, i, n);
      for (size_t k = 0; k < n; ++k) m_vecSource.push_back({(uint32_t)i, (uint32_t)(i + n)});
      continue;
    }
    uint32_t c;
    n = DecodeUtf8(sText.data() + i, sText.size() - i, c);
    if (IsBlankChar(c)) {
      if (!bPendingBlank) nBlankStart = i;
      bPendingBlank = !m_sTextStand.empty();
      continue;
    }
    if (bPendingBlank) {
      m_sTextStand.push_back(' ');
      m_vecSource.push_back({(uint32_t)nBlankStart, (uint32_t)i});
    }
    bPendingBlank = false;
    if (c >= 0xFF01 && c <= 0xFF5E) {
      m_sTextStand.push_back((char)(c - 0xFF01 + 0x21));
      m_vecSource.push_back({(uint32_t)i, (uint32_t)(i + n)});
    } else {
      for (size_t k = 0; k < n; ++k) {
        m_sTextStand.push_back(sText[i + k]);
        m_vecSource.push_back({(uint32_t)i, (uint32_t)(i + n)});
      }
    }
  }
}

void CZYGAgent::AddToken(const tstring& sWord, const tstring& sPos, int nOffset) {
  _tZYGScanResult token;
  token.word = sWord;
  token.pos = sPos;
  token.offset = nOffset;
  if (m_pZYG) {
    token.word_id = sWord.empty() ? -1 : m_pZYG->GetTermId(sWord);
    if (token.word_id < 0) token.word_id = m_pZYG->GetTermId(sPos);
  }
  m_vecScanResult.push_back(std::move(token));
}

void CZYGAgent::DumpTokens(uint32_t nParaId) {
  tstring sDump;
  char sz[64];
  for (size_t i = 0; i < m_vecScanResult.size(); ++i) {
    const _tZYGScanResult& token = m_vecScanResult[i];
    // Built piecewise: words may hold NUL bytes that a %s would cut.
    snprintf(sz, sizeof(sz), "No:%zd\tId=%d\tWord=", i, token.word_id);
    sDump += sz;
    sDump += token.word + "(Ansi=" + UTF8ToANSI(token.word) + ")\tpos=" + token.pos + "\n";
  }
  if (m_bDebug && !m_jsonDebug.empty()) m_jsonDebug[m_jsonDebug.size() - 1]["debug"] = sDump;
  if (nParaId == kDumpParaId && !m_bDebug) WriteLog(sDump);
}

// Markup written into a text ("<b>", "</b>") is no part of the paragraph the
// offsets point into: per token, the markup bytes before it.
void CZYGAgent::ComputeMarkup() {
  size_t n = m_vecScanResult.size();
  m_vecMarkupBefore.assign(n, 0);
  int nBytes = 0;
  for (size_t i = 0; i < n; ++i) {
    m_vecMarkupBefore[i] = nBytes;
    if (m_vecScanResult[i].word != "<") continue;
    size_t j = i + 1;
    if (j < n && m_vecScanResult[j].word == "/") ++j;
    if (j + 1 < n && m_vecScanResult[j].pos == "/x" && m_vecScanResult[j + 1].word == ">") {
      int nSpan = TokenEnd((int)j + 1) - m_vecScanResult[i].offset;
      for (size_t k = i + 1; k <= j + 1; ++k) m_vecMarkupBefore[k] = nBytes;
      nBytes += std::max(nSpan, 0);
      i = j + 1;
    }
  }
}

int CZYGAgent::TokenOffset(int nToken) const {
  return m_vecScanResult[nToken].offset - m_vecMarkupBefore[nToken] + m_nOffsetStart;
}

int CZYGAgent::TokenEnd(int nToken) const {
  return m_vecScanResult[nToken].offset + (int)m_vecScanResult[nToken].word.size();
}

// ---------------------------------------------------------------------------
// Candidate rules

bool CZYGAgent::Eligible(const _tRule& rule, int nRule, const _tScope& scope) const {
  if (scope.nRuleID >= 0 && nRule != scope.nRuleID) return false;
  if (rule.action_id >= kActionGenerateTuple) return false;
  uint32_t nField = rule.field;
  if (scope.nLevel == -300) {
    if (nField != kFieldHeader) return false;
  } else if (scope.nLevel == -400) {
    if (nField != kFieldFooter) return false;
  } else if (nField == kFieldHeader || nField == kFieldFooter) {
    return false;
  }
  if (scope.nFieldID >= 0) return nField == (uint32_t)scope.nFieldID;
  if (nField > (uint32_t)kFieldKeyBase) return false;
  return (scope.nFieldMask >> nField) & 1u;
}

bool CZYGAgent::SkipListHolds(const _tZYGIndexData& data) const {
  bool bGroupFound = false;  // some element of the current group is in the text
  for (int32_t nTerm : data.skiplist) {
    if (nTerm < 0) {
      if (!bGroupFound) return false;
      bGroupFound = false;
    } else if ((size_t)nTerm < m_vecTermStamp.size() && m_vecTermStamp[nTerm] == m_nStamp) {
      bGroupFound = true;
    }
  }
  return true;
}

const CZYGAgent::_tRuleInfo& CZYGAgent::RuleInfo(int nRule) {
  if (m_vecRuleInfo.size() < m_pZYG->GetRuleCount()) m_vecRuleInfo.resize(m_pZYG->GetRuleCount());
  _tRuleInfo& info = m_vecRuleInfo[nRule];
  if (info.bReady) return info;
  const _tRule& rule = m_pZYG->GetRule(nRule);
  size_t nArgs = 0;
  const int32_t* pArgs = m_pZYG->GetInts(rule.arguments_id, nArgs);
  for (size_t i = 0; i < nArgs; ++i) {
    tstring sExpr = m_pZYG->GetStr(pArgs[i]), sAttribute, sName;
    bool bOk = CZYG::ExtractAttribute(sExpr, sAttribute, sName);
    info.vecArgKeys.push_back(bOk ? m_pZYG->GetKeyId(sAttribute) : -1);
    info.vecArgNames.push_back(bOk ? sName : sExpr);
    std::array<uint8_t, 9> roles{};
    for (const _tFieldID2KG& kg : rule.pField2KG) {
      tstring sField = m_pZYG->GetStr(kg.field_name_id);
      if (sField == sExpr || (bOk && sField == sAttribute))
        for (int k = 0; k < kKGRoleCount; ++k) roles[k] |= kg.type[k];
    }
    info.vecArgRoles.push_back(roles);
  }
  info.nReach = ComputeReach(rule);
  info.bReady = true;
  return info;
}

// How far a match can run from its first token: every block at most its
// repeat count plus its gap, every grid retried at most its step.
int CZYGAgent::ComputeReach(const _tRule& rule) const {
  int64_t nReach = 2;
  const _tKnowledge& knowledge = rule.knowledge;
  for (size_t g = 0; g < knowledge.grids.size(); ++g) {
    const _tGrid& grid = knowledge.grids[g];
    nReach += std::clamp(m_pZYG->GetInt(knowledge.steps, g, 1), 0, kMaxCount) + 1;
    for (size_t b = 0; b < grid.blocks.size(); ++b)
      nReach += std::clamp(m_pZYG->GetInt(grid.repeats, b, 1), 0, kMaxCount) +
                std::clamp(m_pZYG->GetInt(grid.steps, b, 1), 0, kMaxCount) + 1;
  }
  return (int)std::min<int64_t>(nReach, INT_MAX / 4);
}

// ---------------------------------------------------------------------------
// Matching

bool CZYGAgent::MatchRule(int nToken, const _tZYGIndexData& data, _tZYG_Result& result, _tMatchSpan& span) {
  m_nTokenMatchedIndex = nToken;
  m_dataToBeMatched = &data;
  const _tRule& rule = m_pZYG->GetRule(data.knowledge_index);
  m_nCurActionId = (int)rule.action_id;
  int nReach = RuleInfo(data.knowledge_index).nReach;
  if (m_bDebug) m_sMatchProcess += "Rule " + tstring(m_pZYG->GetStr(rule.rule_no_id)) + " at token " +
                                   std::to_string(nToken) + "\n";
  int nStart = LocateFirstToken(rule.knowledge, data, nReach);
  if (nStart < 0) return false;
  result.para_id = m_nParaId;
  result.offset = (unsigned)m_nOffsetStart;
  if (MatchKnowledge(rule.knowledge, nStart, nReach, result, span) < 0) return false;
  ReadResultFromRule(rule, result);
  result.rule_index = data.knowledge_index;
  return true;
}

int CZYGAgent::LocateFirstToken(const _tKnowledge& knowledge, const _tZYGIndexData& data, int nReach) {
  if (knowledge.grids.empty() || knowledge.grids[0].blocks.empty()) return -1;
  const _tBlock& first = knowledge.grids[0].blocks[0];
  int nFrom = m_nTokenMatchedIndex;
  if (data.grid_index != 0 || data.block_index != 0) --nFrom;
  // Farther back no match could reach the indexed token: stop there.
  int nStop = std::max(0, m_nTokenMatchedIndex - nReach);
  for (int p = nFrom; p >= nStop; --p)
    if (MatchBlock(first, p)) return p;
  if (m_bDebug) m_sMatchProcess += "Try to match first block failed! with " + BlockStr(first) + "\n";
  return -1;
}

int CZYGAgent::MatchKnowledge(const _tKnowledge& knowledge, int nStart, int nReach, _tZYG_Result& result,
                              _tMatchSpan& span) {
  int nPos = nStart, nLimit = m_nTokenMatchedIndex;
  int nHardEnd = nStart + nReach;
  for (size_t g = 0; g < knowledge.grids.size(); ++g) {
    int nTries = g == 0 ? 1 : std::clamp(m_pZYG->GetInt(knowledge.steps, g - 1, 1), 1, kMaxCount);
    int nEnd = -1, nGridStart = -1;
    for (int t = 0; t < nTries && nEnd < 0; ++t) {
      if (nPos + t >= (int)m_vecScanResult.size()) break;
      nEnd = MatchGrid(knowledge, g, nPos + t, nLimit, nHardEnd, result, nGridStart);
    }
    if (nEnd < 0) {
      if (m_bDebug) m_sMatchProcess += " Knowledge Match Failed! at grid " + std::to_string(g) + "\n";
      return -1;
    }
    if (nGridStart < 0) nGridStart = nEnd;
    span.vecGrids.push_back({nGridStart, nEnd});
    if (g == 0) span.nStart = nGridStart;
    nPos = nEnd;
    nLimit = nEnd + std::clamp(m_pZYG->GetInt(knowledge.steps, g, 1), -1, kMaxCount);
  }
  if (nPos <= m_nTokenMatchedIndex) {
    if (m_bDebug) m_sMatchProcess += " Knowledge Match Failed! Indexed Token not covered in match! \n";
    return -1;
  }
  span.nEnd = nPos;
  return nPos;
}

int CZYGAgent::MatchGrid(const _tKnowledge& knowledge, size_t nGrid, int nToken, int nMax, int nHardEnd,
                         _tZYG_Result& result, int& nGridStart) {
  const _tGrid& grid = knowledge.grids[nGrid];
  const size_t nBlocks = grid.blocks.size();
  const int nTokens = (int)m_vecScanResult.size();
  auto repeat = [&](size_t b) { return std::clamp(m_pZYG->GetInt(grid.repeats, b, 1), 0, kMaxCount); };
  auto step = [&](size_t b) { return std::clamp(m_pZYG->GetInt(grid.steps, b, 1), -1, kMaxCount); };
  size_t b = 0;
  int p = nToken, nLimit = nMax, nCount = 0, nGap = 0;
  bool bAnyMatched = false;
  nGridStart = -1;
  if (grid.repeats.end > grid.repeats.start && nBlocks > 0) nLimit += repeat(0) - 1;
  auto nextBlock = [&]() {
    nLimit = p + step(b) + (b + 1 < nBlocks ? repeat(b + 1) : 0);
    ++b;
    nCount = nGap = 0;
  };
  while (b < nBlocks && p < nTokens && p <= (nLimit < 0 ? nHardEnd : nLimit)) {
    const int nRepeat = repeat(b);
    if (MatchBlock(grid.blocks[b], p)) {
      if (nGridStart < 0) nGridStart = p;
      bAnyMatched = true;
      ++p;
      if (++nCount >= std::max(nRepeat, 1)) nextBlock();
    } else if (nCount == 0 && nRepeat == 0) {
      ++b;  // optional block
      nGap = 0;
    } else if (nCount == 0 && nGrid == 0 && !bAnyMatched) {
      ++p;  // the first grid slides to its first block
    } else if (nCount > 0) {
      if (++nGap < step(b))
        ++p;
      else
        nextBlock();
    } else {
      if (m_bDebug) m_sMatchProcess += "Match Grid Failed! \n";
      return -1;
    }
  }
  // Out of tokens or room: the rest must be the block under way or optional.
  for (size_t r = b; r < nBlocks; ++r) {
    if (r == b && nCount > 0) continue;
    if (repeat(r) != 0) {
      if (m_bDebug) m_sMatchProcess += "Match Grid Failed! \n";
      return -1;
    }
  }
  if (grid.is_selected) {
    int nFrom = nGridStart < 0 ? p : nGridStart;
    AddSelected(result, JoinWords(nFrom, p), nFrom < nTokens ? TokenOffset(nFrom) : -1);
  }
  return p;
}

bool CZYGAgent::MatchBlock(const _tBlock& block, int nToken) {
  if (nToken < 0 || nToken >= (int)m_vecScanResult.size()) return false;
  const _tZYGScanResult& token = m_vecScanResult[nToken];
  size_t nElems = 0;
  const int32_t* pElems = m_pZYG->GetInts(block.elems, nElems);
  bool bMatch = false;
  for (size_t i = 0; i < nElems && !bMatch; ++i) {
    if (token.word_id >= 0 && pElems[i] == token.word_id) {
      bMatch = true;
      break;
    }
    if (m_pZYG->IsTagTerm(pElems[i]) && StartsWith(token.pos, m_pZYG->GetTerm(pElems[i]))) bMatch = true;
  }
  if (m_bDebug) {
    m_sMatchProcess += "In Block " + BlockStr(block) + " try to match " + token.word + token.pos + " ";
    if (block.is_not)
      m_sMatchProcess += bMatch ? "Block Matched Success! Matched Result Reverse because of not! \n"
                                : "Block Matched Failed! Matched Result Reverse because of not!\n";
    else
      m_sMatchProcess += bMatch ? "Matched! Block Matched Success!\n" : "Block Matched Failed!\n";
  }
  return block.is_not ? !bMatch : bMatch;
}

tstring CZYGAgent::BlockStr(const _tBlock& block) const {
  size_t nElems = 0;
  const int32_t* pElems = m_pZYG->GetInts(block.elems, nElems);
  tstring s = block.is_not ? "[-(" : "[";
  for (size_t i = 0; i < nElems; ++i) {
    if (i) s += ";";
    const char* szTerm = m_pZYG->GetTerm(pElems[i]);
    s += szTerm ? szTerm : "";
  }
  return s + (block.is_not ? ")]" : "]");
}

// The words of tokens [nFrom, nTo): a blank only between ASCII neighbours.
tstring CZYGAgent::JoinWords(int nFrom, int nTo) const {
  tstring sValue;
  for (int i = std::max(nFrom, 0); i < nTo && i < (int)m_vecScanResult.size(); ++i) {
    const tstring& sWord = m_vecScanResult[i].word;
    if (sWord.empty()) continue;
    if (!sValue.empty() && IsAsciiByte(sValue.back()) && IsAsciiByte(sWord[0])) sValue.push_back(' ');
    sValue += sWord;
  }
  return sValue;
}

void CZYGAgent::ReadResultFromRule(const _tRule& rule, _tZYG_Result& result) const {
  result.rule_no = m_pZYG->GetStr(rule.rule_no_id);
  result.action = CZYG::GetActionStr((int)rule.action_id);
  size_t nArgs = 0;
  const int32_t* pArgs = m_pZYG->GetInts(rule.arguments_id, nArgs);
  result.arguments.clear();
  for (size_t i = 0; i < nArgs; ++i) result.arguments.push_back(m_pZYG->GetStr(pArgs[i]));
  result.credit = rule.credit;
  result.frequency = rule.frequency;
}

void CZYGAgent::AddSelected(_tZYG_Result& result, const tstring& sValue, int nOffset, uint32_t nParaId) const {
  result.vecSelected.push_back(sValue);
  result.vecSelectedOffset.push_back(nOffset);
  result.vecSelectedParaId.push_back(nParaId);
}

// ---------------------------------------------------------------------------
// After a match

void CZYGAgent::AddResult(_tZYG_Result& result, const _tMatchSpan& span) {
  result.para_id = m_nParaId;
  result.org_para_text = ParaTextAround(span.nStart >= 0 ? m_vecScanResult[span.nStart].offset : 0);
  ApplyAction(result, span);
  m_vecZYGResult.push_back(result);
  if (m_nCurActionId <= kActionDelete) {
    AddRevision(result);
    return;
  }
  RecordKeyValues(result);
  RecordKnowledgeGraph(result);
}

void CZYGAgent::ApplyAction(_tZYG_Result& result, const _tMatchSpan& span) {
  bool bNothing = result.vecSelected.empty();
  switch (m_nCurActionId) {
    case kActionConvert: ConvertData(result); break;
    case kActionParagraphExtract: if (bNothing) ExtractParagraphData(result); break;
    case kActionBetweenExtract: if (bNothing) ExtractBetweenData(result, span); break;
    case kActionUnitExtract:
    case kActionEmailExtract:
    case kActionCountryExtract: if (bNothing) ExtractByValueExtractor(result, span); break;
    case kActionSectionExtract: if (bNothing) ExtractSectionData(result); break;
    case kActionTitleExtract: if (bNothing) ExtractTitleData(result); break;
    case kActionFormatExtract: if (bNothing) ExtractFormatData(result); break;
    case kActionTableExtract: ExtractTableData(result); break;
    default: break;
  }
  // The revising actions need a text to revise: the matched words.
  if (m_nCurActionId <= kActionDelete && bNothing && span.nStart >= 0)
    AddSelected(result, JoinWords(span.nStart, span.nEnd), TokenOffset(span.nStart));
}

// Drops every blank that stands beside one of "-/.~".
static tstring JoinMarks(const tstring& s) {
  tstring sOut;
  for (size_t i = 0; i < s.size(); ++i) {
    bool bBesideMark = s[i] == ' ' && ((i + 1 < s.size() && strchr("-/.~", s[i + 1])) ||
                                       (!sOut.empty() && strchr("-/.~", sOut.back())));
    if (!bBesideMark) sOut += s[i];
  }
  return sOut;
}

void CZYGAgent::ConvertData(_tZYG_Result& result) const {
  for (tstring& sValue : result.vecSelected) {
    int y, m, d;
    int64_t n;
    tstring s = Trim(NormalizeText(sValue));
    if (ParseDate(s, y, m, d)) {
      sValue = FormatDate(y, m, d);
    } else if (ChineseToNumber(s, n)) {
      sValue = std::to_string(n);
    } else if (!s.empty() && isdigit((unsigned char)s[0]) && s.find(',') != tstring::npos &&
               s.find_first_not_of("0123456789,.") == tstring::npos) {
      s.erase(std::remove(s.begin(), s.end(), ','), s.end());
      sValue = s;
    } else if (!s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return (unsigned char)c < 0x80; })) {
      // A code or telephone number whose pieces the joining spaced apart
      // ("GB 50014 - 2021", "0571 - 87654321"): no blank beside - / . ~
      sValue = JoinMarks(s);
    } else {
      sValue = s;
    }
  }
}

void CZYGAgent::ExtractParagraphData(_tZYG_Result& result) const {
  if (!m_sTextStand.empty()) AddSelected(result, m_sTextStand, m_nOffsetStart);
}

void CZYGAgent::ExtractBetweenData(_tZYG_Result& result, const _tMatchSpan& span) const {
  if (span.vecGrids.size() < 2) return;
  int nFrom = span.vecGrids.front().second, nTo = span.vecGrids.back().first;
  if (nFrom <= 0 || nTo <= nFrom || nTo >= (int)m_vecScanResult.size()) return;
  int nBegin = TokenEnd(nFrom - 1), nEnd = m_vecScanResult[nTo].offset;
  if (nBegin < 0 || nEnd <= nBegin || (size_t)nEnd > m_sTextStand.size()) return;
  tstring sRaw = m_sTextStand.substr(nBegin, nEnd - nBegin);
  tstring sValue = Trim(sRaw);
  if (sValue.empty()) return;
  int nLead = (int)sRaw.find(sValue[0]);
  AddSelected(result, sValue, nBegin + nLead - m_vecMarkupBefore[nFrom] + m_nOffsetStart);
}

void CZYGAgent::ExtractByValueExtractor(_tZYG_Result& result, const _tMatchSpan& span) {
  if (span.nStart < 0 || span.nStart >= (int)m_vecScanResult.size()) return;
  int nBase = m_vecScanResult[span.nStart].offset;
  tstring sText = m_sTextStand.substr(std::min<size_t>(nBase, m_sTextStand.size()));
  std::vector<_tExtracted> vecFound;
  if (m_nCurActionId == kActionUnitExtract) {
    vecFound = CValueExtractor::Units(sText);
  } else if (m_nCurActionId == kActionEmailExtract) {
    vecFound = CValueExtractor::Emails(sText);
  } else {
    if (CountryDetect_GetName(0).empty()) {
      if (!m_bCountryWarned)
        SetLastError("ZYG-Configure.json must set CountryDetect on before execute country_extract ");
      m_bCountryWarned = true;
      return;
    }
    vecFound = CValueExtractor::Countries(sText);
  }
  int nMarkup = m_vecMarkupBefore[span.nStart];
  for (const _tExtracted& found : vecFound)
    AddSelected(result, found.value, nBase + (int)found.offset - nMarkup + m_nOffsetStart);
}

// The heading of the section that holds the paragraph (the paragraph itself
// outside a document); returns its text.
tstring CZYGAgent::CurrentSection(tstring& sNo, tstring& sName) const {
  tstring sHeading = m_sTextStand;
  if (m_pDocxParser && m_nSectionIndex >= 0 && (size_t)m_nSectionIndex < m_pDocxParser->m_vecParagraph.size())
    sHeading = NormalizeText(m_pDocxParser->m_vecParagraph[m_nSectionIndex].NumberedText());
  if (!CValueExtractor::Section(sHeading, sNo, sName)) {
    sNo.clear();
    sName = sHeading;
  }
  return sHeading;
}

void CZYGAgent::ExtractSectionData(_tZYG_Result& result) const {
  tstring sNo, sName;
  CurrentSection(sNo, sName);
  uint32_t nParaId = 0;
  if (m_pDocxParser && m_nSectionIndex >= 0 && (size_t)m_nSectionIndex < m_pDocxParser->m_vecParagraph.size())
    nParaId = m_pDocxParser->m_vecParagraph[m_nSectionIndex].id;
  AddSelected(result, sNo, -1, nParaId);
  AddSelected(result, sName, -1, nParaId);
}

void CZYGAgent::ExtractTitleData(_tZYG_Result& result) const {
  tstring sNo, sName;
  if (!CValueExtractor::Section(m_sTextStand, sNo, sName)) sName = m_sTextStand;
  size_t nAt = m_sTextStand.find(sName);
  if (!sName.empty()) AddSelected(result, sName, (nAt == tstring::npos ? 0 : (int)nAt) + m_nOffsetStart);
}

void CZYGAgent::ExtractFormatData(_tZYG_Result& result) const {
  if (!m_pCurPara) return;
  AddSelected(result, m_pCurPara->font, -1);
  AddSelected(result, std::to_string(m_pCurPara->font_size), -1);
}

void CZYGAgent::ExtractTableData(_tZYG_Result& result) {
  tstring sName = result.vecSelected.empty() ? m_sTextStand : result.vecSelected[0];
  int nOffset = result.vecSelected.empty() ? m_nOffsetStart : result.vecSelectedOffset[0];
  _tKeyVal keyVal;
  keyVal.para_id = m_nParaId;
  keyVal.offset = (unsigned)std::max(nOffset, 0);
  keyVal.key_name_id = m_pZYG->GetTableNameKeyID();
  keyVal.key_value = sName;
  keyVal.org_para_text = result.org_para_text;
  keyVal.rule_used = result.rule_no;
  AddKeyVal(keyVal);
  if (m_pDocxParser) {
    m_bTableExtractPending = true;
    m_sTableExtractRule = result.rule_no;
  }
}

void CZYGAgent::AddRevision(const _tZYG_Result& result) {
  if (result.vecSelected.empty() || result.vecSelected[0].empty() || result.rule_index < 0) return;
  const _tRuleInfo& info = RuleInfo(result.rule_index);
  tstring sArgName = info.vecArgNames.empty() ? "" : info.vecArgNames[0];
  _tCheckResult check;
  check.para_id = result.para_id;
  check.offset = (uint32_t)std::max(result.vecSelectedOffset[0], 0);
  check.error_id = result.rule_no;
  check.error_msg = m_pZYG->GetStr(m_pZYG->GetRule(result.rule_index).name_id);
  check.text = result.org_para_text;
  check.field_id = 2;
  check.org_str = result.vecSelected[0];
  check.revise_type = m_nCurActionId;  // insert 0, update 1, delete 2: the revise types
  if (m_nCurActionId == kActionUpdate) check.new_str = sArgName;
  if (m_nCurActionId == kActionInsert) check.new_str = check.org_str + sArgName;
  m_vecFindings.push_back(check);
}

bool CZYGAgent::AddKeyVal(const _tKeyVal& keyVal) {
  if (keyVal.key_name_id < 0 || keyVal.key_value.empty()) return false;
  if (!m_setKeyVal.insert(keyVal).second) return false;
  m_mapKeyId2Keys[keyVal.key_name_id].push_back(m_vecKeyVal.size());
  m_vecKeyVal.push_back(keyVal);
  return true;
}

void CZYGAgent::RecordKeyValues(const _tZYG_Result& result) {
  if (result.rule_index < 0) return;
  const _tRuleInfo& info = RuleInfo(result.rule_index);
  const _tRule& rule = m_pZYG->GetRule(result.rule_index);
  _tKeyVal keyVal;
  keyVal.org_para_text = result.org_para_text;
  keyVal.rule_used = result.rule_no;
  auto fill = [&](size_t i, int nKey) {
    keyVal.para_id = result.vecSelectedParaId[i] ? result.vecSelectedParaId[i] : result.para_id;
    keyVal.offset = (unsigned)std::max(result.vecSelectedOffset[i], 0);
    keyVal.key_name_id = nKey;
    keyVal.key_value = result.vecSelected[i];
    AddKeyVal(keyVal);
  };
  for (size_t i = 0; i < result.vecSelected.size() && i < info.vecArgKeys.size(); ++i) fill(i, info.vecArgKeys[i]);
  if (result.vecSelected.empty()) return;
  size_t nKeys = 0;
  const int32_t* pKeys = m_pZYG->GetInts(rule.keys_id, nKeys);
  for (size_t k = 0; k < nKeys; ++k) fill(0, pKeys[k]);
}

void CZYGAgent::RecordKnowledgeGraph(const _tZYG_Result& result) {
  if (result.rule_index < 0) return;
  const _tRuleInfo& info = RuleInfo(result.rule_index);
  enum { kRoleAttribute = 1, kRoleHead = 3, kRoleTail = 4, kRoleRelation = 5, kRoleEntity = 7 };
  tstring sEntity, sHead, sTail, sRelation;
  size_t nValues = std::min(result.vecSelected.size(), info.vecArgRoles.size());
  for (size_t i = 0; i < nValues; ++i) {
    const auto& roles = info.vecArgRoles[i];
    const tstring& sValue = result.vecSelected[i];
    if (sValue.empty()) continue;
    if (roles[kRoleEntity] && sEntity.empty()) sEntity = sValue;
    if (roles[kRoleHead] && sHead.empty()) sHead = sValue;
    if (roles[kRoleTail] && sTail.empty()) sTail = sValue;
    if (roles[kRoleRelation] && sRelation.empty()) sRelation = sValue;
    if (roles[kRoleEntity] && m_setKG.insert({"ne", sValue, result.rule_no}).second) {
      _tKeyVal keyVal;
      keyVal.para_id = result.para_id;
      keyVal.offset = (unsigned)std::max(result.vecSelectedOffset[i], 0);
      keyVal.key_name_id = info.vecArgKeys[i];
      keyVal.key_value = sValue;
      keyVal.org_para_text = result.org_para_text;
      keyVal.rule_used = result.rule_no;
      m_vecKeyValNamedEntity.push_back(keyVal);
    }
  }
  for (size_t i = 0; i < nValues && !sEntity.empty(); ++i) {
    if (!info.vecArgRoles[i][kRoleAttribute] || result.vecSelected[i].empty()) continue;
    _tEntityAttrVal entity{sEntity, info.vecArgNames[i], result.vecSelected[i]};
    if (m_setKG.insert({"ea", entity.entity, entity.attribute, entity.val}).second) m_vecEntityVal.push_back(entity);
  }
  if (sHead.empty() || sTail.empty()) return;
  if (sRelation.empty()) sRelation = m_pZYG->GetStr(m_pZYG->GetRule(result.rule_index).name_id);
  _tHeadRelTail triple{sHead, sRelation, sTail};
  if (m_setKG.insert({"hrt", sHead, sRelation, sTail}).second) m_vecHeadRelTail.push_back(triple);
}

// A paragraph's text as records keep it. Hostile paragraphs run to
// megabytes and may match on every other token: past 4 KiB (longer than
// any ordinary paragraph) a record keeps the 256 bytes around its match
// instead of a copy of the whole text, so memory stays linear in matches.
tstring CZYGAgent::ParaTextAround(int nByte) const {
  const size_t kWhole = 4 * 1024, kBefore = 64, kWindow = 256;
  if (m_sTextStand.size() <= kWhole) return m_sTextStand;
  size_t nBegin = (size_t)std::max(nByte, 0) > kBefore ? (size_t)nByte - kBefore : 0;
  size_t nEnd = std::min(m_sTextStand.size(), nBegin + kWindow);
  while (nBegin > 0 && ((unsigned char)m_sTextStand[nBegin] & 0xC0) == 0x80) --nBegin;
  while (nEnd < m_sTextStand.size() && ((unsigned char)m_sTextStand[nEnd] & 0xC0) == 0x80) ++nEnd;
  return m_sTextStand.substr(nBegin, nEnd - nBegin);
}

// ---------------------------------------------------------------------------
// Key-bound rules and the generating actions

void CZYGAgent::ScanRules() {
  if (!m_pZYG) return;
  const _tParagraph* pSaved = m_pCurPara;
  m_pCurPara = nullptr;
  for (size_t r = 0; r < m_pZYG->GetRuleCount(); ++r) {
    const _tRule& rule = m_pZYG->GetRule(r);
    if (rule.field <= (uint32_t)kFieldTitle3 || rule.action_id >= (uint32_t)kActionGenerateTuple) continue;
    auto it = m_mapKeyId2Keys.find((int)rule.field - kFieldKeyBase);
    if (it == m_mapKeyId2Keys.end()) continue;
    // A snapshot: the scans below may add values of the same key.
    std::vector<size_t> vecIndexes = it->second;
    for (size_t nIndex : vecIndexes) {
      _tKeyVal keyVal = m_vecKeyVal[nIndex];
      ScanText(keyVal.key_value, keyVal.para_id, 0, (int)rule.field, (int)r, (int)keyVal.offset);
    }
  }
  GenerateAll();
  m_pCurPara = pSaved;
}

void CZYGAgent::GenerateAll() {
  for (size_t r = 0; r < m_pZYG->GetRuleCount(); ++r) {
    switch (m_pZYG->GetRule(r).action_id) {
      case kActionGenerateTuple: GenerateTuple((int)r); break;
      case kActionGenerateDate: GenerateDate((int)r); break;
      case kActionGenerateSingleKey: GenerateSingleKey((int)r); break;
      default: break;
    }
  }
}

// The keys a generating rule names: its elements are attribute ids.
std::vector<int> CZYGAgent::ElementKeys(const _tRule& rule) const {
  std::vector<int> vecKeys;
  for (const _tGrid& grid : rule.knowledge.grids)
    for (const _tBlock& block : grid.blocks) {
      size_t nElems = 0;
      const int32_t* pElems = m_pZYG->GetInts(block.elems, nElems);
      for (size_t i = 0; i < nElems; ++i) {
        const char* szAttribute = m_pZYG->GetAttribute(pElems[i]);
        int nKey = szAttribute && *szAttribute ? m_pZYG->GetKeyId(szAttribute) : -1;
        if (nKey >= 0 && std::find(vecKeys.begin(), vecKeys.end(), nKey) == vecKeys.end()) vecKeys.push_back(nKey);
      }
    }
  return vecKeys;
}

void CZYGAgent::GenerateTuple(int nRule) {
  std::vector<int> vecKeys = ElementKeys(m_pZYG->GetRule(nRule));
  if (vecKeys.empty()) return;
  // unit (table row or paragraph) -> (key position, value index)
  std::map<uint32_t, std::vector<std::pair<size_t, size_t>>> mapUnits;
  for (size_t k = 0; k < vecKeys.size(); ++k) {
    auto it = m_mapKeyId2Keys.find(vecKeys[k]);
    if (it == m_mapKeyId2Keys.end()) continue;
    for (size_t nIndex : it->second) {
      uint32_t nPara = m_vecKeyVal[nIndex].para_id;
      auto row = m_mapParaRow.find(nPara);
      mapUnits[row == m_mapParaRow.end() ? nPara : row->second].push_back({k, nIndex});
    }
  }
  size_t nNeeded = std::min<size_t>(2, vecKeys.size());
  for (auto& unit : mapUnits) {
    auto& vecItems = unit.second;
    std::sort(vecItems.begin(), vecItems.end(), [&](const auto& a, const auto& b) {
      if (a.first != b.first) return a.first < b.first;
      return m_vecKeyVal[a.second].offset < m_vecKeyVal[b.second].offset;
    });
    size_t nKeys = 0;
    for (size_t i = 0; i < vecItems.size(); ++i)
      if (i == 0 || vecItems[i].first != vecItems[i - 1].first) ++nKeys;
    if (nKeys < nNeeded) continue;
    _tTuple tuple;
    for (const auto& item : vecItems) tuple.push_back(m_vecKeyVal[item.second]);
    m_vecTuple.push_back(std::move(tuple));
  }
}

void CZYGAgent::GenerateSingleKey(int nRule) {
  const _tRule& rule = m_pZYG->GetRule(nRule);
  const _tRuleInfo& info = RuleInfo(nRule);
  size_t nKeys = 0;
  const int32_t* pKeys = m_pZYG->GetInts(rule.keys_id, nKeys);
  if (nKeys < 1 || info.vecArgKeys.size() < 2) return;
  auto itName = m_mapKeyId2Keys.find(info.vecArgKeys[0]);
  auto itValue = m_mapKeyId2Keys.find(info.vecArgKeys[1]);
  if (itName == m_mapKeyId2Keys.end() || itValue == m_mapKeyId2Keys.end()) return;
  auto unitOf = [&](uint32_t nPara) {
    auto row = m_mapParaRow.find(nPara);
    return row == m_mapParaRow.end() ? nPara : row->second;
  };
  std::map<uint32_t, std::vector<size_t>> mapValues;  // unit -> value indexes in order found
  for (size_t nIndex : itValue->second) mapValues[unitOf(m_vecKeyVal[nIndex].para_id)].push_back(nIndex);
  tstring sRuleNo = m_pZYG->GetStr(rule.rule_no_id);
  for (size_t nName : itName->second) {
    const _tKeyVal& name = m_vecKeyVal[nName];
    auto itUnit = mapValues.find(unitOf(name.para_id));
    if (itUnit == mapValues.end()) continue;
    const _tKeyVal* pBest = nullptr;
    const _tKeyVal* pBefore = nullptr;
    for (size_t nIndex : itUnit->second) {
      if (nIndex == nName) continue;
      const _tKeyVal& value = m_vecKeyVal[nIndex];
      bool bAfter = value.para_id > name.para_id || (value.para_id == name.para_id && value.offset >= name.offset);
      if (bAfter && (!pBest || value.para_id < pBest->para_id ||
                     (value.para_id == pBest->para_id && value.offset < pBest->offset)))
        pBest = &value;
      if (!bAfter) pBefore = &value;
    }
    if (!pBest) pBest = pBefore;
    if (!pBest) continue;
    _tKeyVal single = name;
    single.key_name_id = pKeys[0];
    single.key_value = name.key_value + ":" + pBest->key_value;
    single.rule_used = sRuleNo;
    if (m_setKG.insert({"sk", std::to_string(single.para_id), std::to_string(single.offset), single.key_value})
            .second)
      m_vecSingleKeyVal.push_back(single);
  }
}

void CZYGAgent::AddDateValue(const char* szKey, const tstring& sValue, const _tKeyVal& from,
                             std::vector<_tKeyVal>* pList) {
  _tKeyVal keyVal = from;
  keyVal.key_name_id = m_pZYG->GetKeyId(szKey);
  keyVal.key_value = sValue;
  if (pList) pList->push_back(keyVal);
  AddKeyVal(keyVal);
}

namespace {

// A date, or a month or year standing for its days: bExactDay tells which.
bool ReadDateOrSpan(const tstring& s, bool bEnd, int& y, int& m, int& d, bool& bExactDay) {
  bExactDay = ParseDate(s, y, m, d);
  return bExactDay || ReadLooseDate(s, bEnd, y, m, d);
}

// Two dates joined by a separator: tried at every place the separator
// stands, because "-" also separates the parts of a date.
bool SplitPeriod(const tstring& s, tstring& sFrom, tstring& sTo) {
  static const char* const kSeparators[] = {" to ", "至", "到", "~", "—", "-"};
  for (const char* szSep : kSeparators) {
    size_t nLen = strlen(szSep);
    for (size_t nAt = s.find(szSep); nAt != tstring::npos; nAt = s.find(szSep, nAt + 1)) {
      tstring a = Trim(s.substr(0, nAt)), b = Trim(s.substr(nAt + nLen));
      int y, m, d;
      bool bExact;
      if (ReadDateOrSpan(a, false, y, m, d, bExact) && ReadDateOrSpan(b, true, y, m, d, bExact)) {
        sFrom = a;
        sTo = b;
        return true;
      }
    }
  }
  return false;
}

}  // namespace

void CZYGAgent::GenerateDate(int nRule) {
  const _tRule& rule = m_pZYG->GetRule(nRule);
  tstring sRuleNo = m_pZYG->GetStr(rule.rule_no_id);
  size_t nBlocks = 0;
  for (const _tGrid& grid : rule.knowledge.grids) nBlocks += grid.blocks.size();
  if (nBlocks != 1) {
    SetLastError("Block count must be 1 in " + sRuleNo);
    return;
  }
  std::vector<size_t> vecIndexes;
  for (int nKey : ElementKeys(rule)) {
    auto it = m_mapKeyId2Keys.find(nKey);
    if (it != m_mapKeyId2Keys.end()) vecIndexes.insert(vecIndexes.end(), it->second.begin(), it->second.end());
  }
  std::sort(vecIndexes.begin(), vecIndexes.end(), [&](size_t a, size_t b) {
    const _tKeyVal &x = m_vecKeyVal[a], &y = m_vecKeyVal[b];
    return x.para_id != y.para_id ? x.para_id < y.para_id : x.offset < y.offset;
  });
  bool bHaveDate = false, bHavePeriod = false;
  for (size_t nIndex : vecIndexes) {
    _tKeyVal from = m_vecKeyVal[nIndex];
    from.rule_used = sRuleNo;
    tstring s = Trim(NormalizeText(from.key_value)), sFrom, sTo;
    if (s.size() > 200) {  // no date is that long; keeps the splitting cheap
      SetLastError(s.substr(0, 200) + " is invalid! ");
      continue;
    }
    int y1 = -1, m1, d1, y2 = -1, m2, d2;
    bool bExact1 = false, bExact2 = false, bPeriod = false;
    if (!s.empty() && s[0] == '[') {
      size_t nTo = s.find(" to ");
      if (s.back() != ']' || nTo == tstring::npos) {
        SetLastError(s + " Invalid format need [startDate to EndDate].");
        continue;
      }
      sFrom = Trim(s.substr(1, nTo - 1));
      sTo = Trim(s.substr(nTo + 4, s.size() - nTo - 5));
      bPeriod = true;
    } else if (ReadDateOrSpan(s, false, y1, m1, d1, bExact1)) {
      bPeriod = !bExact1;  // a month or a year is a period of its own
      sFrom = sTo = s;
    } else if (SplitPeriod(s, sFrom, sTo)) {
      bPeriod = true;
    } else {
      SetLastError(s + (y1 >= 0 && !YearValid(y1) ? " is invalid this year number" : " is invalid! "));
      continue;
    }
    bool bOk = ReadDateOrSpan(sFrom, false, y1, m1, d1, bExact1) && ReadDateOrSpan(sTo, true, y2, m2, d2, bExact2);
    if (!bOk) {
      SetLastError(s + " is invalid! ");
      continue;
    }
    if (!YearValid(y1) || !YearValid(y2)) {
      SetLastError(s + " is invalid this year number");
      continue;
    }
    if (!bPeriod && !bHaveDate) {
      AddDateValue("report_date", FormatDate(y1, m1, d1), from, nullptr);
      bHaveDate = true;
    } else if (bPeriod && !bHavePeriod) {
      AddDateValue("report_during", "[" + FormatDate(y1, m1, d1) + " to " + FormatDate(y2, m2, d2) + "]", from,
                   &m_vecDuringDate);
      AddDateValue("report_during_end", FormatDate(y2, m2, d2), from, &m_vecEndingDate);
      AddDateValue("report_during_data", from.key_value, from, nullptr);
      AddDateValue("report_during_end_data", sTo, from, nullptr);
      bHavePeriod = true;
    }
  }
}

// ---------------------------------------------------------------------------
// Documents and files

namespace {
constexpr uint32_t Bit(int nField) { return 1u << nField; }
constexpr uint32_t kMaskText = Bit(kFieldText) | Bit(kFieldKeyBase);
}  // namespace

int CZYGAgent::ScanDoc(const CDocument* pDoc, const tstring& sBaseName, int format, bool bDebug) {
  Reset();
  m_bDebug = bDebug;
  if (!pDoc || !m_pZYG) {
    m_sResult.clear();
    m_nScanFormat = -1;
    return -1;
  }
  m_pDocxParser = pDoc;
  _tScope scope;
  for (int k = 0; k < 2; ++k) {
    scope.nLevel = k == 0 ? kLevelHeader : kLevelFooter;
    for (const _tParagraph& para : pDoc->m_vecHeadFooter[k]) {
      m_pCurPara = &para;
      ScanTextScoped(para.text, para.id, scope, 0);
    }
  }
  std::map<int, size_t> mapTableAt;  // placeholder paragraph index -> table
  for (size_t t = 0; t < pDoc->m_vecTable.size(); ++t) mapTableAt.emplace(pDoc->m_vecTable[t].para_index, t);
  std::vector<bool> vecTableDone(pDoc->m_vecTable.size(), false);
  for (size_t i = 0; i < pDoc->m_vecParagraph.size(); ++i) {
    const _tParagraph& para = pDoc->m_vecParagraph[i];
    m_nParaIndex = (int)i;
    if (para.level == kLevelTable) {
      auto it = mapTableAt.find((int)i);
      size_t t = it != mapTableAt.end() ? it->second : (size_t)para.id;
      if (t < vecTableDone.size() && !vecTableDone[t]) {
        vecTableDone[t] = true;
        ScanTable(t);
      }
      continue;
    }
    if (para.level == kLevelFigure || para.text.empty()) continue;
    scope = _tScope();
    scope.nLevel = para.level;
    scope.nFieldMask = kMaskText;
    if (para.level >= 1 && para.level <= 4) {
      m_nSectionIndex = (int)i;
      scope.nFieldMask |= Bit(kFieldTitle);
      if (para.level <= 3) scope.nFieldMask |= Bit(kFieldTitle + para.level);
      m_bTableExtractPending = false;  // a table named before a heading is not the next one
    }
    m_pCurPara = &para;
    ScanTextScoped(para.text, para.id, scope, 0);
  }
  for (size_t t = 0; t < vecTableDone.size(); ++t)
    if (!vecTableDone[t]) ScanTable(t);
  m_pCurPara = nullptr;
  m_nParaIndex = -1;
  ScanRules();
  FinishScan(sBaseName, format);
  return (int)m_vecZYGResult.size();
}

// A table: each cell paragraph under "text" and its head field, each row as
// one text under "SingleRow"; then the keys found in the heads give the
// table of values.
bool CZYGAgent::RuleSetUsesField(int nField) const {
  for (size_t r = 0; r < m_pZYG->GetRuleCount(); ++r)
    if (m_pZYG->GetRule(r).field == (uint32_t)nField) return true;
  return false;
}

void CZYGAgent::ScanTable(size_t nTable) {
  const _tTable& table = m_pDocxParser->m_vecTable[nTable];
  m_nTableIndex = (int)nTable;
  size_t nCols = 0;
  for (const auto& row : table.rows) nCols = std::max(nCols, row.size());
  std::vector<int> vecColKeys(nCols, -1), vecRowKeys(table.rows.size(), -1);
  std::vector<tstring> vecRules(std::max(nCols, table.rows.size()));
  for (size_t r = 0; r < table.rows.size(); ++r) {
    m_nRowIndex = (int)r;
    const auto& row = table.rows[r];
    uint32_t nRowPara = 0;
    bool bRowPara = false;
    tstring sRowText;
    for (size_t c = 0; c < row.size(); ++c) {
      m_nColIndex = (int)c;
      // The top-left cell heads its column, its row and the whole table.
      uint32_t nHeads = (r == 0 ? Bit(kFieldColHead) : 0) | (c == 0 ? Bit(kFieldRowHead) : 0);
      if (r == 0 && c == 0) nHeads |= Bit(kFieldRowColHead);
      _tScope scope;
      scope.nFieldMask = kMaskText | nHeads;
      for (const _tParagraph& para : row[c]) {
        if (!bRowPara) nRowPara = para.id;
        bRowPara = true;
        m_mapParaRow[para.id] = nRowPara;
        if (para.text.empty()) continue;
        m_pCurPara = &para;
        size_t nBefore = m_vecZYGResult.size();
        ScanTextScoped(para.text, para.id, scope, 0);
        for (size_t i = nBefore; i < m_vecZYGResult.size() && nHeads; ++i) {
          const _tZYG_Result& result = m_vecZYGResult[i];
          uint32_t nField = m_pZYG->GetRule(result.rule_index).field;
          const _tRuleInfo& info = RuleInfo(result.rule_index);
          int nKey = info.vecArgKeys.empty() ? -1 : info.vecArgKeys[0];
          if (nKey < 0) continue;
          if (nField == kFieldColHead && vecColKeys[c] < 0) {
            vecColKeys[c] = nKey;
            vecRules[c] = result.rule_no;
          } else if (nField == kFieldRowHead && vecRowKeys[r] < 0) {
            vecRowKeys[r] = nKey;
          }
        }
      }
      tstring sCell;
      table.GetValue(r, c, sCell);
      sCell = NormalizeText(sCell);
      if (!sCell.empty()) sRowText += (sRowText.empty() ? "" : " ") + sCell;
    }
    if (!sRowText.empty() && RuleSetUsesField(kFieldSingleRow)) {
      _tScope scope;
      scope.nFieldMask = Bit(kFieldSingleRow);
      scope.bCheck = false;  // the cells were checked one by one
      m_pCurPara = nullptr;
      ScanTextScoped(sRowText, nRowPara, scope, 0);
    }
  }
  ScanTableKeys(nTable, vecColKeys, vecRowKeys, vecRules);
  if (m_bTableExtractPending) AddTableArguments(nTable);
  m_bTableExtractPending = false;
  m_pCurPara = nullptr;
  m_nTableIndex = m_nRowIndex = m_nColIndex = -1;
}

// The table of values: rows of the cells under their column keys, or, when
// only the row heads name keys, columns of the cells under the row keys.
void CZYGAgent::ScanTableKeys(size_t nTable, const std::vector<int>& vecColKeys, const std::vector<int>& vecRowKeys,
                              const std::vector<tstring>& vecRules) {
  const _tTable& table = m_pDocxParser->m_vecTable[nTable];
  bool bByCol = std::any_of(vecColKeys.begin(), vecColKeys.end(), [](int k) { return k >= 0; });
  bool bByRow = std::any_of(vecRowKeys.begin(), vecRowKeys.end(), [](int k) { return k >= 0; });
  if (!bByCol && !bByRow) return;
  size_t nOuter = bByCol ? table.rows.size() : vecColKeys.size();
  size_t nInner = bByCol ? vecColKeys.size() : table.rows.size();
  _tKeyTable keyTable;
  for (size_t o = 1; o < nOuter; ++o) {
    _tTuple tuple;
    for (size_t i = 0; i < nInner; ++i) {
      size_t r = bByCol ? o : i, c = bByCol ? i : o;
      int nKey = bByCol ? vecColKeys[c] : vecRowKeys[r];
      tstring sValue;
      if (nKey < 0 || r >= table.rows.size() || c >= table.rows[r].size() || !table.GetValue(r, c, sValue)) continue;
      sValue = NormalizeText(sValue);
      if (sValue.empty()) continue;
      _tKeyVal keyVal;
      keyVal.para_id = table.rows[r][c].empty() ? 0 : table.rows[r][c][0].id;
      keyVal.key_name_id = nKey;
      keyVal.key_value = sValue;
      tstring sHead;
      if (bByCol) table.GetValue(0, c, sHead);
      else table.GetValue(r, 0, sHead);
      keyVal.org_para_text = NormalizeText(sHead);
      keyVal.rule_used = bByCol && c < vecRules.size() ? vecRules[c] : "";
      tuple.push_back(keyVal);
    }
    if (!tuple.empty()) keyTable.push_back(std::move(tuple));
  }
  if (!keyTable.empty()) m_vecTable.push_back(std::move(keyTable));
}

void CZYGAgent::AddTableArguments(size_t nTable) {
  const _tTable& table = m_pDocxParser->m_vecTable[nTable];
  tstring sNo, sName;
  if (m_nSectionIndex >= 0) CurrentSection(sNo, sName);
  for (size_t r = 1; r < table.rows.size(); ++r)
    for (size_t c = 1; c < table.rows[r].size(); ++c) {
      _tTableArgument argument;
      argument.file_name = m_pDocxParser->m_sFilename;
      argument.section_no = sNo;
      argument.section_name = sName;
      table.GetValue(r, 0, argument.row_name);
      table.GetValue(0, c, argument.col_name);
      table.GetValue(r, c, argument.value);
      argument.row_name = NormalizeText(argument.row_name);
      argument.col_name = NormalizeText(argument.col_name);
      argument.value = NormalizeText(argument.value);
      if (!argument.value.empty()) m_vecTableArguments.push_back(argument);
    }
}

const tstring& CZYGAgent::ScanTextFile(const tstring& sFilename, int format, bool bDebug) {
  Reset();
  m_bDebug = bDebug;
  tstring sText;
  if (!ReadFileText(sFilename, sText)) {
    SetLastError("Failed open file " + sFilename);
    m_sResult.clear();
    m_nScanFormat = -1;
    return m_sResult;
  }
  _tScope scope;
  scope.nFieldMask = kMaskText;
  for (size_t nPos = 0; nPos < sText.size();) {
    size_t nEnd = sText.find('\n', nPos);
    if (nEnd == tstring::npos) nEnd = sText.size();
    tstring sLine = sText.substr(nPos, nEnd - nPos);
    if (!sLine.empty() && sLine.back() == '\r') sLine.pop_back();
    if (!sLine.empty()) ScanTextScoped(sLine, (uint32_t)nPos, scope, 0);
    nPos = nEnd + 1;
  }
  ScanRules();
  size_t nSlash = sFilename.find_last_of('/');
  size_t nDot = sFilename.find_last_of('.');
  tstring sBase = nDot != tstring::npos && (nSlash == tstring::npos || nDot > nSlash) ? sFilename.substr(0, nDot)
                                                                                      : sFilename;
  FinishScan(sBase, format);
  return GetScanText();
}

// One rule (or all, rule_id < 0) over one line. The level and field are
// those the rule asks for, so a header, footer or key rule runs as well.
const tstring& CZYGAgent::ScanTextMem(const tstring& sLine, int rule_id) {
  Reset();
  int nLevel = 0, nField = -1;
  if (m_pZYG && rule_id >= 0 && (size_t)rule_id < m_pZYG->GetRuleCount()) {
    uint32_t nRuleField = m_pZYG->GetRule(rule_id).field;
    if (nRuleField == kFieldHeader) nLevel = kLevelHeader;
    if (nRuleField == kFieldFooter) nLevel = kLevelFooter;
    nField = (int)nRuleField;
  }
  ScanText(sLine, 0, nLevel, nField, rule_id, 0);
  return GetResult();
}

void CZYGAgent::FinishScan(const tstring& sBaseName, int format) {
  CZYGResultWriter writer(*this);
  if (!sBaseName.empty()) {
    writer.WriteAll(sBaseName);
    if (m_bDebug) {
      size_t nSlash = sBaseName.find_last_of('/');
      tstring sFile = (nSlash == tstring::npos ? tstring() : sBaseName.substr(0, nSlash + 1)) + "Match_Debug.txt";
      tstring sJson = m_jsonDebug.toStyledString();
      FILE* fp = fopen(sFile.c_str(), "wb");
      if (!fp)
        SetLastError("Failed open file " + sFile);
      else if (fwrite(sJson.data(), 1, sJson.size(), fp) != sJson.size())
        SetLastError("Failed writing file " + sFile);
      if (fp) fclose(fp);
    }
  }
  m_nScanFormat = format;
}

const tstring& CZYGAgent::GetScanText() {
  if (m_nScanFormat >= 0) {
    CZYGResultWriter writer(*this);
    m_sResult = m_nScanFormat == 1 ? writer.KeyValsJson() : writer.ResultsXml();
    m_nScanFormat = -1;
  }
  return m_sResult;
}

// ---------------------------------------------------------------------------
// Results

void CZYGAgent::Reset() {
  m_sMatchProcess.clear();
  m_jsonDebug = Json::Value(Json::arrayValue);
  m_vecDuringDate.clear();
  m_vecEndingDate.clear();
  m_mapKeyId2Keys.clear();
  m_nTokenMatchedIndex = 0;
  m_sResult.clear();
  m_nScanFormat = -1;
  m_vecScanResult.clear();
  m_nTableIndex = m_nRowIndex = m_nColIndex = m_nRowColParaIndex = m_nParaIndex = -1;
  m_dataToBeMatched = nullptr;
  m_nCurActionId = -1;
  m_vecKeyPrefix.clear();
  m_sTextStand.clear();
  m_vecEntityVal.clear();
  m_vecHeadRelTail.clear();
  m_sKGResult.clear();
  m_sKeyValResult.clear();
  m_sEntityKeyValResult.clear();
  m_sTupleResult.clear();
  m_sSingleKeyResult.clear();
  m_vecZYGResult.clear();
  m_vecKeyVal.clear();
  m_vecSingleKeyVal.clear();
  m_vecKeyValNamedEntity.clear();
  m_vecTuple.clear();
  m_vecTable.clear();
  m_vecTableArguments.clear();
  m_pDocxParser = nullptr;
  m_vecSource.clear();
  m_vecMarkupBefore.clear();
  m_setKeyVal.clear();
  m_vecRuleInfo.clear();  // the rule set may have been edited since
  m_vecFindings.clear();
  m_bCountryWarned = false;
  m_nFindingFloor = 0;
  m_pCurPara = nullptr;
  m_nSectionIndex = -1;
  m_bTableExtractPending = false;
  m_sTableExtractRule.clear();
  m_mapParaRow.clear();
  m_setMatched.clear();
  m_setKG.clear();
}

const tstring& CZYGAgent::GetKGResult() { return m_sKGResult = CZYGResultWriter(*this).KGJson(); }
const tstring& CZYGAgent::GetSingleKeyResult() { return m_sSingleKeyResult = CZYGResultWriter(*this).SingleKeyJson(); }
const tstring& CZYGAgent::GetEntityResult() { return m_sEntityKeyValResult = CZYGResultWriter(*this).EntityJson(); }
const tstring& CZYGAgent::GetTupleResult() { return m_sTupleResult = CZYGResultWriter(*this).TupleJson(); }
const tstring& CZYGAgent::GetKnowledgeJsonStr() { return m_sKeyValResult = CZYGResultWriter(*this).KeyValsJson(); }

const tstring& CZYGAgent::GetResult(const tstring& sFile) {
  m_sResult = CZYGResultWriter(*this).ResultsXml();
  m_nScanFormat = -1;
  if (sFile.empty()) return m_sResult;
  FILE* fp = fopen(sFile.c_str(), "wb");
  if (!fp) {
    SetLastError("Failed open file " + sFile);
    return m_sResult;
  }
  if (fwrite(m_sResult.data(), 1, m_sResult.size(), fp) != m_sResult.size())
    SetLastError("Failed writing file " + sFile);
  fclose(fp);
  return m_sResult;
}

int CZYGAgent::GetKeyValue(int nKeyID, std::vector<_tKeyVal>& vecKeyValue, uint32_t nParaID, unsigned nOffset,
                           int nDirection, bool bOnlySingleKey) const {
  vecKeyValue.clear();
  if (bOnlySingleKey) {
    for (const _tKeyVal& keyVal : m_vecSingleKeyVal)
      if (keyVal.key_name_id == nKeyID) vecKeyValue.push_back(keyVal);
  } else {
    auto it = m_mapKeyId2Keys.find(nKeyID);
    if (it != m_mapKeyId2Keys.end())
      for (size_t nIndex : it->second) vecKeyValue.push_back(m_vecKeyVal[nIndex]);
  }
  if (nParaID == 0) return (int)vecKeyValue.size();
  auto before = [&](const _tKeyVal& k) { return k.para_id != nParaID ? k.para_id < nParaID : k.offset < nOffset; };
  vecKeyValue.erase(std::remove_if(vecKeyValue.begin(), vecKeyValue.end(),
                                   [&](const _tKeyVal& k) { return nDirection >= 0 ? before(k) : !before(k); }),
                    vecKeyValue.end());
  std::stable_sort(vecKeyValue.begin(), vecKeyValue.end(), [&](const _tKeyVal& a, const _tKeyVal& b) {
    bool bLess = a.para_id != b.para_id ? a.para_id < b.para_id : a.offset < b.offset;
    bool bMore = a.para_id != b.para_id ? a.para_id > b.para_id : a.offset > b.offset;
    return nDirection >= 0 ? bLess : bMore;
  });
  return (int)vecKeyValue.size();
}

bool CZYGAgent::GetKeyValue(const tstring& sKey, _tKeyVal& keyVal) const {
  if (!m_pZYG) return false;
  int nKey = m_pZYG->GetKeyId(sKey);
  std::vector<_tKeyVal> vecValues;
  if (nKey < 0) return false;
  if (GetKeyValue(nKey, vecValues, 0, 0, 0, false) == 0 && GetKeyValue(nKey, vecValues, 0, 0, 0, true) == 0)
    return false;
  keyVal = vecValues[0];
  return true;
}

bool CZYGAgent::GetKeyValue(const tstring& sKey, tstring& sValue) const {
  _tKeyVal keyVal;
  if (!GetKeyValue(sKey, keyVal)) return false;
  sValue = keyVal.key_value;
  return true;
}

int CZYGAgent::GetKeyValue(const tstring& sKey, std::vector<_tKeyVal>& vecKeyValue, uint32_t nParaID) const {
  vecKeyValue.clear();
  int nKey = m_pZYG ? m_pZYG->GetKeyId(sKey) : -1;
  return nKey < 0 ? 0 : GetKeyValue(nKey, vecKeyValue, nParaID, 0, 0, false);
}

// ---------------------------------------------------------------------------
// Spelling and punctuation findings

// True when the text holds a CJK ideograph.
static bool HasHanCharacter(const tstring& sText) {
  for (size_t i = 0; i < sText.size();) {
    uint32_t c = 0;
    i += DecodeUtf8(sText.data() + i, sText.size() - i, c);
    if ((c >= 0x4E00 && c <= 0x9FFF) || (c >= 0x3400 && c <= 0x4DBF)) return true;
  }
  return false;
}

void CZYGAgent::AddFinding(const tstring& sOriginal, uint32_t nParaId, size_t nOffset, size_t nLength,
                           const char* szId, const char* szMsg, int nReviseType, const tstring& sNew) {
  const size_t kMaxPerParagraph = 32, kMaxText = 64 * 1024;
  if (m_vecFindings.size() - m_nFindingFloor >= kMaxPerParagraph || nOffset >= sOriginal.size()) return;
  _tCheckResult check;
  check.para_id = nParaId;
  check.offset = (uint32_t)nOffset;
  check.error_id = szId;
  check.error_msg = szMsg;
  if (sOriginal.size() <= kMaxText) check.text = sOriginal;
  check.field_id = 2;
  check.org_str = sOriginal.substr(nOffset, nLength);
  check.revise_type = nReviseType;
  check.new_str = sNew;
  m_vecFindings.push_back(check);
}

void CZYGAgent::PunctuationCheck(const tstring& sOriginal, uint32_t nParaId) {
  m_nFindingFloor = m_vecFindings.size();
  // The marks of other languages follow other rules (Russian „…”, O’Henry).
  if (!HasHanCharacter(sOriginal)) return;
  const size_t nStand = m_vecSource.size();
  auto srcBegin = [&](int nByte) -> size_t {
    return nByte >= 0 && (size_t)nByte < nStand ? m_vecSource[nByte].nBegin : sOriginal.size();
  };
  auto srcEnd = [&](int nByteEnd) -> size_t {
    return nByteEnd > 0 && (size_t)nByteEnd <= nStand ? m_vecSource[nByteEnd - 1].nEnd : 0;
  };
  auto srcText = [&](int nFrom, int nTo) {
    size_t b = srcBegin(nFrom), e = srcEnd(nTo);
    return e > b && e <= sOriginal.size() ? sOriginal.substr(b, e - b) : tstring();
  };
  const int nTokens = (int)m_vecScanResult.size();

  // 1.5.3: the same word twice in a row by mistake.
  for (int i = 1; i + 1 < nTokens; ++i) {
    const _tZYGScanResult& token = m_vecScanResult[i];
    if (m_vecScanResult[i + 1].word != token.word || !IsHanWord(token.word)) continue;
    int j = i + 1;
    while (j < nTokens && m_vecScanResult[j].word == token.word && m_vecScanResult[j].offset == TokenEnd(j - 1)) ++j;
    if (j == i + 1) continue;
    bool bSlip;
    if (Utf8Length(token.word) >= 2) {
      bSlip = !IsReduplicableTag(token.pos);
    } else {
      // AABB forms (的的确确, 是是非非) are words, not slips.
      const tstring& s = m_sTextStand;
      size_t e = (size_t)TokenEnd(j - 1), b = (size_t)token.offset;
      bool bAfterPair = e + 6 <= s.size() && s.compare(e, 3, s, e + 3, 3) == 0 && IsHanWord(s.substr(e, 3));
      bool bBeforePair = b >= 6 && s.compare(b - 6, 3, s, b - 3, 3) == 0 && IsHanWord(s.substr(b - 3, 3));
      bSlip = IsDoubledSlipChar(token.word) && !bAfterPair && !bBeforePair;
    }
    if (bSlip) {
      size_t nBegin = srcBegin(token.offset);
      tstring sOrg = srcText(token.offset, TokenEnd(j - 1));
      if (!sOrg.empty())
        AddFinding(sOriginal, nParaId, nBegin, sOrg.size(), "1.5.3", "reduplicate rule 1.5.3", 1,
                   srcText(token.offset, TokenEnd(i)));
    }
    i = j - 1;
  }

  // 99.3: a comma that splits the last item off an enumeration ("甲、乙，和丙").
  // The last item must be short and not closed by "等": a longer clause after
  // the last "、" has a predicate of its own, and the comma before a
  // preposition "与"/"和" that follows it is right.
  static const char* const kConjunctions[] = {"及", "和", "与", "或"};
  static const char* const kClauseEnds[] = {",", "，", "。", ".", ";", "；", ":", "：", "!", "！", "?", "？"};
  const size_t kMaxLastItem = 8;  // characters
  auto isOneOf = [](const tstring& s, const char* const* p, size_t n) {
    for (size_t k = 0; k < n; ++k)
      if (s == p[k]) return true;
    return false;
  };
  for (int i = 1; i + 1 < nTokens; ++i) {
    const _tZYGScanResult& token = m_vecScanResult[i];
    if (token.word.size() != 1 && token.word.size() != 3) continue;
    if (token.word != "," && token.word != "，") continue;
    size_t nBegin = srcBegin(token.offset);
    if (sOriginal.compare(nBegin, 3, "，") != 0) continue;
    if (!isOneOf(m_vecScanResult[i + 1].word, kConjunctions, 4)) continue;
    bool bEnumeration = false, bClosed = false;
    size_t nLastItem = 0;
    for (int k = i - 1; k >= 1; --k) {
      const tstring& sWord = m_vecScanResult[k].word;
      if (isOneOf(sWord, kClauseEnds, 12)) break;
      if (sWord == "、") {
        bEnumeration = true;
        break;
      }
      bClosed = bClosed || sWord == "等" || sWord == "等等";
      nLastItem += Utf8Length(sWord);
    }
    if (bEnumeration && !bClosed && nLastItem <= kMaxLastItem)
      AddFinding(sOriginal, nParaId, nBegin, 3, "99.3", "punctuation rule 99.3", 2, "");
  }

  // 99.4: clause marks two or more in a row; the strongest one stays.
  for (size_t i = 0; i < sOriginal.size();) {
    int nRank = ClauseMarkRank(sOriginal, i);
    if (nRank < 0) {
      // A lead byte of a mark never continues another character, so
      // stepping byte by byte finds every mark where decoding would.
      ++i;
      continue;
    }
    size_t j = i + 3;
    int nBest = nRank, nRun = 1;
    for (int r; j < sOriginal.size() && (r = ClauseMarkRank(sOriginal, j)) >= 0; j += 3, ++nRun) nBest = std::min(nBest, r);
    if (nRun >= 2)
      AddFinding(sOriginal, nParaId, i, j - i, "99.4", "punctuation rule 99.4", 1, kClauseMarks[nBest]);
    i = j;
  }

  // 99.5: marks that come in pairs, counted per kind.
  struct _tPair {
    uint32_t nOpen, nClose;
    const char *szOpen, *szClose;
  };
  static const _tPair kPairs[] = {{0x201C, 0x201D, "“", "”"},
                                  {0x2018, 0x2019, "‘", "’"},
                                  {0xFF08, 0xFF09, "（", "）"},
                                  {0x300A, 0x300B, "《", "》"}};
  std::vector<size_t> vecOpen[4];
  // Every paired mark starts with the byte E2, E3 or EF, which never
  // continues another character: the scan decodes only there.
  for (size_t i = 0; i < sOriginal.size(); ++i) {
    unsigned char b = (unsigned char)sOriginal[i];
    if (b != 0xE2 && b != 0xE3 && b != 0xEF) continue;
    uint32_t c;
    size_t n = DecodeUtf8(sOriginal.data() + i, sOriginal.size() - i, c);
    bool bAfterAlnum = i > 0 && IsAsciiAlnum((unsigned char)sOriginal[i - 1]);
    for (int k = 0; k < 4; ++k) {
      if (c == kPairs[k].nOpen) {
        vecOpen[k].push_back(i);
      } else if (c == kPairs[k].nClose) {
        if (!vecOpen[k].empty()) {
          vecOpen[k].pop_back();
        } else if (!(k == 2 && EndsListLabel(sOriginal, i)) && !(k == 1 && bAfterAlnum)) {
          AddFinding(sOriginal, nParaId, i, n, "99.5", "punctuation rule 99.5", 0, kPairs[k].szOpen);
        }
      }
    }
    i += n - 1;
  }
  for (int k = 0; k < 4; ++k)
    for (size_t nAt : vecOpen[k])
      AddFinding(sOriginal, nParaId, nAt, 3, "99.5", "punctuation rule 99.5", 0, kPairs[k].szClose);
}
