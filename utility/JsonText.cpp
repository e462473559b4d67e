#include "utility/JsonText.h"

tstring JsonText(const Json::Value& value, bool bIndent) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = bIndent ? "  " : "";
  builder["emitUTF8"] = true;
  return Json::writeString(builder, value);
}
