// The format check on fuzz bytes. The first byte chooses the report type
// (0 to 7) and whether the bytes are the document body or the template text;
// the other side is a fixed, well-formed one. Runs the order checks, the
// template comparison and the thesis reader.
#include <sys/stat.h>

#include <cstdint>
#include <fstream>
#include <string>

#include "FuzzSupport.h"
#include "checker/CheckResult.h"
#include "checker/DocFormatCheck.h"
#include "docx/DocFormat.h"
#include "docx/Document.h"
#include "docx/DocxPackage.h"
#include "docx/DocxParser.h"

namespace {

const char kDocument[] =
    "<w:document><w:body>"
    "<w:p><w:r><w:t>目录</w:t></w:r></w:p>"
    "<w:p><w:r><w:t>第一章 绪论</w:t></w:r><w:r><w:instrText>PAGEREF _Toc1</w:instrText></w:r></w:p>"
    "<w:p><w:pPr><w:outlineLvl w:val=\"0\"/><w:spacing w:line=\"480\"/></w:pPr><w:r><w:rPr><w:rFonts w:eastAsia=\"楷体\"/>"
    "<w:sz w:val=\"28\"/></w:rPr><w:t>第一章 绪论</w:t></w:r></w:p>"
    "<w:p><w:pPr><w:outlineLvl w:val=\"1\"/></w:pPr><w:r><w:t>1.3 方法</w:t></w:r></w:p>"
    "<w:p><w:r><w:drawing><a:blip r:embed=\"rId1\"/></w:drawing></w:r></w:p><w:p><w:r><w:t>图1-2 结构</w:t></w:r></w:p>"
    "<w:p><w:r><w:t>E = mc2 (1-1)</w:t></w:r></w:p>"
    "<w:p><w:pPr><w:outlineLvl w:val=\"0\"/></w:pPr><w:r><w:t>参考文献</w:t></w:r></w:p>"
    "<w:p><w:r><w:t>[2] 张三. 论文. 学报</w:t></w:r></w:p></w:body></w:document>";

const char kTemplate[] =
    "<DocTemplate><DocFormat><format>\r\n<type>TITLE1</type>\r\n<font>黑体:3;Arial:1;</font>\r\n<fontSize>32:3;</fontSize>"
    "\r\n<line_space>360:2;240:2;</line_space>\r\n<section_format>\r\n\t<prefix>第</prefix>\r\n\t<num_format>2</num_format>"
    "\r\n\t<post>章</post>\r\n\t<level>1</level>\r\n</section_format>\r\n</format>\n<format>\r\n<type>TEXT</type>\r\n"
    "<font>宋体:5;</font>\r\n<fontSize>24:5;</fontSize>\r\n</format>\n</DocFormat><Required>\r\n<item>摘要</item>\r\n"
    "<item>参考文献</item>\r\n</Required>\r\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  if (nSize < 1 || nSize > kMaxFuzzInput) return 0;
  const int nType = pData[0] % 8;
  const bool bTemplateFromFuzz = (pData[0] & 0x80) != 0;
  const std::string sBytes(reinterpret_cast<const char*>(pData + 1), nSize - 1);
  const std::string sFolder = FuzzPath("fmt_unzip");
  mkdir(sFolder.c_str(), 0777);
  mkdir((sFolder + "/word").c_str(), 0777);
  std::ofstream(sFolder + "/word/document.xml", std::ios::binary) << (bTemplateFromFuzz ? std::string(kDocument) : sBytes);
  CDocxPackage package;
  package.SetUnpacked(sFolder, "doc");
  CDocument doc;
  if (CDocxParser().ParseStruct(package, nType, "", false, doc) < 0) return 0;
  static CDocFormatCheck s_checker(FuzzPath("fmt_data").c_str(), nullptr);  // empty store: order checks only
  CCheckResult result;
  s_checker.Check(doc, result, nType, _tTemplateKeys::ForOrganization(""));
  std::map<std::string, int> mapType2Level;
  std::map<int, std::string> mapLevel2Type;
  SectionTypeMaps(mapLevel2Type, mapType2Level);
  CDocFormat format;
  const std::string sTemplate = bTemplateFromFuzz ? sBytes : std::string(kTemplate);
  format.Import(sTemplate.data(), sTemplate.data() + sTemplate.size(), mapType2Level);
  s_checker.CheckWithFormat(doc, result, format);
  result.SortResult();
  return 0;
}
