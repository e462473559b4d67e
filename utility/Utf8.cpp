#include "utility/Utf8.h"

namespace {
inline bool IsContinuation(unsigned char c) { return (c & 0xC0) == 0x80; }
}  // namespace

size_t DecodeUtf8(const char* p, size_t nLength, uint32_t& nChar) {
  const unsigned char* u = reinterpret_cast<const unsigned char*>(p);
  unsigned char c = u[0];
  if (c < 0x80) {
    nChar = c;
    return 1;
  }
  size_t nNeed = 0;
  uint32_t nMin = 0;
  if (c >= 0xC2 && c <= 0xDF) {
    nNeed = 2;
    nChar = c & 0x1F;
    nMin = 0x80;
  } else if (c >= 0xE0 && c <= 0xEF) {
    nNeed = 3;
    nChar = c & 0x0F;
    nMin = 0x800;
  } else if (c >= 0xF0 && c <= 0xF4) {
    nNeed = 4;
    nChar = c & 0x07;
    nMin = 0x10000;
  }
  if (nNeed == 0 || nLength < nNeed) {
    nChar = kInvalidByteBase + c;
    return 1;
  }
  for (size_t i = 1; i < nNeed; ++i) {
    if (!IsContinuation(u[i])) {
      nChar = kInvalidByteBase + c;
      return 1;
    }
    nChar = (nChar << 6) | (u[i] & 0x3F);
  }
  // Overlong forms, surrogates and values past U+10FFFF are not characters.
  if (nChar < nMin || nChar > 0x10FFFF || (nChar >= 0xD800 && nChar <= 0xDFFF)) {
    nChar = kInvalidByteBase + c;
    return 1;
  }
  return nNeed;
}

void AppendUtf8(tstring& sOut, uint32_t nChar) {
  if (nChar >= kInvalidByteBase) {
    sOut.push_back((char)(nChar - kInvalidByteBase));
  } else if (nChar < 0x80) {
    sOut.push_back((char)nChar);
  } else if (nChar < 0x800) {
    sOut.push_back((char)(0xC0 | (nChar >> 6)));
    sOut.push_back((char)(0x80 | (nChar & 0x3F)));
  } else if (nChar < 0x10000) {
    sOut.push_back((char)(0xE0 | (nChar >> 12)));
    sOut.push_back((char)(0x80 | ((nChar >> 6) & 0x3F)));
    sOut.push_back((char)(0x80 | (nChar & 0x3F)));
  } else {
    sOut.push_back((char)(0xF0 | (nChar >> 18)));
    sOut.push_back((char)(0x80 | ((nChar >> 12) & 0x3F)));
    sOut.push_back((char)(0x80 | ((nChar >> 6) & 0x3F)));
    sOut.push_back((char)(0x80 | (nChar & 0x3F)));
  }
}

size_t Utf8Length(const tstring& sText) {
  size_t nChars = 0;
  for (size_t i = 0; i < sText.size(); ++nChars) {
    uint32_t nChar;
    i += DecodeUtf8(sText.data() + i, sText.size() - i, nChar);
  }
  return nChars;
}

bool IsValidUtf8(const tstring& sText) {
  for (size_t i = 0; i < sText.size();) {
    uint32_t nChar;
    i += DecodeUtf8(sText.data() + i, sText.size() - i, nChar);
    if (nChar >= kInvalidByteBase) return false;
  }
  return true;
}
