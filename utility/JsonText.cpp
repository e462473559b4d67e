#include "utility/JsonText.h"

#include <cstdio>
#include <memory>

#include "utility/Utf8.h"

tstring JsonText(const Json::Value& value, bool bIndent) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = bIndent ? "  " : "";
  builder["emitUTF8"] = true;
  return Json::writeString(builder, value);
}

namespace {

// The length of the run from i on that a JSON string holds as it is:
// printable ASCII other than quote and backslash, and valid UTF-8.
size_t PlainRun(const tstring& sText, size_t i) {
  const size_t nStart = i;
  while (i < sText.size()) {
    const unsigned char c = (unsigned char)sText[i];
    if (c < 0x80) {
      if (c < 0x20 || c == '"' || c == '\\') break;
      ++i;
      continue;
    }
    uint32_t nChar;
    const size_t n = DecodeUtf8(sText.data() + i, sText.size() - i, nChar);
    if (nChar >= kInvalidByteBase) break;
    i += n;
  }
  return i - nStart;
}

}  // namespace

tstring JsonQuote(const tstring& sText) {
  tstring sOut;
  sOut.reserve(sText.size() + 2);
  sOut += '"';
  for (size_t i = 0; i < sText.size();) {
    const size_t nPlain = PlainRun(sText, i);
    sOut.append(sText, i, nPlain);
    i += nPlain;
    if (i >= sText.size()) break;
    const unsigned char c = (unsigned char)sText[i++];
    switch (c) {
      case '"': sOut += "\\\""; break;
      case '\\': sOut += "\\\\"; break;
      case '\n': sOut += "\\n"; break;
      case '\r': sOut += "\\r"; break;
      case '\t': sOut += "\\t"; break;
      case '\b': sOut += "\\b"; break;
      case '\f': sOut += "\\f"; break;
      default: {
        char sEscape[8];  // a control character, or a byte that is no UTF-8
        snprintf(sEscape, sizeof(sEscape), "\\u%04X", c < 0x20 ? c : 0xFFFD);
        sOut += sEscape;
      }
    }
  }
  sOut += '"';
  return sOut;
}

bool ParseJsonObject(const tstring& sText, Json::Value& root) {
  Json::CharReaderBuilder builder;
  builder["stackLimit"] = 64;
  std::unique_ptr<Json::CharReader> pReader(builder.newCharReader());
  tstring sErrors;
  try {
    return pReader->parse(sText.data(), sText.data() + sText.size(), &root, &sErrors) && root.isObject();
  } catch (const std::exception&) {  // the reader throws when the nesting limit is reached
    root = Json::Value();
    return false;
  }
}
