#include "cli/ResultSummary.h"

#include <json/json.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

// The text of the first <sName>...</sName> of [nFrom, nTo); npos-safe.
bool Element(const std::string& s, const char* sName, size_t nFrom, size_t nTo, std::string& sValue) {
  const std::string sOpen = std::string("<") + sName + ">", sClose = std::string("</") + sName + ">";
  size_t nOpen = s.find(sOpen, nFrom);
  if (nOpen == std::string::npos || nOpen >= nTo) return false;
  size_t nStart = nOpen + sOpen.size(), nClose = s.find(sClose, nStart);
  if (nClose == std::string::npos || nClose > nTo) return false;
  sValue = s.substr(nStart, nClose - nStart);
  return true;
}

// Calls fn(from, to) for each <sName> block of [nFrom, nTo).
template <class F>
void ForEachBlock(const std::string& s, const char* sName, size_t nFrom, size_t nTo, F&& fn) {
  const std::string sOpen = std::string("<") + sName + ">", sClose = std::string("</") + sName + ">";
  for (size_t n = s.find(sOpen, nFrom); n != std::string::npos && n < nTo; n = s.find(sOpen, n + 1)) {
    size_t nEnd = s.find(sClose, n);
    if (nEnd == std::string::npos || nEnd > nTo) return;
    fn(n, nEnd);
  }
}

// The XML result: its statistics and chapter blocks come before the
// findings, whose texts are not escaped and are never read here.
bool ReadXml(const std::string& s, _tResultSummary& summary) {
  size_t nStats = s.find("<Statistics>"), nStatsEnd = s.find("</Statistics>");
  if (nStats == std::string::npos || nStatsEnd == std::string::npos) return false;
  std::string sValue;
  if (Element(s, "TotalCount", nStats, nStatsEnd, sValue)) summary.total = atoi(sValue.c_str());
  if (Element(s, "TotalScore", nStats, nStatsEnd, sValue)) summary.score = atof(sValue.c_str());
  ForEachBlock(s, "record", nStats, nStatsEnd, [&](size_t a, size_t b) {
    _tSummaryLine line;
    Element(s, "errorno", a, b, line.id);
    Element(s, "errormsg", a, b, line.message);
    if (Element(s, "count", a, b, sValue)) line.count = atoi(sValue.c_str());
    if (Element(s, "score", a, b, sValue)) line.score = atof(sValue.c_str());
    summary.lines.push_back(line);
  });
  size_t nChapters = s.find("<ChapterStat>"), nChaptersEnd = s.find("</ChapterStat>");
  if (nChapters != std::string::npos && nChaptersEnd != std::string::npos)
    ForEachBlock(s, "chapter", nChapters, nChaptersEnd, [&](size_t a, size_t b) {
      _tChapterLine chapter;
      Element(s, "text", a, b, chapter.text);
      if (Element(s, "error_count", a, b, sValue)) chapter.count = atoi(sValue.c_str());
      summary.chapters.push_back(chapter);
    });
  return true;
}

bool ReadJson(const std::string& s, _tResultSummary& summary) {
  Json::Value root;
  Json::CharReaderBuilder builder;
  JSONCPP_STRING sErrors;
  std::istringstream in(s);
  if (!Json::parseFromStream(builder, in, &root, &sErrors) || !root.isObject() || !root["Statistics"].isObject())
    return false;
  const Json::Value& stats = root["Statistics"];
  summary.total = stats["TotalCount"].asInt();
  summary.score = stats["TotalScore"].asDouble();
  for (const Json::Value& record : stats["records"])
    summary.lines.push_back(
        {record["errorno"].asString(), record["errormsg"].asString(), record["count"].asInt(), record["score"].asDouble()});
  for (const Json::Value& chapter : root["ChapterStat"]["chapter"])
    summary.chapters.push_back({chapter["text"].asString(), chapter["error_count"].asInt()});
  return true;
}

}  // namespace

bool ReadResultSummary(const std::string& sResult, _tResultSummary& summary) {
  summary = _tResultSummary();
  size_t nFirst = sResult.find_first_not_of(" \t\r\n");
  if (nFirst == std::string::npos || sResult[nFirst] != '{') return ReadXml(sResult, summary);
  try {
    return ReadJson(sResult, summary);
  } catch (const Json::Exception&) {  // a value of another type than the result format gives it
    return false;
  }
}

std::string ReadOutputFile(const std::string& sPath) {
  std::ifstream in(sPath, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}
