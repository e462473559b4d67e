#include "docx/PaperStructure.h"

#include <strings.h>

#include <initializer_list>
#include <cstring>

#include "utility/TextNormalizer.h"

namespace {

bool StartsWith(const tstring& s, const char* szPrefix, bool bNoCase = false) {
  const size_t n = strlen(szPrefix);
  return s.size() >= n && (bNoCase ? strncasecmp(s.c_str(), szPrefix, n) == 0 : s.compare(0, n, szPrefix) == 0);
}

bool Is(const tstring& s, std::initializer_list<const char*> names, bool bNoCase = false) {
  for (const char* szName : names)
    if (bNoCase ? strcasecmp(s.c_str(), szName) == 0 : s == szName) return true;
  return false;
}

}  // namespace

int CPaperStructure::CaptionLevel(const tstring& s) {
  if (Is(s, {"摘要", "中文摘要", "摘要:"})) return kAbstractCaptionCn;
  if (Is(s, {"Abstract", "Abstract:"}, true)) return kAbstractCaptionEn;
  if (StartsWith(s, "关键词") || StartsWith(s, "关键字")) return kKeywordCn;
  if (StartsWith(s, "Keyword", true) || StartsWith(s, "Key words", true)) return kKeywordEn;
  if (Is(s, {"参考文献"}) || Is(s, {"References", "Bibliography"}, true)) return kReferenceCaption;
  if (Is(s, {"致谢", "谢辞", "致谢辞"}) || Is(s, {"Acknowledgements", "Acknowledgments", "Acknowledgement"}, true))
    return kAcknowledge;
  if (StartsWith(s, "作者")) return kAuthor;
  if (StartsWith(s, "专业")) return kMajor;
  if (StartsWith(s, "导师") || StartsWith(s, "指导教师")) return kSupervisor;
  return 0;
}

namespace {

// The level of the paragraphs that follow a caption.
int BlockLevel(int nCaption) {
  switch (nCaption) {
    case kAbstractCaptionCn: return kAbstractTextCn;
    case kAbstractCaptionEn: return kAbstractTextEn;
    case kReferenceCaption: return kReferenceText;
    default: return 0;
  }
}

}  // namespace

void CPaperStructure::Classify(std::vector<_tParagraph>& vecParagraph) {
  int nBlock = 0;               // level of the block being read, 0 outside
  bool bChapterSeen = false, bMainMarked = false;  // a chapter heading since the last front caption
  for (_tParagraph& para : vecParagraph) {
    if (para.level != 0 && para.level != 1) {
      if (para.level > 1 && para.level <= 4) nBlock = 0;
      continue;
    }
    const tstring s = CompactTitle(para.text);
    const int nLevel = s.size() <= 80 ? CaptionLevel(s) : 0;
    if (nLevel != 0) {
      para.level = nLevel;
      nBlock = BlockLevel(nLevel);
      if (!bMainMarked) bChapterSeen = false;  // a cover title before the abstract is no chapter
      continue;
    }
    if (para.level == 1) {
      nBlock = 0;
      bChapterSeen = true;
      continue;
    }
    if (nBlock != 0) {
      para.level = nBlock;
    } else if (bChapterSeen && !bMainMarked) {
      para.level = kMainText;
      bMainMarked = true;
    }
  }
}
