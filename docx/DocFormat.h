#pragma once
// CDocFormat is one format template in memory: for each kind of paragraph
// (paragraph level of the document model) the fonts, sizes and line
// spacings it uses with their weights and its numbering pattern, plus the
// texts a conforming document must contain. It learns a template from a
// sample DOCX, writes the template text the store keeps, and reads it back.
// Comparing a document with it is the format check's job; once read, a
// template is not changed by a check.
//
// Template text (tags found by substring search; "\r\n" line breaks):
//   "<DocTemplate><DocFormat>"
//   per level, ascending: "<format>\r\n<type>" NAME "</type>" BODY "</format>\n"
//   "</DocFormat>" "<Required>\r\n" per text "<item>" TEXT "</item>\r\n" "</Required>\r\n"
//   "\r\n<DocType>%d</DocType>\r\n<Organization>..</Organization>\r\n<Area>..</Area>\r\n"
//   "<Argument>..</Argument>\r\n</DocTemplate>\r\n"   (only from GenerateDocFormat)
// BODY: "\r\n<font>" name ":%d;" ... "</font>" "\r\n<fontSize>" "%d:%d;" ... "</fontSize>"
//   "\r\n<line_space>" "%d:%d;" ... "</line_space>", then the numbering block
//   (_tSection_Format::Write) when a numbering was learnt.
// NAME is the level's section type name (TEXT, TITLE1 ...) or its number.
//
// In a sample document a required text stands between the markers "KKK"
// and "GGG" (the first marked text of a paragraph).
#include <map>
#include <memory>
#include <vector>

#include "docx/Paragraph.h"
#include "utility/PDAT.h"
#include "utility/SectionInfo.h"
#include "utility/TString.h"
#include "utility/WordList.h"

struct _tFormat {
  std::map<int, int> mapLineSpace2Freq;  // line spacing -> weight
  std::map<int, int> mapFontSize2Freq;   // size (half-points) -> weight
  std::map<tstring, int> mapFont2Freq;   // font name -> weight
  _tSection_Format section_format;       // numbering pattern; num_format -1 when none
};

typedef std::map<int, _tFormat> Level2Format;

// The 28 section type names of the template store and their paragraph levels.
const std::vector<std::pair<tstring, int>>& SectionTypeNames();
void SectionTypeMaps(std::map<int, tstring>& mapLevelId2Type, std::map<tstring, int>& mapType2LevelId);


class CDocFormat {
 public:
  CDocFormat() = default;
  CDocFormat(const CDocFormat&) = delete;  // owns the required-text dictionary
  CDocFormat& operator=(const CDocFormat&) = delete;

  // Learns the template of a sample DOCX and writes its whole text into
  // sResult (keys included). 1; -1 with "Fail read template doc file <name>".
  int GenerateDocFormat(int reportType, const char* sOrganization, const char* sArea, const char* sArgu,
                        const char* sTemplateFile, const std::map<int, tstring>& mapLevelId2Type, tstring& sResult);
  // Reads a template text. Returns 1.
  int Import(const char* pText, const char* pTextEnd, const std::map<tstring, int>& mapType2LevelId);
  // Writes the formats and required texts (items 1 to 3 of the layout).
  const char* Export(tstring& sResult, const std::map<int, tstring>& mapLevelId2Type) const;

  void FormatRead(const char* pText, const char* pTextEnd, _tFormat& format) const;
  void FormatOutput(const _tFormat& format, tstring& sResult) const;
  int Str2Level(const char* pText, const char* pTextEnd, const std::map<tstring, int>& mapType2LevelId) const;
  void Level2Str(int nLevel, tstring& sResult, const std::map<int, tstring>& mapLevelId2Type) const;
  // Adds a paragraph's font, size, spacing (weight nFreq) and, once per
  // level, its numbering pattern to a format.
  void FormatStatistic(const _tParagraph& para, _tFormat& format, int nFreq) const;

  // The format of a level; the body text's when the template lacks the
  // level (logged), an empty format when it lacks that too.
  const _tFormat& FormatOfLevel(int nLevel) const;
  // The id of each required text found in a text (normalised first).
  std::vector<int> FindRequired(const tstring& sText) const;

  bool IsEmpty() const { return m_leve2Format.empty(); }
  void Destroy();

  Level2Format m_leve2Format;            // paragraph level -> format
  std::vector<tstring> m_vecRequired;    // required texts, normalised
  std::unique_ptr<CPDAT> m_pDict;        // required text -> id
  std::unique_ptr<CWordList> m_pWordList;  // id -> required text
};
