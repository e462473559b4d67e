#pragma once
// CConfusionSet answers, for a Chinese character, the characters a writer
// may have typed in its place: those of the same syllable and tone, those of
// the same syllable in another tone (both from pinyin), and those that look
// alike (a list we keep by hand). The spelling check asks a larger margin of
// the language model the further a candidate is from the written character.
//
// Files of the "Data/Spell" folder:
//   sound.txt  "char<TAB>toned syllable<TAB>plain syllable<TAB>frequency",
//              one line per character of the lexicon (BuildSoundTable)
//   shape.txt  a group of characters that look alike per line ("己已巳");
//              '#' starts a comment
// Read-only after loading.
#include <unordered_map>
#include <vector>

#include "utility/TString.h"

class CLexicon;

enum class EConfusion { kSameTone = 0, kSameSyllable = 1, kShape = 2 };

struct _tConfusion {
  tstring sChar;
  EConfusion kind;
};

class CConfusionSet {
 public:
  // Writes sound.txt for every one-character word of the lexicon with at
  // least nMinFreq occurrences. Returns the number of characters; 0 when
  // ICU has no pinyin or the file cannot be written.
  static int BuildSoundTable(const CLexicon& lexicon, int nMinFreq, const tstring& sFile);

  // Reads the folder's two files. False (last error set) when sound.txt
  // cannot be read; a missing shape.txt leaves the shapes empty.
  bool Load(const tstring& sFolder);

  // The candidates for one character (UTF-8), the nearest kind first, none
  // twice, never the character itself.
  void Candidates(const tstring& sChar, std::vector<_tConfusion>& vecOut) const;
  size_t GetCount() const { return m_mapSound.size(); }

 private:
  struct _tSound {
    tstring sToned, sPlain;
  };
  bool LoadSounds(const tstring& sFile);
  void LoadShapes(const tstring& sFile);

  std::unordered_map<tstring, _tSound> m_mapSound;
  std::unordered_map<tstring, std::vector<tstring>> m_mapToned;  // toned syllable -> characters
  std::unordered_map<tstring, std::vector<tstring>> m_mapPlain;  // plain syllable -> characters
  std::unordered_map<tstring, std::vector<tstring>> m_mapShape;  // character -> look-alikes
};
