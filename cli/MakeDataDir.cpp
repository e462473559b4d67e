// tarvos-mkdata SRC OUT WORDS HMM: builds the data directory OUT/Data from
// the text sources in SRC/Data, the lexicon word list WORDS ("word freq tag"
// lines) and the hidden Markov model tables HMM, through the same loaders the
// engine uses, so a source that the engine would refuse fails the build.
#include <sys/stat.h>

#include <fstream>
#include <iostream>

#include "checker/ID2Message.h"
#include "rules/ZYGManager.h"
#include "utility/ConfusionSet.h"
#include "utility/CountryDetector.h"
#include "utility/ErrorLog.h"
#include "utility/Num2FontSize.h"
#include "utility/SearchIndex.h"
#include "utility/lexical/HmmModel.h"
#include "utility/lexical/Lexicon.h"

namespace {

bool MakeDir(const std::string& sPath) { return mkdir(sPath.c_str(), 0755) == 0 || errno == EEXIST; }

bool CopyFile(const std::string& sFrom, const std::string& sTo) {
  std::ifstream in(sFrom, std::ios::binary);
  std::ofstream out(sTo, std::ios::binary);
  return in && out && (out << in.rdbuf()) && out.flush();
}

int Fail(const std::string& sWhat) {
  std::cerr << "tarvos-mkdata: " << sWhat;
  std::string sError = GetLastError();
  if (!sError.empty()) std::cerr << ": " << sError;
  std::cerr << "\n";
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "usage: tarvos-mkdata SOURCE_DIR OUTPUT_DIR LEXICON_WORDS HMM_TABLES\n";
    return 2;
  }
  const std::string sSrc = std::string(argv[1]) + "/Data";
  const std::string sRoot = argv[2];
  const std::string sOut = sRoot + "/Data";
  for (const std::string& sDir : {sRoot, sOut, sOut + "/Error", sOut + "/Font", sOut + "/Country", sOut + "/Lexicon",
                                    sOut + "/Standards", sOut + "/Spell"})
    if (!MakeDir(sDir)) return Fail("cannot create " + sDir);

  for (const char* sName : {"/ZYG-Configure.json", "/CodeTrans.model", "/Country/CountryList.txt", "/SearchAgent.xml",
                            "/Standards/standards.txt", "/Standards/requirements.txt", "/Spell/shape.txt"})
    if (!CopyFile(sSrc + sName, sOut + sName)) return Fail(std::string("cannot copy ") + sName);
  // The search server's tables are loaded once here, so a line it would
  // refuse fails the build.
  CSearchIndex standards;
  if (!standards.Load(sRoot)) return Fail("search server tables not valid");

  CID2Message catalogue;
  if (catalogue.Import((sSrc + "/Error/ErrorMessage.txt").c_str()) < 1)
    return Fail("message list unreadable or empty");
  if (catalogue.Save((sOut + "/Error/ErrorMessage.dat").c_str()) < 1)
    return Fail("cannot write the message catalogue");

  CNum2FontSize fontSizes;
  if (fontSizes.Import((sSrc + "/Font/FontSize.txt").c_str()) < 1) return Fail("font-size table empty");
  if (!CopyFile(sSrc + "/Font/FontSize.txt", sOut + "/Font/FontSize.dat"))
    return Fail("cannot write the font-size table");

  CCountryDetector countries;
  if (countries.Load(sOut + "/Country/CountryList.txt") < 1) return Fail("country list empty");

  CLexicon lexicon;
  if (lexicon.Build(argv[3]) < 1) return Fail("lexicon word list empty");
  if (!lexicon.Save(sOut + "/Lexicon")) return Fail("cannot write the lexicon");
  // Characters seen fewer times are too rare to be what a writer meant.
  int nSounds = CConfusionSet::BuildSoundTable(lexicon, 50, sOut + "/Spell/sound.txt");
  if (nSounds < 1) return Fail("cannot write the same-sound table");
  CHmmModel hmm;
  if (hmm.Build(argv[4]) < 1) return Fail("hidden Markov model tables empty");
  if (!hmm.Save(sOut + "/Lexicon/hmm.dat")) return Fail("cannot write the hidden Markov model");

  // A manager that knows no document type yet; rule imports add them.
  CZYGManager manager(sRoot.c_str());
  if (manager.Save() != 1) return Fail("cannot write the rule manager file");

  std::cout << "tarvos-mkdata: " << catalogue.GetMessages().size() << " messages, "
            << fontSizes.GetCount() << " font sizes, " << countries.GetCount() << " countries, "
            << lexicon.GetCount() << " lexicon words, " << nSounds << " characters with their sound, " << standards.GetStandardCount() << " standards, "
            << standards.GetRequirementCount() << " required values -> " << sOut
            << "\n";
  return 0;
}
