#include "rules/KnowledgeParser.h"

#include <cstring>

#include "utility/Utf8.h"

namespace {

const char kEscapable[] = "{}[]();^";
// Patterns far longer than any rule are refused before parsing.
const size_t kMaxPattern = 1u << 20;

bool IsEscaped(const tstring& s, size_t nPos) { return nPos > 0 && s[nPos - 1] == '^'; }

// The next c at or after nFrom that is not escaped; npos when none.
size_t FindUnescaped(const tstring& s, char c, size_t nFrom) {
  for (size_t p = s.find(c, nFrom); p != tstring::npos; p = s.find(c, p + 1))
    if (!IsEscaped(s, p)) return p;
  return tstring::npos;
}

size_t ReadNumber(const tstring& s, size_t nPos, int& nValue) {
  size_t nEnd = nPos;
  long long nRead = 0;
  while (nEnd < s.size() && s[nEnd] >= '0' && s[nEnd] <= '9') {
    if (nRead < 1000000) nRead = nRead * 10 + (s[nEnd] - '0');
    ++nEnd;
  }
  nValue = (int)nRead;
  return nEnd;
}

bool IsDigitAt(const tstring& s, size_t nPos) { return nPos < s.size() && s[nPos] >= '0' && s[nPos] <= '9'; }

// The pattern up to and including the character at nPos.
tstring PrefixThrough(const tstring& s, size_t nPos) {
  if (nPos >= s.size()) return s;
  uint32_t nChar = 0;
  return s.substr(0, nPos + DecodeUtf8(s.data() + nPos, s.size() - nPos, nChar));
}

tstring Escape(const tstring& sElem) {
  tstring sOut;
  for (char c : sElem) {
    if (c != '\0' && strchr(kEscapable, c)) sOut += '^';
    sOut += c;
  }
  return sOut;
}

}  // namespace

tstring CKnowledgeParser::Normalise(const tstring& sPattern) {
  tstring sOut;
  bool bPendingBlank = false;
  for (char c : sPattern) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      bPendingBlank = true;
      continue;
    }
    if (bPendingBlank && !sOut.empty() && !strchr(" +{}[]^", sOut.back())) sOut += ' ';
    bPendingBlank = false;
    sOut += c;
  }
  if (bPendingBlank && !sOut.empty() && !strchr(" +{}[]^", sOut.back())) sOut += ' ';
  return sOut;
}

tstring CKnowledgeParser::UnitStandard(const tstring& sPiece) {
  // A blank kept at either end of a piece could never match a word.
  size_t nBegin = sPiece.find_first_not_of(' ');
  size_t nEnd = sPiece.find_last_not_of(' ');
  tstring sOut;
  for (size_t i = nBegin; nBegin != tstring::npos && i <= nEnd; ++i) {
    if (sPiece[i] == '^' && i < nEnd && strchr(kEscapable, sPiece[i + 1]) && sPiece[i + 1]) ++i;
    sOut += sPiece[i];
  }
  return sOut;
}

int CKnowledgeParser::ParseKnowledge(const tstring& sPattern, _tKnowledgeOrg& knowledge, tstring& sError) {
  knowledge = _tKnowledgeOrg();
  const tstring sText = Normalise(sPattern.size() > kMaxPattern ? sPattern.substr(0, kMaxPattern) : sPattern);
  knowledge.text = sText;
  size_t nPos = 0;
  if (sText.empty() || sText[0] != '{') {
    sError = PrefixThrough(sText, 0) + "处应该为区格的起始符合'{'";
    return -1;
  }
  while (nPos != tstring::npos && nPos < sText.size()) {
    size_t nClose = FindUnescaped(sText, '}', nPos + 1);
    if (nClose == tstring::npos) {
      sError = sText.substr(0, nPos + 1) + "后面缺乏区格的结束符合'}'";
      return -1;
    }
    _tGridOrg grid;
    size_t nAfter = nClose + 1;
    if (nAfter < sText.size() && sText[nAfter] == 's') {
      grid.is_selected = 1;
      ++nAfter;
    }
    int nStep = 1;
    if (IsDigitAt(sText, nAfter + 1)) ReadNumber(sText, nAfter + 1, nStep);
    knowledge.vecSteps.push_back(nStep);
    ParseGrid(sText.substr(nPos + 1, nClose - nPos - 1), grid);
    knowledge.vecGrids.push_back(grid);
    nPos = sText.find('{', nAfter);
  }
  return 1;
}

void CKnowledgeParser::ParseGrid(const tstring& sText, _tGridOrg& grid) {
  size_t nOpen = FindUnescaped(sText, '[', 0);
  if (nOpen == tstring::npos) {
    _tBlockOrg block;
    ParseBlock(sText, block);
    grid.vecBlocks.push_back(block);
    grid.vecRepeats.push_back(1);
    grid.vecSteps.push_back(1);
    return;
  }
  while (nOpen != tstring::npos) {
    _tBlockOrg block;
    size_t nClose = FindUnescaped(sText, ']', nOpen + 1);
    if (nClose == tstring::npos) {
      ParseBlock(sText.substr(nOpen + 1), block);
      grid.vecSteps.push_back(grid.vecSteps.empty() ? -1 : grid.vecSteps.back());
      grid.vecRepeats.push_back(1);
      grid.vecBlocks.push_back(block);
      return;
    }
    ParseBlock(sText.substr(nOpen + 1, nClose - nOpen - 1), block);
    int nRepeat = 1, nStep = 1;
    size_t nNext = FindUnescaped(sText, '[', nClose + 1);
    if (IsDigitAt(sText, nClose + 1)) {
      size_t nEnd = ReadNumber(sText, nClose + 1, nRepeat);
      size_t nPlus = sText.find('+', nEnd);
      if (nPlus != tstring::npos && nPlus < nNext && IsDigitAt(sText, nPlus + 1)) ReadNumber(sText, nPlus + 1, nStep);
    }
    grid.vecRepeats.push_back(nRepeat);
    grid.vecBlocks.push_back(block);
    grid.vecSteps.push_back(nStep);
    nOpen = nNext;
  }
}

void CKnowledgeParser::ParseBlock(const tstring& sText, _tBlockOrg& block) {
  tstring s = sText;
  if (!s.empty() && s[0] == '-') {
    block.is_not = 1;
    s.erase(0, 1);
    if (!s.empty() && s[0] == '(') {
      s.erase(0, 1);
      size_t nClose = FindUnescaped(s, ')', 0);
      if (nClose != tstring::npos) s.erase(nClose);
    }
  }
  size_t nStart = 0;
  for (size_t nSemi = FindUnescaped(s, ';', 0); nSemi != tstring::npos; nSemi = FindUnescaped(s, ';', nStart)) {
    block.vecElems.push_back(UnitStandard(s.substr(nStart, nSemi - nStart)));
    nStart = nSemi + 1;
  }
  if (nStart < s.size()) block.vecElems.push_back(UnitStandard(s.substr(nStart)));
}

tstring CKnowledgeParser::GetBlockStr(const _tBlockOrg& block) {
  tstring s = "[";
  if (block.is_not) s += "-(";
  for (size_t i = 0; i < block.vecElems.size(); ++i) {
    if (i) s += ';';
    s += Escape(block.vecElems[i]);
  }
  // An empty last element needs its ';' to survive a new reading.
  if (!block.vecElems.empty() && block.vecElems.back().empty()) s += ';';
  if (block.is_not) s += ')';
  return s + "]";
}

tstring CKnowledgeParser::GetGridStr(const _tGridOrg& grid, int nStep) {
  tstring s = "{";
  for (size_t i = 0; i < grid.vecBlocks.size(); ++i) {
    s += GetBlockStr(grid.vecBlocks[i]);
    int nRepeat = i < grid.vecRepeats.size() ? grid.vecRepeats[i] : 1;
    int nBlockStep = i < grid.vecSteps.size() ? grid.vecSteps[i] : 1;
    if (nRepeat != 1 || nBlockStep > 1) s += std::to_string(nRepeat);
    if (nBlockStep > 1) s += "+" + std::to_string(nBlockStep);
  }
  s += "}";
  if (grid.is_selected) s += "s";
  if (nStep != 1 && nStep >= 0) s += "+" + std::to_string(nStep);
  return s;
}

tstring CKnowledgeParser::GetKnowledgeStr(const _tKnowledgeOrg& knowledge) {
  tstring s;
  for (size_t i = 0; i < knowledge.vecGrids.size(); ++i)
    s += GetGridStr(knowledge.vecGrids[i], i < knowledge.vecSteps.size() ? knowledge.vecSteps[i] : 1);
  return s;
}

Json::Value CKnowledgeParser::ToJson(const _tKnowledgeOrg& knowledge) {
  Json::Value root(Json::objectValue);
  root["text"] = knowledge.text;
  root["grids"] = Json::Value(Json::arrayValue);
  for (const _tGridOrg& grid : knowledge.vecGrids) {
    Json::Value jsonGrid(Json::objectValue);
    jsonGrid["blocks"] = Json::Value(Json::arrayValue);
    for (const _tBlockOrg& block : grid.vecBlocks) {
      Json::Value jsonBlock(Json::objectValue);
      jsonBlock["elems"] = Json::Value(Json::arrayValue);
      for (const tstring& sElem : block.vecElems) jsonBlock["elems"].append(sElem);
      jsonBlock["is_not"] = block.is_not;
      jsonGrid["blocks"].append(jsonBlock);
    }
    jsonGrid["repeats"] = Json::Value(Json::arrayValue);
    for (int n : grid.vecRepeats) jsonGrid["repeats"].append(n);
    jsonGrid["steps"] = Json::Value(Json::arrayValue);
    for (int n : grid.vecSteps) jsonGrid["steps"].append(n);
    jsonGrid["is_selected"] = grid.is_selected;
    root["grids"].append(jsonGrid);
  }
  root["steps"] = Json::Value(Json::arrayValue);
  for (int n : knowledge.vecSteps) root["steps"].append(n);
  return root;
}

Json::Value CKnowledgeParser::ZYGStr2Json(const tstring& sPattern, tstring& sError) {
  _tKnowledgeOrg knowledge;
  if (ParseKnowledge(sPattern, knowledge, sError) != 1) return Json::Value();
  return ToJson(knowledge);
}
