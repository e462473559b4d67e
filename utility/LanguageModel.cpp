#include "utility/LanguageModel.h"

#include <libime/core/languagemodel.h>

#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"

CLanguageModel::CLanguageModel() = default;
CLanguageModel::~CLanguageModel() = default;

bool CLanguageModel::Load(const tstring& sFile) {
  if (!IsRegularFile(sFile)) {
    SetLastError("Cannot read file " + sFile);
    return false;
  }
  try {
    m_pModel.reset(new libime::LanguageModel(sFile.c_str()));
  } catch (const std::exception& e) {
    SetLastError("Cannot load the language model " + sFile + ": " + e.what());
    m_pModel.reset();
  }
  return m_pModel != nullptr;
}

float CLanguageModel::Score(const std::vector<tstring>& vecWords) const {
  if (!m_pModel) return 0;
  std::vector<std::string_view> vecViews(vecWords.begin(), vecWords.end());
  return m_pModel->wordsScore(m_pModel->beginState(), vecViews);
}

bool CLanguageModel::IsKnown(const tstring& sWord) const {
  return m_pModel && !m_pModel->isUnknown(m_pModel->index(sWord), sWord);
}

tstring CLanguageModel::DefaultModelFile() {
  // The path the build found; TARVOS_LANGUAGE_MODEL is set by the build.
  return IsRegularFile(TARVOS_LANGUAGE_MODEL) ? TARVOS_LANGUAGE_MODEL : "";
}
