// tarvos: the command-line tool over the checking engine.
#include <CLI/CLI.hpp>

#include <iostream>

#include "cli/CheckCommand.h"
#include "cli/DataDir.h"
#include "cli/InfoCommand.h"
#include "cli/ReviseCommand.h"
#include "cli/SegCommand.h"
#include "cli/SpellCommand.h"
#include "cli/StructCommand.h"
#include "cli/DictCommand.h"
#include "cli/RulesCommand.h"
#include "tarvos.h"
#include "cli/TemplateCommand.h"

int main(int argc, char** argv) {
  CLI::App app{"Tarvos checks Chinese reports, theses and contracts against their templates and rules."};
  // The library's version: the one that runs, whatever the tool was built with.
  app.set_version_flag("--version", std::string("tarvos ") + TARVOS_GetVersion());
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

  std::string sResult;
  CLI::App* pRevise = app.add_subcommand("revise", "apply a saved result's findings, print the revised DOCX's path");
  pRevise->add_option("result", sResult, "the result file a check wrote (_Check.xml or _Check.json)")->required();
  bool bTrack = false;
  std::string sAuthor = "Tarvos";
  pRevise->add_flag("--track-changes", bTrack, "write the edits as tracked changes, with a comment per finding");
  pRevise->add_option("--author", sAuthor, "author of the tracked changes and comments (default Tarvos)");
  pRevise->add_option("--data", sData, "data directory");

  CLI::App* pSpell = app.add_subcommand("spell", "check the spelling of UTF-8 lines from standard input");
  pSpell->add_option("--data", sData, "data directory");

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
  pCheck->add_option("--template", check.templateId, "re-check the format against this template id");
  pCheck->add_option("--data", sData, "data directory");

  _tTemplateOptions tpl;
  CLI::App* pTemplate = app.add_subcommand("template", "import, list, show, find and delete format templates");
  pTemplate->require_subcommand(1);
  pTemplate->add_option("--data", sData, "data directory");
  auto fnKeys = [&](CLI::App* pSub) {
    pSub->add_option("--org", tpl.organization, "organisation (default *)");
    pSub->add_option("--area", tpl.area, "area (default *)");
    pSub->add_option("--arg", tpl.argument, "argument (default *)");
    pSub->add_option("--data", sData, "data directory");
  };
  CLI::App* pImport = pTemplate->add_subcommand("import", "learn a template from a sample DOCX");
  pImport->add_option("file", tpl.file, "the sample document")->required();
  pImport->add_option("--type", tpl.type, "report type")->required();
  fnKeys(pImport);
  CLI::App* pList = pTemplate->add_subcommand("list", "the arguments and areas on file for a type and organisation");
  pList->add_option("--type", tpl.type, "report type (default: every type)");
  pList->add_option("--org", tpl.organization, "organisation (default *)");
  pList->add_option("--data", sData, "data directory");
  CLI::App* pFind = pTemplate->add_subcommand("find", "the template a document of these keys would get");
  pFind->add_option("--type", tpl.type, "report type")->required();
  fnKeys(pFind);
  for (const char* szAction : {"show", "delete"}) {
    CLI::App* pSub = pTemplate->add_subcommand(szAction, std::string(szAction) + " a template by id");
    pSub->add_option("id", tpl.id, "template id")->required();
    pSub->add_option("--data", sData, "data directory");
  }

  _tRulesOptions rules;
  CLI::App* pRules = app.add_subcommand("rules", "import, list, show, add, edit and delete extraction rules");
  CLI::App* pAudit = app.add_subcommand("audit", "import, list, show, add, edit and delete audit rules");
  for (CLI::App* pKind : {pRules, pAudit}) {
    pKind->require_subcommand(1);
    auto fnRuleSub = [&](const char* szName, const char* szHelp) {
      CLI::App* pSub = pKind->add_subcommand(szName, szHelp);
      pSub->add_option("--type", rules.type, "document type (default 1)");
      pSub->add_option("--data", sData, "data directory");
      return pSub;
    };
    CLI::App* pImport = fnRuleSub("import", pKind == pRules ? "import XML <item> rules into a type's rule set"
                                                            : "import an <audits> text into a type's audit rules");
    pImport->add_option("file", rules.file, "the rule file")->required();
    pImport->add_flag("--overwrite", rules.overwrite, "replace the type's rules instead of adding");
    fnRuleSub("list", "the rules of a type as JSON");
    fnRuleSub("show", "one rule as JSON")->add_option("id", rules.id, "rule index")->required();
    fnRuleSub("add", "add a rule given as JSON")->add_option("json", rules.file, "the rule")->required();
    CLI::App* pEdit = fnRuleSub("edit", "replace a rule by index with one given as JSON");
    pEdit->add_option("id", rules.id, "rule index")->required();
    pEdit->add_option("json", rules.file, "the rule")->required();
    fnRuleSub("delete", "delete a rule by index")->add_option("id", rules.id, "rule index")->required();
  }

  int nExtractType = 1;
  bool bExtractJson = false;
  CLI::App* pExtract = app.add_subcommand("extract", "print the facts a type's rules find in a document");
  pExtract->add_option("file", sFile, "the document")->required();
  pExtract->add_option("--type", nExtractType, "document type (default 1)");
  pExtract->add_flag("--json", bExtractJson, "print the values as JSON");
  pExtract->add_option("--data", sData, "data directory");

  _tDictOptions dict;
  CLI::App* pDict = app.add_subcommand("dict", "import, export, delete and scan keyword lists and error words");
  pDict->require_subcommand(1);
  for (const char* szAction : {"import", "export", "delete", "scan"}) {
    CLI::App* pSub = pDict->add_subcommand(szAction, std::string(szAction) == "scan"
                                                         ? "scan standard input line by line with a keyword list"
                                                         : std::string(szAction) + " a keyword list's user dictionary");
    pSub->add_option("--handle", dict.handle, "keyword list number (default 0)");
    pSub->add_option("--data", sData, "data directory");
    if (std::string(szAction) == "scan") {
      pSub->add_option("--mode", dict.mode, "0 words, 1 lines (default), 2 JSON, 3 corrections");
      continue;
    }
    pSub->add_option("file", dict.file, "the user dictionary")->required();
    if (std::string(szAction) == "import") {
      pSub->add_flag("--overwrite", dict.overwrite, "replace the list instead of adding to it");
      pSub->add_flag("--abbrev", dict.abbrev, "also add pinyin initials of entries with pinyin flag 1");
    }
  }

  CLI11_PARSE(app, argc, argv);

  if (pRevise->parsed()) return RunRevise(ChooseDataDir(sData), sResult, bTrack, sAuthor, std::cout, std::cerr);
  if (pSpell->parsed()) return RunSpell(ChooseDataDir(sData), std::cin, std::cout, std::cerr);
  if (pDict->parsed()) {
    dict.action = pDict->get_subcommands().front()->get_name();
    return RunDict(ChooseDataDir(sData), dict, std::cin, std::cout, std::cerr);
  }

  if (pRules->parsed() || pAudit->parsed()) {
    rules.audit = pAudit->parsed();
    rules.action = (rules.audit ? pAudit : pRules)->get_subcommands().front()->get_name();
    return RunRules(ChooseDataDir(sData), rules, std::cout, std::cerr);
  }
  if (pExtract->parsed())
    return RunExtract(ChooseDataDir(sData), sFile, nExtractType, bExtractJson, std::cout, std::cerr);

  if (pCheck->parsed()) {
    check.json = sFormat == "json";
    return RunCheck(ChooseDataDir(sData), check, std::cout, std::cerr);
  }
  if (pTemplate->parsed()) {
    tpl.action = pTemplate->get_subcommands().front()->get_name();
    return RunTemplate(ChooseDataDir(sData), tpl, std::cout, std::cerr);
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
