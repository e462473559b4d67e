#include "reviser/DocReviser.h"

#include <minizip/zip.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "checker/ID2Message.h"
#include "utility/CodePage.h"
#include "utility/ErrorLog.h"
#include "utility/FileUtil.h"
#include "utility/Num2FontSize.h"
#include "utility/XmlScan.h"

namespace fs = std::filesystem;

namespace {

const uint32_t kWholeDocument = 0xFFFFFFFFu;
const char kRevisionId[] = "005527A2";

void Fail(const tstring& sWhy) {
  SetLastError(sWhy);
  WriteError(sWhy);
}

// The character an entity stands for, and its length; 0 for none we know.
char DecodeEntity(const tstring& sXml, size_t i, size_t& nLength) {
  static const struct {
    const char* szEntity;
    char c;
  } kEntities[] = {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
  for (const auto& e : kEntities) {
    nLength = strlen(e.szEntity);
    if (sXml.compare(i, nLength, e.szEntity) == 0) return e.c;
  }
  nLength = 1;
  return 0;
}

// The new text as run content: XML-escaped, with <superscript>, <subscript>
// and <baseline> marks turned into runs of that vertical alignment.
tstring NormalizeText(const tstring& sText) {
  tstring sOut;
  for (size_t i = 0; i < sText.size();) {
    bool bMark = false;
    for (const char* szValue : {"superscript", "subscript", "baseline"}) {
      const tstring sOpen = tstring("<") + szValue + ">", sClose = tstring("</") + szValue + ">";
      if (sText.compare(i, sOpen.size(), sOpen) == 0) {
        sOut += tstring("</w:t></w:r><w:r><w:rPr><w:vertAlign w:val=\"") + szValue +
                "\"/></w:rPr><w:t xml:space=\"preserve\">";
        i += sOpen.size();
        bMark = true;
      } else if (sText.compare(i, sClose.size(), sClose) == 0) {
        sOut += "</w:t></w:r><w:r><w:t xml:space=\"preserve\">";
        i += sClose.size();
        bMark = true;
      }
      if (bMark) break;
    }
    if (!bMark) sOut += EscapeXml(sText.substr(i++, 1));
  }
  return sOut;
}

// Replaces every occurrence of sFrom by sTo; the number replaced.
int ReplaceAll(tstring& sText, const tstring& sFrom, const tstring& sTo) {
  int nCount = 0;
  for (size_t i = sText.find(sFrom); i != tstring::npos; i = sText.find(sFrom, i + sTo.size())) {
    sText.replace(i, sFrom.size(), sTo);
    nCount++;
  }
  return nCount;
}

// Reads a part (empty when absent), edits it and writes it back whole.
bool EditPart(const tstring& sFile, const std::function<void(tstring&)>& fnEdit) {
  tstring sText;
  ReadFileText(sFile, sText);
  fnEdit(sText);
  std::error_code ec;
  fs::create_directories(fs::path(sFile).parent_path(), ec);
  return WriteFileReplacing(sFile, [&sText](FILE* fp) { return fwrite(sText.data(), 1, sText.size(), fp) == sText.size(); });
}

// "<Root .../>" becomes "<Root ...></Root>", so that children can go in.
void OpenEmptyRoot(tstring& sXml, const tstring& sRoot) {
  if (sXml.rfind("</" + sRoot + ">") != tstring::npos) return;
  size_t nRoot = sXml.find("<" + sRoot), nEnd = nRoot == tstring::npos ? nRoot : sXml.find('>', nRoot);
  if (nEnd != tstring::npos && sXml[nEnd - 1] == '/') sXml.replace(nEnd - 1, 2, "></" + sRoot + ">");
}

tstring TimeStamp() {
  time_t tNow = time(nullptr);
  struct tm tmNow;
  localtime_r(&tNow, &tmNow);
  char sStamp[32];
  strftime(sStamp, sizeof(sStamp), "_Revised_%Y%m%d%H%M%S", &tmNow);
  return sStamp;
}

// Every regular file under a folder, as paths relative to it, the content
// types first; links and anything else are left out.
std::vector<tstring> PackageFiles(const tstring& sFolder) {
  std::vector<tstring> vecFiles;
  std::error_code ec;
  for (fs::recursive_directory_iterator it(sFolder, ec), end; !ec && it != end; it.increment(ec))
    if (it->symlink_status(ec).type() == fs::file_type::regular)
      vecFiles.push_back(fs::relative(it->path(), sFolder, ec).generic_string());
  std::sort(vecFiles.begin(), vecFiles.end(), [](const tstring& a, const tstring& b) {
    bool bTypesA = a == "[Content_Types].xml", bTypesB = b == "[Content_Types].xml";
    return bTypesA != bTypesB ? bTypesA : a < b;
  });
  return vecFiles;
}

bool AddToZip(zipFile zip, const tstring& sFolder, const tstring& sName) {
  tstring sContent;
  if (!ReadFileText(sFolder + "/" + sName, sContent)) return false;
  zip_fileinfo info = {};
  bool bOk = zipOpenNewFileInZip64(zip, sName.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                                   Z_DEFAULT_COMPRESSION, sContent.size() > 0xFFFFFFFFu) == ZIP_OK;
  bOk = bOk && zipWriteInFileInZip(zip, sContent.data(), (unsigned)sContent.size()) == ZIP_OK;
  return zipCloseFileInZip(zip) == ZIP_OK && bOk;
}

}  // namespace

// The document text of a paragraph: its w:t contents, entities decoded, with
// the XML position and length each byte came from, and for each byte the run
// properties ("<w:rPr>...</w:rPr>" or "") of the run that holds it.
struct CDocReviser::_tTextMap {
  tstring sPlain;
  std::vector<size_t> vecPos, vecLen, vecPiece;
  std::vector<tstring> vecRunProps;  // per w:t piece

  explicit _tTextMap(const tstring& sXml) {
    for (size_t i = sXml.find("<w:t"); i != tstring::npos; i = sXml.find("<w:t", i + 4)) {
      if (i + 4 >= sXml.size() || (sXml[i + 4] != '>' && sXml[i + 4] != ' ')) continue;  // w:tab, w:tbl ...
      size_t nOpenEnd = sXml.find('>', i);
      if (nOpenEnd == tstring::npos || sXml[nOpenEnd - 1] == '/') continue;
      size_t nClose = sXml.find("</w:t>", nOpenEnd);
      if (nClose == tstring::npos) break;
      vecRunProps.push_back(RunProps(sXml, i));
      for (size_t j = nOpenEnd + 1; j < nClose;) {
        size_t nLength;
        char c = sXml[j] == '&' ? DecodeEntity(sXml, j, nLength) : (nLength = 1, sXml[j]);
        sPlain += c ? c : sXml[j];
        vecPos.push_back(j);
        vecLen.push_back(nLength);
        vecPiece.push_back(vecRunProps.size() - 1);
        j += nLength;
      }
      i = nClose;
    }
  }
  // Where the XML of the text byte at nPlain ends.
  size_t XmlEnd(size_t nPlain) const { return vecPos[nPlain] + vecLen[nPlain]; }

  // The properties of the run that holds the w:t at nText.
  static tstring RunProps(const tstring& sXml, size_t nText) {
    size_t nRun = nText;
    while ((nRun = sXml.rfind("<w:r", nRun - 1)) != tstring::npos && nRun > 0)
      if (sXml[nRun + 4] == '>' || sXml[nRun + 4] == ' ') break;
    if (nRun == tstring::npos) return "";
    size_t nProps = sXml.find("<w:rPr>", nRun), nPropsEnd = sXml.find("</w:rPr>", nRun);
    if (nProps == tstring::npos || nProps > nText || nPropsEnd == tstring::npos || nPropsEnd > nText) return "";
    return sXml.substr(nProps, nPropsEnd + 8 - nProps);
  }
};

CDocReviser::CDocReviser(const CNum2FontSize* pFontSizes, const CID2Message* pMessages)
    : m_pFontSizes(pFontSizes), m_pMessages(pMessages) {}

void CDocReviser::SetTracking(bool bTrack, const tstring& sAuthor) {
  m_bTrack = bTrack;
  m_sAuthor = sAuthor.empty() ? "Tarvos" : sAuthor;
}

// Change and comment ids start above every w:id the document uses.
void CDocReviser::StartRevision(const tstring& sDocument) {
  m_vecComments.clear();
  long nMax = 0;
  for (size_t i = sDocument.find(" w:id=\""); i != tstring::npos; i = sDocument.find(" w:id=\"", i + 1))
    nMax = std::max(nMax, strtol(sDocument.c_str() + i + 7, nullptr, 10));
  m_nNextId = (int)std::min(nMax, 1L << 30) + 1;
  time_t tNow = time(nullptr);
  struct tm tmNow;
  gmtime_r(&tNow, &tmNow);
  char sDate[32];
  strftime(sDate, sizeof(sDate), "%Y-%m-%dT%H:%M:%SZ", &tmNow);
  m_sDate = sDate;
}

const char* CDocReviser::Revise(const char* sReviseXMLFile) {
  m_sFilename.clear();
  m_vecWholeDocument.clear();
  std::unique_ptr<CCheckResult> pResult(new CCheckResult(m_pMessages));
  if (sReviseXMLFile == nullptr || pResult->Import(sReviseXMLFile) != 1) {
    Fail(tstring("Failed read file ") + (sReviseXMLFile ? sReviseXMLFile : ""));
    return nullptr;
  }
  const tstring sWorkDir = UTF8ToANSI(pResult->m_sPath);
  const tstring sDocumentFile = sWorkDir + "/" + "word/document.xml";
  tstring sDocument;
  if (pResult->m_sPath.empty() || !ReadFileText(sDocumentFile, sDocument)) {
    Fail("Failed read file " + sDocumentFile);
    return nullptr;
  }
  StartRevision(sDocument);
  const std::vector<_tCheckResult>& vecFindings = pResult->GetFindings();
  for (size_t i = vecFindings.size(); i-- > 0;) ParagraphRevise(sDocument, vecFindings[i]);
  if (!m_vecWholeDocument.empty()) AddInfoInEnding(sDocument);
  if (!m_vecComments.empty() && !WriteComments(sWorkDir)) return nullptr;
  if (!WriteFileReplacing(sDocumentFile, [&sDocument](FILE* fp) {
        return fwrite(sDocument.data(), 1, sDocument.size(), fp) == sDocument.size();
      })) {
    Fail("Fail write file " + sDocumentFile);
    return nullptr;
  }
  return GenerateNewDocx(sWorkDir, UTF8ToANSI(pResult->m_sFilename)) ? m_sFilename.c_str() : nullptr;
}

int CDocReviser::ParagraphRevise(tstring& sDocument, const _tCheckResult& result) {
  if (result.para_id == kWholeDocument) {
    m_vecWholeDocument.insert(m_vecWholeDocument.begin(), result);  // applied last first: keep their order
    return 2;
  }
  if (result.org_str.empty()) return 1;
  size_t nStart, nEnd;
  if (!ParagraphBounds(sDocument, result.para_id, nStart, nEnd)) return -2;
  tstring sParagraph = sDocument.substr(nStart, nEnd - nStart);
  int nStatus = FieldRevise(sParagraph, result);
  if (nStatus != 1) return nStatus;
  if (m_bTrack) AddComment(sParagraph, result);
  sDocument.replace(nStart, nEnd - nStart, sParagraph);
  return 1;
}

bool CDocReviser::ParagraphBounds(const tstring& sDocument, uint32_t nId, size_t& nStart, size_t& nEnd) const {
  char sId[16];
  snprintf(sId, sizeof(sId), "%8X", nId);
  // The id is the offset of the "p" of the paragraph's "<w:p" tag.
  nStart = (size_t)nId - 3;
  if (nId < 3 || nStart + 5 > sDocument.size() || sDocument.compare(nStart, 4, "<w:p") != 0 ||
      (sDocument[nStart + 4] != ' ' && sDocument[nStart + 4] != '>')) {
    Fail(tstring("Cannot locate para with offset = ") + sId);
    return false;
  }
  nEnd = sDocument.find("</w:p>", nStart);
  if (nEnd == tstring::npos) {
    Fail(tstring("Cannot locate para ending with offset = ") + sId);
    return false;
  }
  nEnd += 6;
  return true;
}

int CDocReviser::FieldRevise(tstring& sParagraph, const _tCheckResult& result) {
  switch (result.field_id) {
    case 0: return FontRevise(sParagraph, result);
    case 1: return SizeRevise(sParagraph, result);
    case 2: return TextRevise(sParagraph, result);
    case 3: return StyleRevise(sParagraph, result);
    case 4: return LineSpaceRevise(sParagraph, result);
    default: return 1;  // content: nothing to edit in the DOCX
  }
}

int CDocReviser::FontRevise(tstring& sParagraph, const _tCheckResult& result) {
  const tstring sEastAsia = "w:eastAsia=\"" + EscapeXml(result.new_str) + "\" ";
  int nCount = BlockRevise(sParagraph, "w:rPr", [&](tstring& sProps) {
    int n = ReplaceAll(sProps, "\"" + result.org_str + "\"", "\"" + EscapeXml(result.new_str) + "\"");
    if (n == 0) return 0;
    for (size_t i = sProps.find("<w:rFonts "); i != tstring::npos; i = sProps.find("<w:rFonts ", i + 1)) {
      size_t nClose = sProps.find('>', i);
      if (nClose != tstring::npos && sProps.substr(i, nClose - i).find("w:eastAsia=\"") == tstring::npos)
        sProps.insert(i + 10, sEastAsia);
    }
    return n;
  });
  if (nCount == 0) {
    Fail("Cannot locate \"" + result.org_str + "\" \"" + result.new_str + "\"");
    return -1;
  }
  return 1;
}

// Sizes change only in the size tags: w:val of the same number elsewhere
// (kerning, widths) means something else.
int CDocReviser::SizeRevise(tstring& sParagraph, const _tCheckResult& result) {
  const int nOld = m_pFontSizes ? m_pFontSizes->GetSize(result.org_str) : -1;
  const int nNew = m_pFontSizes ? m_pFontSizes->GetSize(result.new_str) : -1;
  int nCount = 0;
  if (nOld > 0 && nNew > 0)
    nCount = BlockRevise(sParagraph, "w:rPr", [&](tstring& sProps) {
      int n = 0;
      for (const char* szTag : {"<w:sz ", "<w:szCs "})
        n += ReplaceAll(sProps, tstring(szTag) + "w:val=\"" + std::to_string(nOld) + "\"",
                        tstring(szTag) + "w:val=\"" + std::to_string(nNew) + "\"");
      return n;
    });
  if (nCount == 0) {
    Fail("Cannot locate w:val=\"" + std::to_string(nOld) + "\" w:val=\"" + std::to_string(nNew) + "\"");
    return -1;
  }
  return 1;
}

int CDocReviser::StyleRevise(tstring& sParagraph, const _tCheckResult& result) {
  const tstring sNew = "<w:pStyle w:val=\"" + EscapeXml(result.new_str) + "\"/>";
  tstring sTried;
  int nCount = BlockRevise(sParagraph, "w:pPr", [&](tstring& sProps) {
    tstring sOld = "<w:pStyle w:val=\"" + result.org_str + "\"/>";
    size_t nAt = sProps.find(sOld);
    if (nAt == tstring::npos) {
      sOld = "<w:outlineLvl w:val=\"" + std::to_string(atoi(result.org_str.c_str())) + "\"/>";
      nAt = sProps.find(sOld);
    }
    sTried = sOld;
    if (nAt == tstring::npos) return 0;
    if (result.revise_type == 1 || result.revise_type == 2) sProps.erase(nAt, sOld.size());
    if (result.revise_type == 0 || result.revise_type == 1) sProps.insert(nAt, sNew);
    return 1;
  });
  if (nCount == 0) {
    Fail("Cannot locate " + sTried + " " + sNew);
    return -1;
  }
  return 1;
}

int CDocReviser::LineSpaceRevise(tstring& sParagraph, const _tCheckResult& result) {
  const tstring sOld = "w:line=\"" + std::to_string(atoi(result.org_str.c_str()) * 20) + "\"";
  const tstring sNew = "w:line=\"" + std::to_string(atoi(result.new_str.c_str()) * 20) + "\"";
  int nCount = BlockRevise(sParagraph, "w:pPr", [&](tstring& sProps) {
    size_t nAt = sProps.find(sOld);
    if (nAt == tstring::npos) return 0;
    sProps.replace(nAt, sOld.size(), sNew);
    return 1;
  });
  if (nCount == 0) {
    Fail("Cannot locate " + sOld + " " + sNew);
    return -1;
  }
  return 1;
}

int CDocReviser::BlockRevise(tstring& sParagraph, const char* szBlock, const std::function<int(tstring&)>& fnEdit) {
  const tstring sOpen = tstring("<") + szBlock + ">", sClose = tstring("</") + szBlock + ">";
  int nCount = 0;
  for (size_t i = sParagraph.find(sOpen); i != tstring::npos; i = sParagraph.find(sOpen, i + 1)) {
    const size_t nStart = i + sOpen.size(), nEnd = sParagraph.find(sClose, nStart);
    if (nEnd == tstring::npos) break;
    const tstring sOld = sParagraph.substr(nStart, nEnd - nStart);
    tstring sNew = sOld;
    int n = fnEdit(sNew);
    if (n == 0) continue;
    nCount += n;
    if (m_bTrack) {
      // The old properties, without the run properties a paragraph's carry.
      tstring sBase = sOld;
      size_t nProps = sBase.find("<w:rPr>"), nPropsEnd = sBase.find("</w:rPr>");
      if (sOpen == "<w:pPr>" && nProps != tstring::npos && nPropsEnd != tstring::npos)
        sBase.erase(nProps, nPropsEnd + 8 - nProps);
      sNew += "<" + tstring(szBlock) + "Change " + ChangeAttributes() + ">" + sOpen + sBase + sClose + "</" +
              szBlock + "Change>";
    }
    sParagraph.replace(nStart, nEnd - nStart, sNew);
    i = nStart + sNew.size();
  }
  return nCount;
}

tstring CDocReviser::ChangeAttributes() {
  return "w:id=\"" + std::to_string(m_nNextId++) + "\" w:author=\"" + EscapeXml(m_sAuthor) + "\" w:date=\"" +
         m_sDate + "\"";
}

int CDocReviser::TextRevise(tstring& sParagraph, const _tCheckResult& result) {
  const bool bInsert = result.revise_type == 0 || result.revise_type == 4;
  if (!bInsert && result.revise_type != 1 && result.revise_type != 2 && result.revise_type != 3) return 1;
  const _tTextMap text(sParagraph);
  // The occurrence nearest the finding's offset: offsets may count text
  // (numbering labels, tabs) that the runs do not hold.
  auto fnDistance = [&result](size_t i) { return i > result.offset ? i - result.offset : result.offset - i; };
  size_t nFound = tstring::npos;
  for (size_t i = text.sPlain.find(result.org_str); i != tstring::npos; i = text.sPlain.find(result.org_str, i + 1))
    if (nFound == tstring::npos || fnDistance(i) < fnDistance(nFound)) nFound = i;
  if (nFound == tstring::npos) {
    Fail(result.org_str + " Cannot locate in the document.");
    return -1;
  }
  if (m_bTrack) return TrackedTextRevise(sParagraph, text, nFound, result);
  const size_t nOrgEnd = nFound + result.org_str.size();
  if (bInsert) {
    // A proposal that repeats the text it follows ("500" -> "500元") adds
    // only what is new after it; any other goes before the text.
    const bool bExtends = result.new_str.compare(0, result.org_str.size(), result.org_str) == 0;
    const size_t nAt = bExtends ? text.XmlEnd(nOrgEnd - 1) : text.vecPos[nFound];
    sParagraph.insert(nAt, NormalizeText(bExtends ? result.new_str.substr(result.org_str.size()) : result.new_str));
    return 1;
  }
  const size_t nInsertAt = text.vecPos[nFound];
  for (size_t i = nOrgEnd; i-- > nFound;) sParagraph.erase(text.vecPos[i], text.vecLen[i]);  // from the end
  if (result.revise_type != 2) sParagraph.insert(nInsertAt, NormalizeText(result.new_str));
  return 1;
}

// The same edit as w:del and w:ins runs: each run the old text touches is
// split around its part, which moves into a w:del run of the same
// properties; the new text goes into a w:ins run before it.
int CDocReviser::TrackedTextRevise(tstring& sParagraph, const _tTextMap& text, size_t nFound,
                                   const _tCheckResult& result) {
  const size_t nOrgEnd = nFound + result.org_str.size();
  const bool bInsert = result.revise_type == 0 || result.revise_type == 4;
  const bool bExtends = bInsert && result.new_str.compare(0, result.org_str.size(), result.org_str) == 0;
  auto fnSplit = [&](size_t nByte, const tstring& sMiddle) {
    return "</w:t></w:r>" + sMiddle + "<w:r>" + text.vecRunProps[text.vecPiece[nByte]] + "<w:t xml:space=\"preserve\">";
  };
  if (!bInsert) {
    for (size_t nEnd = nOrgEnd; nEnd > nFound;) {  // piece by piece, from the end
      size_t nBegin = nEnd - 1;
      while (nBegin > nFound && text.vecPiece[nBegin - 1] == text.vecPiece[nEnd - 1]) nBegin--;
      const size_t nXml = text.vecPos[nBegin], nXmlEnd = text.XmlEnd(nEnd - 1);
      const tstring sDeleted = sParagraph.substr(nXml, nXmlEnd - nXml);
      sParagraph.replace(nXml, nXmlEnd - nXml,
                         fnSplit(nBegin, "<w:del " + ChangeAttributes() + "><w:r>" +
                                             text.vecRunProps[text.vecPiece[nBegin]] +
                                             "<w:delText xml:space=\"preserve\">" + sDeleted + "</w:delText></w:r></w:del>"));
      nEnd = nBegin;
    }
  }
  if (result.revise_type == 2) return 1;
  const tstring sNew = bExtends ? result.new_str.substr(result.org_str.size()) : result.new_str;
  const size_t nByte = bExtends ? nOrgEnd - 1 : nFound;
  const size_t nAt = bExtends ? text.XmlEnd(nByte) : text.vecPos[nByte];
  sParagraph.insert(nAt, fnSplit(nByte, "<w:ins " + ChangeAttributes() + "><w:r>" + text.vecRunProps[text.vecPiece[nByte]] +
                                            "<w:t xml:space=\"preserve\">" + NormalizeText(sNew) + "</w:t></w:r></w:ins>"));
  return 1;
}

// The finding's message as a comment on its whole paragraph.
void CDocReviser::AddComment(tstring& sParagraph, const _tCheckResult& result) {
  const int nId = m_nNextId++;
  tstring sText = result.error_msg.empty() ? result.error_id : result.error_msg;
  if (!result.org_str.empty() || !result.new_str.empty()) sText += "（" + result.org_str + "→" + result.new_str + "）";
  m_vecComments.push_back({nId, sText});
  const tstring sId = std::to_string(nId);
  sParagraph.insert(sParagraph.size() - 6, "<w:commentRangeEnd w:id=\"" + sId + "\"/><w:r><w:commentReference w:id=\"" +
                                               sId + "\"/></w:r>");
  size_t nAfter = sParagraph.find("</w:pPr>");
  nAfter = nAfter != tstring::npos ? nAfter + 8 : sParagraph.find('>') + 1;
  sParagraph.insert(nAfter, "<w:commentRangeStart w:id=\"" + sId + "\"/>");
}

// Adds the comments to "word/comments.xml" (made when absent, with its
// relationship and content type).
bool CDocReviser::WriteComments(const tstring& sWorkDir) const {
  tstring sComments;
  for (const _tComment& c : m_vecComments)
    sComments += "<w:comment w:id=\"" + std::to_string(c.nId) + "\" w:author=\"" + EscapeXml(m_sAuthor) +
                 "\" w:date=\"" + m_sDate + "\" w:initials=\"T\"><w:p><w:r><w:t xml:space=\"preserve\">" +
                 EscapeXml(c.sText) + "</w:t></w:r></w:p></w:comment>";
  const tstring sFile = sWorkDir + "/word/comments.xml";
  tstring sXml;
  if (!ReadFileText(sFile, sXml) || sXml.rfind("</w:comments>") == tstring::npos)
    sXml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<w:comments "
           "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"></w:comments>";
  sXml.insert(sXml.rfind("</w:comments>"), sComments);
  bool bOk = EditPart(sFile, [&sXml](tstring& sText) { sText = sXml; });
  bOk = bOk && EditPart(sWorkDir + "/word/_rels/document.xml.rels", [](tstring& sText) {
          if (sText.find("relationships/comments\"") != tstring::npos) return;
          OpenEmptyRoot(sText, "Relationships");
          if (sText.rfind("</Relationships>") == tstring::npos)
            sText = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<Relationships "
                    "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\"></Relationships>";
          sText.insert(sText.rfind("</Relationships>"),
                       "<Relationship Id=\"rIdTarvosComments\" Type=\"http://schemas.openxmlformats.org/"
                       "officeDocument/2006/relationships/comments\" Target=\"comments.xml\"/>");
        });
  bOk = bOk && EditPart(sWorkDir + "/[Content_Types].xml", [](tstring& sText) {
          OpenEmptyRoot(sText, "Types");
          if (sText.find("/word/comments.xml") != tstring::npos || sText.rfind("</Types>") == tstring::npos) return;
          sText.insert(sText.rfind("</Types>"),
                       "<Override PartName=\"/word/comments.xml\" ContentType=\"application/"
                       "vnd.openxmlformats-officedocument.wordprocessingml.comments+xml\"/>");
        });
  if (!bOk) Fail("Fail write file " + sFile);
  return bOk;
}

void CDocReviser::AddInfoInEnding(tstring& sDocument) const {
  size_t nBodyEnd = sDocument.rfind("</w:body>");
  if (nBodyEnd == tstring::npos) return;
  // After the last paragraph or table, before the body's section properties.
  size_t nAt = nBodyEnd;
  for (const char* szEnd : {"</w:p>", "</w:tbl>"}) {
    size_t nFound = sDocument.rfind(szEnd, nBodyEnd);
    if (nFound != tstring::npos && (nAt == nBodyEnd || nFound + strlen(szEnd) > nAt)) nAt = nFound + strlen(szEnd);
  }
  auto fnPara = [](const tstring& sText, const char* szColour) {
    return tstring("<w:p w:rsidR=\"") + kRevisionId + "\" w:rsidRPr=\"" + kRevisionId + "\" w:rsidRDefault=\"" +
           kRevisionId + "\" w:rsidP=\"" + kRevisionId + "\"><w:r><w:rPr><w:color w:val=\"" + szColour +
           "\"/></w:rPr><w:t xml:space=\"preserve\">" + EscapeXml(sText) + "</w:t></w:r></w:p>";
  };
  tstring sAdded;
  for (const char* szId : {"100.1", "100.2"}) {
    const char* sTitle = m_pMessages ? m_pMessages->GetText(szId) : nullptr;
    if (sTitle && *sTitle) sAdded += fnPara(sTitle, "0000FF");
  }
  int nLine = 0;
  for (const _tCheckResult& result : m_vecWholeDocument) {
    tstring sLine = std::to_string(++nLine) + "." + result.error_msg;
    if (!result.new_str.empty()) sLine += " " + result.new_str;
    sAdded += fnPara(sLine, "FF0000");
  }
  sDocument.insert(nAt, sAdded);
}

bool CDocReviser::GenerateNewDocx(const tstring& sWorkDir, const tstring& sName) {
  const tstring sBase = sName.substr(0, sName.find("_Revised"));
  const tstring sTarget = sWorkDir + "/../" + sBase + TimeStamp() + ".docx";
  const tstring sTemp = sTarget + ".part";
  zipFile zip = zipOpen64(sTemp.c_str(), 0);
  if (zip == nullptr) {
    Fail("Fail write file " + sTemp);
    return false;
  }
  bool bOk = true;
  for (const tstring& sFile : PackageFiles(sWorkDir)) bOk = bOk && AddToZip(zip, sWorkDir, sFile);
  bOk = zipClose(zip, nullptr) == ZIP_OK && bOk;
  if (!bOk || rename(sTemp.c_str(), sTarget.c_str()) != 0) {
    remove(sTemp.c_str());
    Fail("Fail write file " + sTarget);
    return false;
  }
  m_sFilename = ANSIToUTF8(sTarget);
  return true;
}
