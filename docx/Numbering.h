#pragma once
// The automatic numbering definitions of a document (word/numbering.xml),
// read once and then only looked up.
//
// What is read:
//   <w:abstractNum w:abstractNumId="A">   a list's levels, <w:lvl w:ilvl="0..8">
//   <w:num w:numId="N">                   what paragraphs name: <w:abstractNumId w:val="A"/>
//     <w:lvlOverride w:ilvl="L">          <w:startOverride w:val> and/or a whole <w:lvl>
//                                         that replaces level L for this num only
// Levels of an abstract numbering that only says <w:numStyleLink w:val="X"/>
// are those of the abstract numbering behind style X: the one of the num that
// style X's own numPr names (mapStyleNum), else the one that says
// <w:styleLink w:val="X"/>. Links are followed through chains; a chain that
// comes back on itself or leads nowhere leaves the abstract numbering with
// its own levels. Counters still belong to the abstract numbering the num
// names: a link lends levels, not a list.
//
// Hostile text: elements and attributes may be missing or cut off; an id that
// is not a number, a negative abstractNumId, a numId below 1, an ilvl
// outside 0..8 drop what they name; the first definition of an id counts;
// start values below 0 count as 0. An element that is not closed ends at the
// next element of its own name or at the end of the text.
#include <map>
#include <vector>

#include "utility/TString.h"

inline constexpr int kNumLevels = 9;  // ilvl 0..8

struct _tNumLevel {             // one <w:lvl> after overrides
  int start = 1;                // <w:start>
  tstring num_fmt = "decimal";  // <w:numFmt w:val>
  tstring lvl_text;             // <w:lvlText w:val>, e.g. "第%1章", "%1.%2", "（%1）"
  bool is_lgl = false;          // <w:isLgl/>: lower levels shown in decimal
  int restart = -1;             // <w:lvlRestart w:val>; -1 = restart after any higher level
  tstring suffix = "tab";       // <w:suff w:val>: tab, space, nothing
  tstring p_style;              // <w:pStyle w:val> linked to this level
};

class CNumbering {
 public:
  // Reads numbering.xml text (bounded search only, never past pEnd). False
  // when it holds no numbering at all. mapStyleNum: paragraph style id ->
  // numId that the style's own <w:numPr> gives (the caller reads styles.xml);
  // used to follow <w:numStyleLink>/<w:styleLink> between abstract numberings.
  // Loading again forgets what was loaded before.
  bool Load(const char* pXml, const char* pEnd, const std::map<tstring, int>& mapStyleNum = {});

  // The level that num nNumId shows at nIlvl: its replacement from a
  // lvlOverride, else its abstract numbering's (or the linked one's). Null
  // when unknown.
  const _tNumLevel* Level(int nNumId, int nIlvl) const;

  // The value level nIlvl of num nNumId starts at: its startOverride when it
  // has one, else the level's start; -1 when the level is unknown.
  int Start(int nNumId, int nIlvl) const;

  // Whether num nNumId gives level nIlvl a startOverride.
  bool HasStartOverride(int nNumId, int nIlvl) const;

  // The abstract numbering whose counters num nNumId moves; -1 when the num
  // is unknown or names no abstract numbering that was read.
  int AbstractOf(int nNumId) const;

  // The level of num nNumId that is linked to paragraph style sStyleId by
  // <w:pStyle>, for a paragraph whose style gives a numId but no ilvl; -1 when none.
  int LevelOfStyle(int nNumId, const tstring& sStyleId) const;

  bool Empty() const { return m_mapAbstract.empty() && m_mapNum.empty(); }

 private:
  struct _tAbstract {
    int levels[kNumLevels];     // index into m_vecLevels; -1 = not defined
    int levels_from = -1;       // the abstract numbering whose levels apply (numStyleLink)
    tstring num_style_link;
    tstring style_link;
  };
  struct _tNum {
    int abstract_id = -1;
    int levels[kNumLevels];           // replacement level, index into m_vecLevels; -1 = none
    int start_override[kNumLevels];   // -1 = none
  };

  void ReadAbstract(const char* p, const char* pEnd);
  void ReadNum(const char* p, const char* pEnd);
  int AddLevel(const char* p, const char* pEnd);
  void ResolveLinks(const std::map<tstring, int>& mapStyleNum);
  int LinkTarget(int nAbstractId, const std::map<tstring, int>& mapStyleNum,
                 const std::map<tstring, int>& mapStyleLink) const;
  const _tNum* Num(int nNumId) const;

  std::map<int, _tAbstract> m_mapAbstract;
  std::map<int, _tNum> m_mapNum;
  std::vector<_tNumLevel> m_vecLevels;  // every <w:lvl> read, shared by index
};
