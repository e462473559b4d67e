#include "utility/SpellChecker.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "utility/QueryExpand.h"
#include "utility/Utf8.h"
#include "utility/lexical/LexicalAnalyser.h"
#include "utility/lexical/Lexicon.h"
#include "utility/lexical/Segmenter.h"

namespace {

const int kMinWordFreq = 30;  // a candidate must make a word at least this frequent
const int kRareFreq = 3;      // a short word seen fewer times may be a misspelling
const size_t kMaxWordChars = 4;
const size_t kMaxKnownChars = 6;  // the longest piece of an unknown word looked up in the model

bool IsHan(uint32_t c) { return (c >= 0x4E00 && c <= 0x9FFF) || (c >= 0x3400 && c <= 0x4DBF); }

// Marks that open and close a stretch left alone: quotations and titles.
int QuoteDepthChange(uint32_t c) {
  switch (c) {
    case 0x201C: case 0x300A: case 0x300C: case 0x300E: case 0x2018: return 1;   // “ 《 「 『 ‘
    case 0x201D: case 0x300B: case 0x300D: case 0x300F: case 0x2019: return -1;  // ” 》 」 』 ’
    default: return 0;
  }
}

// Common surnames: a word the lexicon lacks that starts with one is taken for
// a person's name.
bool IsSurname(uint32_t c) {
  static const std::u32string kSurnames =
      U"王李张刘陈杨黄赵吴周徐孙马朱胡郭何高林罗郑梁谢宋唐许韩冯邓曹彭曾肖田董袁潘蒋蔡余杜叶程苏魏吕丁任沈"
      U"姚卢姜崔钟谭陆汪范金石廖贾夏韦付傅方白邹孟熊秦邱江尹薛闫阎段雷侯龙史陶黎贺顾毛郝龚邵万钱严覃武戴莫孔"
      U"汤向常温康施文牛樊葛邢安齐易乔伍庞颜倪庄聂章鲁岳翟殷詹申欧耿关兰焦俞左柳甘祝包宁尚符舒阮柯纪梅童凌"
      U"毕单季裴霍涂成苗谷盛曲翁冉骆蓝路游辛靳管柴蒙鲍华喻祁蒲房滕屈饶解牟艾尤阳时穆农司卓古吉缪简车项连芦"
      U"麦褚娄窦戚岑景党宫费卜冷晏席卫米柏宗瞿桂全佟应臧闵苟邬边卞姬师和仇栾隋商刁沙荣巫寇桑郎甄丛仲虞敖巩"
      U"明佘池查麻苑迟邝";
  return kSurnames.find(c) != std::u32string::npos;
}

// A reference-list entry ("[12] 金显贺，王昌长．…[J]．…"): names and titles
// the model cannot judge.
bool IsReferenceEntry(const tstring& sText) {
  size_t i = sText.find_first_not_of(" \t");
  if (i != tstring::npos && sText[i] == '[' && i + 1 < sText.size() && isdigit((unsigned char)sText[i + 1]))
    return true;
  for (const char* szMark : {"[J]", "[M]", "[D]", "[C]", "[N]", "[R]", "[S]", "[P]", "[EB/OL]", "[J/OL]", "[N/OL]"})
    if (sText.find(szMark) != tstring::npos) return true;
  return false;
}

// Tags of proper names: persons, places, organisations, other names.
bool IsNameTag(const char* sTag) {
  return sTag && sTag[0] == 'n' && (sTag[1] == 'r' || sTag[1] == 's' || sTag[1] == 't' || sTag[1] == 'z');
}

}  // namespace

struct CSpellChecker::_tChar {
  size_t offset, length;
  bool bHan;
  bool bSuspect;  // alone, in an unknown word or in a rare word
  bool bGuarded;  // in a name or inside quotation or title marks
};

struct CSpellChecker::_tCandidate {
  size_t nWordFirst, nWordChars;  // the window of characters that becomes a word
  tstring sRight;                 // the window's new text
  tstring sClause;                // the clause with the change
  EConfusion kind;
};

CSpellChecker::CSpellChecker(const CLexicalAnalyser* pAnalyser, const CQueryExpand* pSimDict,
                             const CQueryExpand* pSpellDict)
    : m_pAnalyser(pAnalyser), m_pSimDict(pSimDict), m_pSpellDict(pSpellDict) {}

bool CSpellChecker::Load(const tstring& sDataDir, const tstring& sModelFile) {
  if (!m_pAnalyser || !m_confusion.Load(sDataDir + "/Data/Spell") || !m_model.Load(sModelFile)) return false;
  const double fLogTotal = -m_pAnalyser->GetLexicon().GetUnknownLogProb();
  m_fMinWordLogProb = std::log((double)kMinWordFreq) - fLogTotal;
  m_fRareLogProb = std::log((double)kRareFreq) - fLogTotal;
  return true;
}

bool CSpellChecker::IsWord(const tstring& sWord) const {
  const CLexicon& lexicon = m_pAnalyser->GetLexicon();
  int nId = lexicon.GetDict().GetId(sWord);
  return nId >= 0 && lexicon.GetLogProb(nId) >= m_fRareLogProb;
}

bool CSpellChecker::IsFrequentWord(const tstring& sWord) const {
  const CLexicon& lexicon = m_pAnalyser->GetLexicon();
  int nId = lexicon.GetDict().GetId(sWord);
  return nId >= 0 && lexicon.GetLogProb(nId) >= m_fMinWordLogProb;
}

// A change may only make a word of characters that are all suspect: one that
// would cut into a well-formed word is a change of segmentation, not a fix.
bool CSpellChecker::AllSuspect(const std::vector<_tChar>& vecChars, size_t nFrom, size_t nTo) {
  for (size_t i = nFrom; i < nTo; i++)
    if (!vecChars[i].bSuspect || vecChars[i].bGuarded) return false;
  return true;
}

float CSpellChecker::Margin(EConfusion kind) const {
  switch (kind) {
    case EConfusion::kSameTone: return m_margins.fSameTone;
    case EConfusion::kSameSyllable: return m_margins.fSameSyllable;
    default: return m_margins.fShape;
  }
}

void CSpellChecker::Check(const tstring& sText, std::vector<_tSpellFinding>& vecOut) const {
  vecOut.clear();
  if (!m_model.IsLoaded() || sText.empty() || IsReferenceEntry(sText)) return;
  std::vector<_tToken> vecTokens;
  m_pAnalyser->Segment(sText, vecTokens);
  DictionaryWords(sText, vecTokens, vecOut);
  std::vector<_tChar> vecChars;
  MarkChars(sText, vecTokens, vecChars);
  for (size_t i = 0; i < vecChars.size();) {
    size_t nEnd = i;
    while (nEnd < vecChars.size() && vecChars[nEnd].bHan) nEnd++;
    if (nEnd - i >= 2) CheckClause(sText, vecChars, i, nEnd, vecOut);
    i = std::max(nEnd, i + 1);
  }
  std::sort(vecOut.begin(), vecOut.end(),
            [](const _tSpellFinding& a, const _tSpellFinding& b) { return a.offset < b.offset; });
}

void CSpellChecker::MarkChars(const tstring& sText, const std::vector<_tToken>& vecTokens,
                              std::vector<_tChar>& vecChars) const {
  const CLexicon& lexicon = m_pAnalyser->GetLexicon();
  int nQuoteDepth = 0;
  for (const _tToken& token : vecTokens) {
    const tstring sWord = sText.substr(token.offset, token.length);
    const int nId = lexicon.GetDict().GetId(sWord);
    // Longer words of the lexicon are sound however rare: many are compounds.
    const size_t nWordChars = Utf8Length(sWord);
    const bool bUnknown = nId < 0 ? !m_pAnalyser->IsUserWord(sWord)
                                  : nWordChars <= 2 && lexicon.GetLogProb(nId) < m_fRareLogProb;
    const size_t nFirst = vecChars.size();
    for (size_t i = token.offset; i < token.offset + token.length;) {
      uint32_t c;
      size_t n = DecodeUtf8(sText.data() + i, token.offset + token.length - i, c);
      nQuoteDepth = std::max(0, nQuoteDepth + QuoteDepthChange(c));
      vecChars.push_back({i, n, IsHan(c), false, nQuoteDepth > 0});
      i += n;
    }
    const size_t nChars = vecChars.size() - nFirst;
    uint32_t nFirstChar = 0;
    DecodeUtf8(sWord.data(), sWord.size(), nFirstChar);
    const bool bName = nChars >= 2 && (nId >= 0 ? IsNameTag(token.tag) : nChars <= 3 && IsSurname(nFirstChar));
    for (size_t i = nFirst; i < vecChars.size(); i++) {
      vecChars[i].bSuspect = vecChars[i].bHan && (nChars == 1 || bUnknown);
      vecChars[i].bGuarded = vecChars[i].bGuarded || bName;
    }
  }
}

void CSpellChecker::DictionaryWords(const tstring& sText, const std::vector<_tToken>& vecTokens,
                                    std::vector<_tSpellFinding>& vecOut) const {
  for (const _tToken& token : vecTokens) {
    const tstring sWord = sText.substr(token.offset, token.length);
    const std::vector<tstring>* pForms = m_pSpellDict ? m_pSpellDict->Expand(sWord) : nullptr;
    if (pForms && !pForms->empty()) {
      vecOut.push_back({token.offset, sWord, pForms->front(), 0});
      continue;
    }
    pForms = m_pSimDict ? m_pSimDict->Expand(sWord) : nullptr;
    if (!pForms) continue;
    // The clause around the word is not known here: score the word between
    // its neighbours' tokens.
    const size_t nToken = &token - vecTokens.data();
    const size_t nFrom = nToken > 0 ? vecTokens[nToken - 1].offset : token.offset;
    const size_t nTo = nToken + 1 < vecTokens.size() ? vecTokens[nToken + 1].offset + vecTokens[nToken + 1].length
                                                     : token.offset + token.length;
    const tstring sAround = sText.substr(nFrom, nTo - nFrom);
    const float fBase = ClauseScore(sAround);
    for (const tstring& sForm : *pForms) {
      tstring sChanged = sAround;
      sChanged.replace(token.offset - nFrom, token.length, sForm);
      float fGain = ClauseScore(sChanged) - fBase - m_margins.fShape;
      if (fGain > 0) {
        vecOut.push_back({token.offset, sWord, sForm, fGain});
        break;
      }
    }
  }
}

float CSpellChecker::ClauseScore(const tstring& sClause) const {
  std::vector<_tToken> vecTokens;
  m_pAnalyser->Segment(sClause, vecTokens);
  std::vector<tstring> vecWords;
  vecWords.reserve(vecTokens.size());
  // A word the model lacks is scored as the longest known words it starts
  // with, not at the unknown-word penalty, which would favour any change
  // that makes a known word.
  for (const _tToken& token : vecTokens) {
    const tstring sWord = sClause.substr(token.offset, token.length);
    for (size_t i = 0; i < sWord.size();) {
      size_t nLength = KnownPrefix(sWord, i);
      vecWords.push_back(sWord.substr(i, nLength));
      i += nLength;
    }
  }
  return m_model.Score(vecWords);
}

// The byte length of the longest word the model knows at sWord[nFrom], up
// to the whole rest; one character when it knows none.
size_t CSpellChecker::KnownPrefix(const tstring& sWord, size_t nFrom) const {
  std::vector<size_t> vecEnds;  // character ends after nFrom
  for (size_t i = nFrom; i < sWord.size() && vecEnds.size() < kMaxKnownChars;) {
    uint32_t c;
    i += DecodeUtf8(sWord.data() + i, sWord.size() - i, c);
    vecEnds.push_back(i);
  }
  if (vecEnds.back() == sWord.size() && m_model.IsKnown(sWord.substr(nFrom))) return sWord.size() - nFrom;
  for (size_t n = vecEnds.size(); n > 1; n--)
    if (m_model.IsKnown(sWord.substr(nFrom, vecEnds[n - 1] - nFrom))) return vecEnds[n - 1] - nFrom;
  return vecEnds.front() - nFrom;
}

void CSpellChecker::Candidates(const tstring& sText, const std::vector<_tChar>& vecChars, size_t nFirst,
                               size_t nEnd, size_t i, std::vector<_tCandidate>& vecOut) const {
  std::vector<_tConfusion> vecConfusions;
  m_confusion.Candidates(sText.substr(vecChars[i].offset, vecChars[i].length), vecConfusions);
  const size_t nClauseStart = vecChars[nFirst].offset;
  const size_t nClauseEnd = vecChars[nEnd - 1].offset + vecChars[nEnd - 1].length;
  for (const _tConfusion& confusion : vecConfusions) {
    bool bFound = false;
    for (size_t nChars = 2; nChars <= kMaxWordChars && !bFound; nChars++) {
      for (size_t s = i + 1 >= nFirst + nChars ? i + 1 - nChars : nFirst; s <= i && s + nChars <= nEnd; s++) {
        if (!AllSuspect(vecChars, s, s + nChars)) continue;
        const size_t nStart = vecChars[s].offset;
        const size_t nLength = vecChars[s + nChars - 1].offset + vecChars[s + nChars - 1].length - nStart;
        const tstring sWrong = sText.substr(nStart, nLength);
        if (IsWord(sWrong)) continue;
        tstring sRight = sWrong;
        sRight.replace(vecChars[i].offset - nStart, vecChars[i].length, confusion.sChar);
        if (!IsFrequentWord(sRight)) continue;
        tstring sClause = sText.substr(nClauseStart, nClauseEnd - nClauseStart);
        sClause.replace(vecChars[i].offset - nClauseStart, vecChars[i].length, confusion.sChar);
        vecOut.push_back({s, nChars, sRight, sClause, confusion.kind});
        bFound = true;
        break;
      }
    }
  }
}

void CSpellChecker::CheckClause(const tstring& sText, const std::vector<_tChar>& vecChars, size_t nFirst,
                                size_t nEnd, std::vector<_tSpellFinding>& vecOut) const {
  std::vector<_tCandidate> vecCandidates;
  for (size_t i = nFirst; i < nEnd; i++)
    if (vecChars[i].bSuspect && !vecChars[i].bGuarded) Candidates(sText, vecChars, nFirst, nEnd, i, vecCandidates);
  if (vecCandidates.empty()) return;
  const size_t nClauseStart = vecChars[nFirst].offset;
  const float fBase = ClauseScore(
      sText.substr(nClauseStart, vecChars[nEnd - 1].offset + vecChars[nEnd - 1].length - nClauseStart));
  _tSpellFinding best{0, "", "", 0};
  for (const _tCandidate& candidate : vecCandidates) {
    float fGain = ClauseScore(candidate.sClause) - fBase - Margin(candidate.kind);
    if (fGain <= best.fGain) continue;
    const _tChar& last = vecChars[candidate.nWordFirst + candidate.nWordChars - 1];
    const size_t nStart = vecChars[candidate.nWordFirst].offset;
    best = {nStart, sText.substr(nStart, last.offset + last.length - nStart), candidate.sRight, fGain};
  }
  if (best.fGain > 0) vecOut.push_back(best);
}
