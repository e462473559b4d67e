#pragma once
// Builds small DOCX packages in code, so every fixture's content is visible
// in the test that uses it.
#include <string>
#include <utility>
#include <vector>

// Writes a zip with the given entries (name, content), deflated. bStore
// keeps them uncompressed. Returns false when the file cannot be written.
bool WriteZip(const std::string& sFile, const std::vector<std::pair<std::string, std::string>>& vecEntries,
              bool bStore = false);

// word/document.xml around a body: the namespaces a real document declares.
std::string DocumentXml(const std::string& sBody);

// A run of text, optionally with run properties.
std::string TextRun(const std::string& sText, const std::string& sProps = "");

// A paragraph of runs, optionally with paragraph properties.
std::string Para(const std::string& sRuns, const std::string& sProps = "");

// A minimal DOCX: document.xml with the body, plus any further parts.
bool WriteDocx(const std::string& sFile, const std::string& sBody,
               std::vector<std::pair<std::string, std::string>> vecParts = {});
