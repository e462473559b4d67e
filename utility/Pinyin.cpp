#include "utility/Pinyin.h"

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <memory>
#include <mutex>
#include <sstream>

namespace {

std::mutex g_mutexPinyin;  // a transliterator is not safe to use from two threads at once

// The transliteration with a blank between syllables, through a
// transliterator made on first use (null when ICU lacks it).
tstring Transliterate(const char* sId, std::unique_ptr<icu::Transliterator>& pTransliterator, bool& bTried,
                      const tstring& sText) {
  std::lock_guard<std::mutex> lock(g_mutexPinyin);
  if (!bTried) {
    bTried = true;
    UErrorCode status = U_ZERO_ERROR;
    pTransliterator.reset(icu::Transliterator::createInstance(sId, UTRANS_FORWARD, status));
    if (U_FAILURE(status)) pTransliterator.reset();
  }
  if (!pTransliterator) return "";
  icu::UnicodeString sUnicode = icu::UnicodeString::fromUTF8(sText);
  pTransliterator->transliterate(sUnicode);
  std::string sOut;
  sUnicode.toUTF8String(sOut);
  return sOut;
}

tstring Syllables(const tstring& sText) {
  static std::unique_ptr<icu::Transliterator> pPlain;
  static bool bTried = false;
  return Transliterate("Han-Latin; Latin-ASCII", pPlain, bTried, sText);
}

}  // namespace

tstring GetPinyin(const tstring& sText) {
  tstring sOut;
  for (char c : Syllables(sText))
    if (c != ' ') sOut.push_back(c);
  return sOut;
}

tstring GetPinyinInitials(const tstring& sText) {
  std::istringstream syllables(Syllables(sText));
  tstring sSyllable, sOut;
  while (syllables >> sSyllable) sOut.push_back(sSyllable[0]);
  return sOut;
}

tstring GetPinyinToned(const tstring& sText) {
  static std::unique_ptr<icu::Transliterator> pToned;
  static bool bTried = false;
  return Transliterate("Han-Latin", pToned, bTried, sText);
}
