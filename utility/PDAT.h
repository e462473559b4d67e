#pragma once
// CPDAT maps strings to integer ids with a double-array trie, and finds
// dictionary words in text: exact look-up, every prefix or the longest word
// at a position, and a multi-pattern scan that reports every occurrence of
// every word (Aho-Corasick over the same trie).
//
// The trie steps by character, not by byte: each UTF-8 character of the
// dictionary gets a dense code, commonest first, so a Chinese word takes one
// step per character. A byte that does not start a valid UTF-8 character is
// a character of its own, so any byte string can be a word. Words are found
// on character boundaries only.
//
// Building: BeginAdd(), AddWord() for each word (ids are 0, 1, 2 ... in order
// of first addition; adding a word again returns its id), FinishAdd(). Words
// added before a later BeginAdd() keep their ids. Look-ups answer for the
// words of the last FinishAdd() or Load().
//
// After FinishAdd() or Load() the object is read-only and safe to share
// between threads.
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "utility/TString.h"

// One occurrence found by CPDAT::Scan.
struct _tPatternMatch {
  size_t offset;  // byte offset of the word in the text
  size_t length;  // byte length of the word
  int id;         // the word's id
};

class CPDAT {
 public:
  CPDAT() = default;
  // A built trie can be large; share it by pointer instead of copying.
  CPDAT(const CPDAT&) = delete;
  CPDAT& operator=(const CPDAT&) = delete;

  // Starts (or resumes) adding: the words of the current trie keep their ids.
  void BeginAdd();
  // Adds a word and returns its id; -1 for an empty word or outside adding.
  int AddWord(const tstring& sWord);
  // Builds the trie from every word added. Returns the number of words.
  size_t FinishAdd();

  // The id of a word, or -1 when it is not in the dictionary.
  int GetId(const char* pWord, size_t nLength) const;
  int GetId(const tstring& sWord) const { return GetId(sWord.data(), sWord.size()); }
  size_t GetCount() const { return m_vecWordLength.size(); }

  // The longest word that starts at pText: its byte length (0 when none) and id.
  size_t LongestMatch(const char* pText, size_t nLength, int& nId) const;
  // Calls fn(length, id) for every word that is a prefix of pText, shortest first.
  void ForEachPrefix(const char* pText, size_t nLength,
                     const std::function<void(size_t, int)>& fn) const;
  // Every occurrence of every word in the text, overlapping ones included,
  // ordered by end offset (then longest first).
  void Scan(const char* pText, size_t nLength, std::vector<_tPatternMatch>& vecMatch) const;
  // Calls fn(word, id) for every word, in id order.
  void ForEachWord(const std::function<void(const tstring&, int)>& fn) const;

  // Stepping through the trie by hand, one character at a time, for callers
  // that walk many prefixes over text they have decoded once: start at
  // GetRoot(), turn each character into its code with GetCode() (0 means no
  // word holds it), Step() to the next state (-1: no word continues so), and
  // GetValue() gives the id of the word ending at a state, or -1.
  int32_t GetRoot() const { return m_vecUnit.empty() ? -1 : 0; }
  int32_t GetCode(uint32_t nChar) const {
    if (nChar < m_vecBmpCode.size()) return m_vecBmpCode[nChar];
    auto it = m_mapOtherCode.find(nChar);
    return it == m_mapOtherCode.end() ? 0 : it->second;
  }
  int32_t Step(int32_t s, int32_t nCode) const { return s < 0 || nCode <= 0 ? -1 : Child(s, nCode); }
  int GetValue(int32_t s) const { return s < 0 ? -1 : m_vecValue[s]; }
  // Byte length of the word with an id.
  size_t GetWordLength(int nId) const { return (size_t)m_vecWordLength[nId]; }

  // Writes the dictionary ("PDAT" data file). False with the last error set.
  bool Save(const tstring& sFilename) const;
  // Replaces the dictionary with a saved one. False, with the file named in
  // the last error and the dictionary left empty, when it is damaged.
  bool Load(const tstring& sFilename);

  void Clear();

 private:
  // Kept to 8 bytes: look-ups touch nothing else, and a small array stays in cache.
  struct _tUnit {
    int32_t base;   // children of this state sit at base + code
    int32_t check;  // parent state; -1 marks a free slot
  };
  // What a scan needs of a state besides its transitions.
  struct _tLink {
    int32_t fail;    // longest proper suffix state
    int32_t report;  // this state or its nearest suffix state ending a word; -1 when none
  };

  // The state reached from s by character code c, or -1.
  int32_t Child(int32_t s, int32_t c) const {
    uint64_t p = (uint64_t)((int64_t)m_vecUnit[s].base + c);  // a negative base wraps out of range
    return p < m_vecUnit.size() && m_vecUnit[p].check == s ? (int32_t)p : -1;
  }
  // The code of the character at pText (0 when no word uses it) and its byte length.
  int32_t NextCode(const char* pText, size_t nLength, size_t& nBytes) const;
  void AssignCodes(const std::vector<std::pair<tstring, int>>& vecWords);
  void SetCode(uint32_t nChar, int32_t nCode);
  void Build(const std::vector<std::pair<tstring, int>>& vecWords);
  void LinkFailures(const std::vector<int32_t>& vecStatesByDepth);
  bool Validate() const;

  std::vector<_tUnit> m_vecUnit;         // the double array; state 0 is the root
  std::vector<_tLink> m_vecLink;         // per state: failure and report links
  std::vector<int32_t> m_vecValue;       // per state: id of the word ending there, or -1
  std::vector<int32_t> m_vecOutput;      // per state: nearest proper suffix state ending a word, or -1
  std::vector<int32_t> m_vecWordLength;  // per id: byte length of the word
  std::vector<uint32_t> m_vecCodeChar;   // per code: its character (index 0 unused)
  std::vector<int32_t> m_vecBmpCode;     // per BMP character: its code, 0 when unused
  std::unordered_map<uint32_t, int32_t> m_mapOtherCode;  // codes of the other characters
  int32_t m_nMaxLength = 0;              // longest word in characters, bounding failure walks
  bool m_bAdding = false;                // between BeginAdd and FinishAdd
  std::unordered_map<tstring, int> m_mapAdding;  // words of the build in progress
};
