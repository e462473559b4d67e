#include "reviser/DocReviser.h"

#include "utility/ErrorLog.h"

const char* CDocReviser::Revise(const char*) {
  ServiceMissing("the document reviser (CDocReviser)");
  return nullptr;
}
