#include "rules/ZYG.h"

#include "utility/ErrorLog.h"

int CZYG::ImportRule(const char*, bool) {
  return ServiceMissing("the rule language (CZYG::ImportRule)");
}

bool CZYG::ScanText(const char*, int, tstring&) {
  return ServiceMissing("the extraction agent (CZYGAgent)") != 0;
}
