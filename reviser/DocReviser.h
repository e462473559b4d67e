#pragma once
// CDocReviser applies a list of findings to the document they were made on
// and packs the result as a new DOCX beside the original, which stays
// untouched.
//
// The findings come from a saved result (XML or JSON); its path names the
// working folder where the check unpacked the DOCX. A finding's paraId is the
// byte offset of its paragraph (the "p" of its "<w:p" tag) in that folder's
// "word/document.xml" as the check read it, so the findings are applied from the last to the first:
// an edit never moves a paragraph that is still to be edited. The edits work
// on the XML text of one paragraph:
//   font (field 0)        attribute values equal to the old font name become
//                         the new name; a w:rFonts without w:eastAsia gets one
//   size (1)              w:sz / w:szCs values of the old size name's
//                         half-points become the new size's
//   text (2)              the old text, found in the paragraph's w:t texts
//                         across runs (the occurrence nearest the finding's
//                         offset), is deleted and the new text put in its
//                         place; the run tags stay whole. An insertion goes
//                         before the old text, or, when the new text starts
//                         with it ("500" -> "500元"), its rest after it.
//                         <superscript>,
//                         <subscript> and <baseline> marks in the new text
//                         become runs with that vertical alignment
//   heading style (3)     the w:pStyle (or, when absent, the w:outlineLvl of
//                         the old level) is erased and/or replaced
//   line spacing (4)      the first w:line of the old value (points x 20)
//                         gets the new value
//   content (5)           nothing to edit
// revise_type 0 and 4 insert, 1 and 3 replace, 2 deletes; others change
// nothing, as does a finding without old text. Findings about the whole document (paraId FFFFFFFF) are listed in
// new paragraphs after the last one: a blue title of messages "100.1" and
// "100.2", then one red numbered line each. A finding that cannot be applied
// is skipped with its reason in the error log; the others are still applied.
//
// The edited text is written back over the working folder's document.xml,
// then every regular file of the folder (links are left out) is packed into
// "<name>_Revised_<YYYYmmddHHMMSS>.docx" beside the document, written through
// a temporary name; a name that already holds "_Revised" is cut there first,
// so revising a revised document does not pile up suffixes.
//
// With tracking on (SetTracking), the same edits are written as Word tracked
// changes by the given author, for a reviewer to accept or reject one by
// one: deleted text goes into w:del runs (w:delText), new text into w:ins
// runs, changed run and paragraph properties carry their old values in
// w:rPrChange / w:pPrChange; and each applied finding's message becomes a
// comment on its paragraph ("word/comments.xml", with its relationship and
// content type, added to or merged into the package).
#include <functional>
#include <memory>
#include <vector>

#include "checker/CheckResult.h"
#include "utility/TString.h"

class CID2Message;
class CNum2FontSize;

class CDocReviser {
 public:
  // The size-name table and the catalogue may be null (size edits and the
  // whole-document title are then skipped or bare); both must outlive it.
  explicit CDocReviser(const CNum2FontSize* pFontSizes = nullptr, const CID2Message* pMessages = nullptr);

  // Applies the findings of a saved result. Returns the revised DOCX's path,
  // valid until the next call; null with the reason as last error when the
  // result or the document cannot be read or the DOCX cannot be written.
  const char* Revise(const char* sReviseXMLFile);

  // Tracked changes by sAuthor from the next Revise on; off writes plain edits.
  void SetTracking(bool bTrack, const tstring& sAuthor);

  // Applies one finding to the document text. 1 applied (or nothing to do),
  // 2 listed at the end, negative when it cannot be applied (last error set).
  int ParagraphRevise(tstring& sDocument, const _tCheckResult& result);

 private:
  struct _tTextMap;
  struct _tComment {
    int nId;
    tstring sText;
  };
  bool ParagraphBounds(const tstring& sDocument, uint32_t nId, size_t& nStart, size_t& nEnd) const;
  int FieldRevise(tstring& sParagraph, const _tCheckResult& result);
  int FontRevise(tstring& sParagraph, const _tCheckResult& result);
  int SizeRevise(tstring& sParagraph, const _tCheckResult& result);
  int StyleRevise(tstring& sParagraph, const _tCheckResult& result);
  int LineSpaceRevise(tstring& sParagraph, const _tCheckResult& result);
  int TextRevise(tstring& sParagraph, const _tCheckResult& result);
  int TrackedTextRevise(tstring& sParagraph, const _tTextMap& text, size_t nFound, const _tCheckResult& result);
  // Applies a property edit to each w:rPr (or w:pPr) block of a paragraph,
  // recording the old block in a change element when tracking.
  int BlockRevise(tstring& sParagraph, const char* szBlock, const std::function<int(tstring&)>& fnEdit);
  tstring ChangeAttributes();
  void AddComment(tstring& sParagraph, const _tCheckResult& result);
  bool WriteComments(const tstring& sWorkDir) const;
  void AddInfoInEnding(tstring& sDocument) const;
  bool GenerateNewDocx(const tstring& sWorkDir, const tstring& sName);
  void StartRevision(const tstring& sDocument);

  const CNum2FontSize* m_pFontSizes;
  const CID2Message* m_pMessages;
  std::vector<_tCheckResult> m_vecWholeDocument;  // findings listed at the end
  tstring m_sFilename;                            // the revised DOCX
  bool m_bTrack = false;
  tstring m_sAuthor;
  tstring m_sDate;                  // of this revision, ISO 8601
  int m_nNextId = 0;                // for change and comment ids, above the document's own
  std::vector<_tComment> m_vecComments;
};
