#pragma once
// CID2Message is the error-message catalogue: for every error id ("1.5.2")
// its message text and its score pair. One instance serves the whole process
// and is read-only while checks run.
//
// Text list (Import, Export): one header line, then per line
//   <id> <message> <each_score> <max_score>
// separated by blanks or tabs; the message holds no blank. Missing numbers
// count as 0. Lines are read in pieces of at most 1023 bytes.
//
// Catalogue file (Load, Save), little-endian, strings without terminator:
//   u64 N, N x { u64 id length, id (enciphered), u64 message length, message (enciphered) }
//   u64 M, M x { u64 id length, id (enciphered), f32 each_score, f32 max_score }
// Ids and messages are shorter than 1024 bytes.
#include <map>

#include "utility/TString.h"

struct _tScore {
  float each_score = 0;  // points deducted per finding
  float max_score = 0;   // cap of the deduction for the id
};

class CID2Message {
 public:
  // Replaces the messages (scores of ids the list omits survive) with those of
  // a text list. Returns the number of messages; -1 when the file cannot be read.
  int Import(const char* sFilename);

  // Adds the entries of a catalogue file. Returns 1; -1 when the file cannot be
  // opened; -2 when it is truncated or not a catalogue (nothing is added then).
  int Load(const char* sFilename);

  // Writes the catalogue, replacing the file only once it is complete.
  // Returns the number of messages; -1 when the file cannot be written.
  int Save(const char* sFilename);

  // Writes the catalogue as a text list that Import reads back.
  // Returns the number of messages; -1 when the file cannot be written.
  int Export(const char* sFilename);

  // The catalogue as JSON: {"ErrorCount": N, "Errors": [{"id", "message",
  // "each_score", "max_score"}...]}.
  tstring Export2Json() const;

  // The message of an id. For an unknown id: sets the last error "Wrong text
  // id <id>" and returns that same text. Known ids stay valid while the
  // catalogue is unchanged; the unknown-id text until this thread's next call.
  const char* GetText(const char* id) const;

  // each_score of an id, with its max_score through the reference; 0 and 0
  // for an id without a score pair.
  float GetScore(const char* id, float& max_score) const;

  const std::map<tstring, tstring>& GetMessages() const { return m_mapId2Message; }
  const std::map<tstring, _tScore>& GetScores() const { return m_mapId2Score; }

 private:
  std::map<tstring, tstring> m_mapId2Message;  // id -> message, in byte order of ids
  std::map<tstring, _tScore> m_mapId2Score;    // id -> score pair
};
