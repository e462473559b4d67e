#include "utility/lexical/Segmenter.h"

#include <limits>

#include "utility/Utf8.h"
#include "utility/lexical/CharClass.h"
#include "utility/lexical/HmmModel.h"
#include "utility/lexical/Lexicon.h"
#include "utility/lexical/TagSet.h"
#include "utility/lexical/UserDictionary.h"

// Everything one call works on: the decoded text and its scratch arrays.
// The arrays are the calling thread's own and keep their capacity from call
// to call: most paragraphs then allocate nothing.
struct CSegmenter::_tContext {
  struct _tScratch {
    std::vector<uint32_t> chars;  // decoded characters
    std::vector<size_t> pos;      // byte offset of each character; pos[n] = text size
    std::vector<int32_t> codes;   // lexicon code of each character
    std::vector<double> best;     // best path score from a character to the block's end
    std::vector<size_t> next;     // end of the best first word from a character
    std::vector<int> nextId;      // lexicon id of that word, -1 for an unknown character
    std::vector<uint32_t> run;    // the hidden Markov model's input
    std::vector<size_t> lengths;  // its word lengths
  };
  static _tScratch& Scratch() {
    thread_local _tScratch s_scratch;
    return s_scratch;
  }

  _tContext(const tstring& sText, std::vector<_tToken>& vecTokens)
      : text(sText), tokens(vecTokens), chars(Scratch().chars), pos(Scratch().pos), codes(Scratch().codes),
        best(Scratch().best), next(Scratch().next), nextId(Scratch().nextId), run(Scratch().run),
        lengths(Scratch().lengths) {
    chars.clear();
    pos.clear();
  }

  const tstring& text;
  std::vector<_tToken>& tokens;
  std::vector<uint32_t>& chars;
  std::vector<size_t>& pos;
  std::vector<int32_t>& codes;
  std::vector<double>& best;
  std::vector<size_t>& next;
  std::vector<int>& nextId;
  std::vector<uint32_t>& run;
  std::vector<size_t>& lengths;
  size_t lastBegin = 0, lastEnd = 0;  // characters of the block's previous token, for numeral joins
  bool lastInBlock = false;           // the previous token belongs to the current block
  bool doubleQuoteOpen = false;
  bool singleQuoteOpen = false;

  // Adds the block token [b, e); neighbouring Chinese numerals join into one number.
  void Emit(size_t b, size_t e, const char* sTag);
};

namespace {

const char* const kTagNumber = InternTag("m");
const char* const kTagLatin = InternTag("eng");
const char* const kTagOther = InternTag("x");
const char* const kTagUnknownWord = InternTag("n");

bool IsNumeralWord(const std::vector<uint32_t>& vecChars, size_t nBegin, size_t nEnd) {
  for (size_t k = nBegin; k < nEnd; ++k)
    if (!IsChineseNumeralChar(vecChars[k])) return false;
  return nEnd > nBegin;
}

// A comma that joins the digit groups of a number: a digit before, exactly
// three digits after.
bool IsThousandsComma(const std::vector<uint32_t>& c, size_t k, size_t nEnd) {
  if (c[k] != ',' || k == 0 || !IsAsciiDigitChar(c[k - 1]) || k + 3 >= nEnd) return false;
  for (size_t m = k + 1; m <= k + 3; ++m)
    if (!IsAsciiDigitChar(c[m])) return false;
  return k + 4 >= nEnd || !IsAsciiDigitChar(c[k + 4]);
}

// The tag of a character that stands alone and that the lexicon lacks.
const char* SingleCharTag(uint32_t c, bool& bDoubleQuoteOpen, bool& bSingleQuoteOpen) {
  if (IsAsciiDigitChar(c)) return kTagNumber;
  if (IsAsciiLetterChar(c)) return kTagLatin;
  if (ClassifyChar(c) == kCharHan) return kTagOther;
  return PunctuationTag(c, bDoubleQuoteOpen, bSingleQuoteOpen);
}

}  // namespace

void CSegmenter::_tContext::Emit(size_t b, size_t e, const char* sTag) {
  if (lastInBlock && lastEnd == b && IsNumeralWord(chars, lastBegin, lastEnd) && IsNumeralWord(chars, b, e)) {
    tokens.back().length = pos[e] - tokens.back().offset;
    tokens.back().tag = kTagNumber;
  } else {
    tokens.push_back(_tToken{pos[b], pos[e] - pos[b], sTag, false});
    lastBegin = b;
  }
  lastEnd = e;
  lastInBlock = true;
}

void CSegmenter::Segment(const tstring& sText, const CUserDictionary* pUser, std::vector<_tToken>& vecTokens) const {
  vecTokens.clear();
  _tContext ctx(sText, vecTokens);
  for (size_t i = 0, n = 0; i < sText.size(); i += n) {
    uint32_t c;
    n = DecodeUtf8(sText.data() + i, sText.size() - i, c);
    ctx.chars.push_back(c);
    ctx.pos.push_back(i);
  }
  const size_t n = ctx.chars.size();
  ctx.pos.push_back(sText.size());
  const CPDAT& dict = m_pLexicon->GetDict();
  ctx.codes.resize(n);
  for (size_t k = 0; k < n; ++k) ctx.codes[k] = dict.GetCode(ctx.chars[k]);

  // User words first: leftmost, then longest.
  struct _tSpan {
    size_t begin, end;
    int id;
  };
  std::vector<_tSpan> vecUser;
  if (pUser && pUser->GetCount() > 0) {
    const CPDAT& user = pUser->GetDict();
    for (size_t i = 0; i < n;) {
      size_t nEnd = 0;
      int nId = -1;
      int32_t s = user.GetRoot();
      for (size_t k = i; k < n; ++k) {
        s = user.Step(s, user.GetCode(ctx.chars[k]));
        if (s < 0) break;
        if (user.GetValue(s) >= 0) {
          nEnd = k + 1;
          nId = user.GetValue(s);
        }
      }
      if (nId >= 0) {
        vecUser.push_back(_tSpan{i, nEnd, nId});
        i = nEnd;
      } else {
        ++i;
      }
    }
  }

  size_t nUser = 0;
  for (size_t i = 0; i < n;) {
    if (nUser < vecUser.size() && vecUser[nUser].begin == i) {
      const _tSpan& span = vecUser[nUser++];
      vecTokens.push_back(_tToken{ctx.pos[span.begin], ctx.pos[span.end] - ctx.pos[span.begin],
                                  pUser->GetTag(span.id), pUser->HasBlank(span.id)});
      i = span.end;
      continue;
    }
    const size_t nLimit = nUser < vecUser.size() ? vecUser[nUser].begin : n;
    const ECharClass eClass = ClassifyChar(ctx.chars[i]);
    if (eClass == kCharBlank) {
      ++i;
    } else if (eClass != kCharOther) {
      size_t j = i;
      while (j < nLimit && (ClassifyChar(ctx.chars[j]) < kCharBlank || IsThousandsComma(ctx.chars, j, nLimit))) ++j;
      SegmentBlock(ctx, i, j);
      i = j;
    } else {
      size_t j = i + 1;
      const int nRun = PunctuationRunKind(ctx.chars[i]);
      while (nRun && j < nLimit && PunctuationRunKind(ctx.chars[j]) == nRun) ++j;
      const char* sTag = PunctuationTag(ctx.chars[i], ctx.doubleQuoteOpen, ctx.singleQuoteOpen);
      vecTokens.push_back(_tToken{ctx.pos[i], ctx.pos[j] - ctx.pos[i], sTag, false});
      i = j;
    }
  }
}

// The most probable path through the word graph of [nBegin, nEnd), scored
// from the right; ties go to the longer first word.
void CSegmenter::SegmentBlock(_tContext& ctx, size_t nBegin, size_t nEnd) const {
  const CPDAT& dict = m_pLexicon->GetDict();
  if (ctx.best.size() < nEnd + 1) {
    ctx.best.resize(nEnd + 1);
    ctx.next.resize(nEnd + 1);
    ctx.nextId.resize(nEnd + 1);
  }
  ctx.best[nEnd] = 0;
  for (size_t k = nEnd; k-- > nBegin;) {
    double fBest = -std::numeric_limits<double>::infinity();
    size_t nBestEnd = 0;
    int nBestId = -1;
    int32_t s = dict.GetRoot();
    for (size_t m = k; m < nEnd; ++m) {
      s = dict.Step(s, ctx.codes[m]);
      if (s < 0) break;
      int nId = dict.GetValue(s);
      if (nId < 0) continue;
      double f = m_pLexicon->GetLogProb(nId) + ctx.best[m + 1];
      if (nBestEnd == 0 || f > fBest || (f == fBest && m + 1 > nBestEnd)) {
        fBest = f;
        nBestEnd = m + 1;
        nBestId = nId;
      }
    }
    if (nBestEnd == 0) {  // no word starts here: the character alone
      fBest = m_pLexicon->GetUnknownLogProb() + ctx.best[k + 1];
      nBestEnd = k + 1;
    }
    ctx.best[k] = fBest;
    ctx.next[k] = nBestEnd;
    ctx.nextId[k] = nBestId;
  }
  ctx.lastInBlock = false;
  size_t nSingles = nBegin;  // start of the pending run of single characters
  for (size_t x = nBegin; x < nEnd;) {
    size_t y = ctx.next[x];
    if (y - x > 1) {
      FlushSingles(ctx, nSingles, x);
      ctx.Emit(x, y, m_pLexicon->GetTag(ctx.nextId[x]));
      nSingles = y;
    }
    x = y;
  }
  FlushSingles(ctx, nSingles, nEnd);
}

// Single characters between words: alone, one by one when together they are
// a word of the lexicon, else cut again as unknown words.
void CSegmenter::FlushSingles(_tContext& ctx, size_t nBegin, size_t nEnd) const {
  if (nBegin >= nEnd) return;
  const CPDAT& dict = m_pLexicon->GetDict();
  bool bKnownRun = nEnd - nBegin > 1 && dict.GetId(ctx.text.data() + ctx.pos[nBegin], ctx.pos[nEnd] - ctx.pos[nBegin]) >= 0;
  if (nEnd - nBegin > 1 && !bKnownRun) {
    CutUnknown(ctx, nBegin, nEnd);
    return;
  }
  for (size_t k = nBegin; k < nEnd; ++k) {
    int nId = ctx.nextId[k];
    const char* sTag = nId >= 0 ? m_pLexicon->GetTag(nId) : SingleCharTag(ctx.chars[k], ctx.doubleQuoteOpen, ctx.singleQuoteOpen);
    ctx.Emit(k, k + 1, sTag);
  }
}

// Chinese runs go to the hidden Markov model; numbers and letter-digit runs
// stay whole; any other character stands alone.
void CSegmenter::CutUnknown(_tContext& ctx, size_t nBegin, size_t nEnd) const {
  const CPDAT& dict = m_pLexicon->GetDict();
  const std::vector<uint32_t>& c = ctx.chars;
  for (size_t k = nBegin; k < nEnd;) {
    if (ClassifyChar(c[k]) == kCharHan) {
      size_t r = k;
      while (r < nEnd && ClassifyChar(c[r]) == kCharHan) ++r;
      ctx.run.assign(c.begin() + k, c.begin() + r);
      m_pHmm->Cut(ctx.run, ctx.lengths);
      for (size_t nLength : ctx.lengths) {
        int nId = dict.GetId(ctx.text.data() + ctx.pos[k], ctx.pos[k + nLength] - ctx.pos[k]);
        const char* sTag = nId >= 0 ? m_pLexicon->GetTag(nId) : kTagUnknownWord;
        ctx.Emit(k, k + nLength, sTag);
        k += nLength;
      }
      continue;
    }
    size_t r = k;
    if (IsAsciiDigitChar(c[k]) || IsAsciiLetterChar(c[k])) {
      bool bLetters = false;
      while (r < nEnd && (IsAsciiDigitChar(c[r]) || IsAsciiLetterChar(c[r]) || IsThousandsComma(c, r, nEnd))) {
        bLetters = bLetters || IsAsciiLetterChar(c[r]);
        ++r;
      }
      if (r + 1 < nEnd && c[r] == '.' && IsAsciiDigitChar(c[r + 1])) {
        ++r;
        while (r < nEnd && IsAsciiDigitChar(c[r])) ++r;
      }
      if (r < nEnd && c[r] == '%') ++r;
      ctx.Emit(k, r, bLetters ? kTagLatin : kTagNumber);
    } else {
      r = k + 1;
      ctx.Emit(k, r, SingleCharTag(c[k], ctx.doubleQuoteOpen, ctx.singleQuoteOpen));
    }
    k = r;
  }
}

tstring CSegmenter::Format(const tstring& sText, const std::vector<_tToken>& vecTokens, bool bTags) {
  tstring sOut;
  sOut.reserve(sText.size() * 2);
  for (size_t i = 0; i < vecTokens.size(); ++i) {
    const _tToken& token = vecTokens[i];
    if (i > 0) sOut.push_back(' ');
    if (token.group) sOut.push_back('[');
    sOut.append(sText, token.offset, token.length);
    if (token.group) sOut.push_back(']');
    if (bTags) {
      sOut.push_back('/');
      sOut.append(token.tag);
    }
  }
  return sOut;
}
