#include "checker/DocFormatCheck.h"

#include "utility/ErrorLog.h"

namespace {
const char kStore[] = "the template store (CDocxTemplate)";
}

int CDocFormatCheck::Check(CDocxParser*, CCheckResult*, int) { return 1; }

int CDocFormatCheck::ImportTemplate(const char*, int, const char*, const char*, const char*) {
  return ServiceMissing(kStore);
}

int CDocFormatCheck::EditTemplate(int, const char*, int, const char*, const char*, const char*) {
  return ServiceMissing(kStore);
}

int CDocFormatCheck::FindTemplate(int, const char*, const char*, const char*) {
  return ServiceMissing(kStore, -1);
}

int CDocFormatCheck::DeleteTemplate(int) { return ServiceMissing(kStore); }

const char* CDocFormatCheck::GetTemplate(int) {
  ServiceMissing(kStore);
  return nullptr;
}

int CDocFormatCheck::GetTemplateCount() { return ServiceMissing(kStore); }

const char* CDocFormatCheck::GetTemplateList(int, const char*) {
  ServiceMissing(kStore);
  return nullptr;
}
