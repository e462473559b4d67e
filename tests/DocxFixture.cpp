#include "DocxFixture.h"

#include <minizip/zip.h>

bool WriteZip(const std::string& sFile, const std::vector<std::pair<std::string, std::string>>& vecEntries,
              bool bStore) {
  zipFile zip = zipOpen64(sFile.c_str(), 0);
  if (zip == nullptr) return false;
  bool bOk = true;
  for (const auto& entry : vecEntries) {
    zip_fileinfo info = {};
    bOk = bOk && zipOpenNewFileInZip(zip, entry.first.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                     bStore ? 0 : Z_DEFLATED, bStore ? 0 : Z_DEFAULT_COMPRESSION) == ZIP_OK;
    bOk = bOk && zipWriteInFileInZip(zip, entry.second.data(), (unsigned)entry.second.size()) == ZIP_OK;
    bOk = bOk && zipCloseFileInZip(zip) == ZIP_OK;
  }
  return zipClose(zip, nullptr) == ZIP_OK && bOk;
}

std::string DocumentXml(const std::string& sBody) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
         "<w:document xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\" "
         "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
         "<w:body>" + sBody + "<w:sectPr/></w:body></w:document>";
}

std::string TextRun(const std::string& sText, const std::string& sProps) {
  return "<w:r>" + (sProps.empty() ? "" : "<w:rPr>" + sProps + "</w:rPr>") + "<w:t xml:space=\"preserve\">" + sText +
         "</w:t></w:r>";
}

std::string Para(const std::string& sRuns, const std::string& sProps) {
  return "<w:p>" + (sProps.empty() ? "" : "<w:pPr>" + sProps + "</w:pPr>") + sRuns + "</w:p>";
}

bool WriteDocx(const std::string& sFile, const std::string& sBody,
               std::vector<std::pair<std::string, std::string>> vecParts) {
  vecParts.insert(vecParts.begin(), {"word/document.xml", DocumentXml(sBody)});
  vecParts.insert(vecParts.begin(), {"[Content_Types].xml", "<?xml version=\"1.0\"?><Types/>"});
  return WriteZip(sFile, vecParts);
}
