// tarvos: the command-line tool over the checking engine.
#include <CLI/CLI.hpp>

#include <iostream>

#include "cli/CheckCommand.h"
#include "cli/DataDir.h"
#include "cli/InfoCommand.h"
#include "cli/SegCommand.h"
#include "cli/StructCommand.h"

int main(int argc, char** argv) {
  CLI::App app{"Tarvos checks Chinese reports, theses and contracts against their templates and rules."};
  app.set_version_flag("--version", std::string("tarvos ") + TARVOS_VERSION);
  app.require_subcommand(0, 1);

  std::string sData;
  CLI::App* pInfo = app.add_subcommand("info", "start the engine, print its switches and services");
  pInfo->add_option("--data", sData, "data directory (default: $TARVOS_DATA, else the built or installed one)");

  bool bTags = false;
  std::string sUserDict;
  CLI::App* pSeg = app.add_subcommand("seg", "segment UTF-8 lines from standard input, one output line per line");
  pSeg->add_option("--data", sData, "data directory");
  pSeg->add_flag("--tags", bTags, "write word/tag tokens");
  pSeg->add_option("--user-dict", sUserDict, "import a user dictionary first (word<TAB>tag lines)");

  std::string sFile;
  bool bJson = false;
  CLI::App* pStruct = app.add_subcommand("struct", "import a document, write its structure file, print its path");
  pStruct->add_option("file", sFile, "the document (.docx, or .doc/.wps with its .docx beside it)")->required();
  pStruct->add_flag("--json", bJson, "write JSON instead of XML");
  pStruct->add_option("--data", sData, "data directory");

  _tCheckOptions check;
  std::string sFormat = "xml";
  CLI::App* pCheck = app.add_subcommand("check", "check documents, print a summary and the result files' paths");
  pCheck->add_option("inputs", check.inputs, "documents, or folders of documents")->required();
  pCheck->add_option("--type", check.type, "report type (selects rules and templates)");
  pCheck->add_option("--org", check.organization, "organisation whose template applies");
  pCheck->add_option("--format", sFormat, "xml or json (json: results on standard output, summaries on standard error)")
      ->check(CLI::IsMember({"xml", "json"}));
  pCheck->add_option("--data", sData, "data directory");

  CLI11_PARSE(app, argc, argv);

  if (pCheck->parsed()) {
    check.json = sFormat == "json";
    return RunCheck(ChooseDataDir(sData), check, std::cout, std::cerr);
  }
  if (pStruct->parsed()) return RunStruct(ChooseDataDir(sData), sFile, bJson, std::cout, std::cerr);
  if (pInfo->parsed()) return RunInfo(ChooseDataDir(sData), std::cout, std::cerr);
  if (pSeg->parsed()) {
    std::ios::sync_with_stdio(false);
    return RunSeg(ChooseDataDir(sData), bTags, sUserDict, std::cin, std::cout, std::cerr);
  }
  std::cout << app.help();
  return 0;
}
