// tarvos_spell_eval DATA_DIR SET.tsv [--margins TONE,SYLLABLE,SHAPE] [--grid | --show]
// Measures the spelling check on a set written by scripts/spell_set.py:
// detection recall and correction accuracy on the sentences with an
// injected error, the share of untouched sentences with a false alarm, and
// the time per sentence. --grid tries a grid of margins and prints, for
// each, the three figures, so margins can be chosen on a tuning set.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "api/Engine.h"
#include "utility/SpellChecker.h"

namespace {

struct _tSample {
  bool bError = false;
  std::string sSentence;
  size_t nOffset = 0;
  std::string sWritten, sRight;
};

struct _tFigures {
  double fRecall, fAccuracy, fFalseAlarm, fMicroseconds;
};

std::vector<_tSample> ReadSet(const char* sFile) {
  std::vector<_tSample> vecSamples;
  std::ifstream in(sFile);
  for (std::string sLine; std::getline(in, sLine);) {
    std::vector<std::string> vecFields;
    std::istringstream fields(sLine);
    for (std::string s; std::getline(fields, s, '\t');) vecFields.push_back(s);
    if (vecFields.size() < 2) continue;
    _tSample sample;
    sample.bError = vecFields[0] == "error";
    sample.sSentence = vecFields[1];
    if (sample.bError && vecFields.size() >= 5) {
      sample.nOffset = std::stoul(vecFields[2]);
      sample.sWritten = vecFields[3];
      sample.sRight = vecFields[4];
    }
    vecSamples.push_back(sample);
  }
  return vecSamples;
}

_tFigures Evaluate(const CSpellChecker& checker, const std::vector<_tSample>& vecSamples) {
  size_t nErrors = 0, nDetected = 0, nCorrected = 0, nClean = 0, nAlarms = 0;
  std::vector<_tSpellFinding> vecFindings;
  auto start = std::chrono::steady_clock::now();
  for (const _tSample& sample : vecSamples) {
    checker.Check(sample.sSentence, vecFindings);
    if (!sample.bError) {
      nClean++;
      nAlarms += !vecFindings.empty();
      continue;
    }
    nErrors++;
    for (const _tSpellFinding& f : vecFindings) {
      if (sample.nOffset < f.offset || sample.nOffset >= f.offset + f.sWrong.size()) continue;
      nDetected++;
      std::string sFixed = sample.sSentence;
      sFixed.replace(f.offset, f.sWrong.size(), f.sRight);
      std::string sOriginal = sample.sSentence;
      sOriginal.replace(sample.nOffset, sample.sWritten.size(), sample.sRight);
      nCorrected += sFixed == sOriginal;
      break;
    }
  }
  double fSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return {nErrors ? (double)nDetected / nErrors : 0, nDetected ? (double)nCorrected / nDetected : 0,
          nClean ? (double)nAlarms / nClean : 0, vecSamples.empty() ? 0 : fSeconds * 1e6 / vecSamples.size()};
}

void Print(const _tSpellMargins& m, const _tFigures& f) {
  printf("margins %.1f,%.1f,%.1f  recall %.3f  accuracy %.3f  false alarms %.3f  %.0f us/sentence\n", m.fSameTone,
         m.fSameSyllable, m.fShape, f.fRecall, f.fAccuracy, f.fFalseAlarm, f.fMicroseconds);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    fprintf(stderr, "usage: tarvos_spell_eval DATA_DIR SET.tsv [--margins A,B,C] [--grid]\n");
    return 2;
  }
  CEngine engine;
  if (engine.Start(argv[1]) != 1) {
    fprintf(stderr, "tarvos_spell_eval: the engine did not start on %s\n", argv[1]);
    return 1;
  }
  CSpellChecker checker(engine.GetAnalyser(), engine.GetSimDict(), engine.GetSpellDict());
  if (!checker.Load(engine.GetDataDir(), CLanguageModel::DefaultModelFile())) {
    fprintf(stderr, "tarvos_spell_eval: the spelling check did not load\n");
    return 1;
  }
  const std::vector<_tSample> vecSamples = ReadSet(argv[2]);
  _tSpellMargins margins;
  bool bGrid = false, bShow = false;
  for (int i = 3; i < argc; i++) {
    if (strcmp(argv[i], "--grid") == 0) bGrid = true;
    if (strcmp(argv[i], "--show") == 0) bShow = true;
    if (strcmp(argv[i], "--margins") == 0 && i + 1 < argc)
      sscanf(argv[++i], "%f,%f,%f", &margins.fSameTone, &margins.fSameSyllable, &margins.fShape);
  }
  if (bShow) {
    checker.SetMargins(margins);
    std::vector<_tSpellFinding> vecFindings;
    for (const _tSample& sample : vecSamples) {
      checker.Check(sample.sSentence, vecFindings);
      for (const _tSpellFinding& f : vecFindings)
        printf("%.2f\t%s->%s\t%s\n", f.fGain, f.sWrong.c_str(), f.sRight.c_str(), sample.sSentence.c_str());
    }
    return 0;
  }
  if (!bGrid) {
    checker.SetMargins(margins);
    Print(margins, Evaluate(checker, vecSamples));
    return 0;
  }
  for (float fTone = 0; fTone <= 4.01f; fTone += 0.5f)
    for (float fSyllable = fTone; fSyllable <= fTone + 2.01f; fSyllable += 1.0f)
      for (float fShape = fTone; fShape <= fTone + 2.01f; fShape += 1.0f) {
        _tSpellMargins grid{fTone, fSyllable, fShape};
        checker.SetMargins(grid);
        Print(grid, Evaluate(checker, vecSamples));
      }
  return 0;
}
