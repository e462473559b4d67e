#pragma once
// CAudit is the audit processor of one document type: its rule set and its
// audit rules. Audit rules are not built yet: a processor loads its rule set
// and has no audit rules.
#include <memory>

#include "rules/ZYG.h"
#include "utility/TString.h"

class CAudit {
 public:
  CAudit(const char* sDataPath, int nType)
      : m_sDataPath(sDataPath ? sDataPath : ""), m_nType(nType),
        m_pZYG(new CZYG(m_sDataPath.c_str(), nType)) {}
  CAudit(const CAudit&) = delete;  // owns the rule set
  CAudit& operator=(const CAudit&) = delete;

  // Loads the type's rule set. Returns 1 (an absent rule file is an empty set).
  int Load() {
    m_pZYG->Load();
    return 1;
  }

  int GetType() const { return m_nType; }
  CZYG* GetZYG() const { return m_pZYG.get(); }

 private:
  tstring m_sDataPath;          // the "Data/" folder, with its trailing slash
  int m_nType;                  // document type
  std::unique_ptr<CZYG> m_pZYG; // the type's rule set
};
