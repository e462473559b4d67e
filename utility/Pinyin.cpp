#include "utility/Pinyin.h"

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <memory>
#include <mutex>
#include <sstream>

namespace {

std::mutex g_mutexPinyin;  // a transliterator is not safe to use from two threads at once
std::unique_ptr<icu::Transliterator> g_pTransliterator;
bool g_bTried = false;

// The transliteration with a blank between syllables.
tstring Syllables(const tstring& sText) {
  std::lock_guard<std::mutex> lock(g_mutexPinyin);
  if (!g_bTried) {
    g_bTried = true;
    UErrorCode status = U_ZERO_ERROR;
    g_pTransliterator.reset(
        icu::Transliterator::createInstance("Han-Latin; Latin-ASCII", UTRANS_FORWARD, status));
    if (U_FAILURE(status)) g_pTransliterator.reset();
  }
  if (!g_pTransliterator) return "";
  icu::UnicodeString sUnicode = icu::UnicodeString::fromUTF8(sText);
  g_pTransliterator->transliterate(sUnicode);
  std::string sOut;
  sUnicode.toUTF8String(sOut);
  return sOut;
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
