#pragma once
// The lexical analyser as the engine uses it: one process-wide segmenter over
// the lexicon of the data directory ("Data/Lexicon/"), with the user words
// imported since start-up. Segmenting is read-only and safe from any number
// of threads; an import publishes a new user dictionary that later calls see,
// while calls already running finish with the one they started with.
#include <vector>

#include "utility/TString.h"
#include "utility/lexical/Segmenter.h"

// Starts the analyser on a data directory. Returns 1, or 0 when the
// directory cannot be read or its lexicon is missing or damaged (the last
// error says which file). Starting again on the same directory keeps the
// loaded lexicon and the user words.
int QUENDA_Init(const char* sDataPath);

// Stops the analyser and forgets the user words; safe when it never started.
void QUENDA_Exit();

// Imports a user dictionary (see UserDictionary.h for the format); with
// bOverwrite the earlier user words are dropped first. Returns the number of
// words imported; 0 on failure (file unreadable, analyser not started).
int QUENDA_ImportUserDict(const char* sFilename, bool bOverwrite);

// Segments a paragraph: "word/tag" tokens separated by single blanks, or the
// words alone. "" when the analyser has not started.
tstring QUENDA_ParagraphProcess(const tstring& sText, bool bTags);

// The tokens of a paragraph, offsets into sText. False when not started.
bool QUENDA_Segment(const tstring& sText, std::vector<_tToken>& vecTokens);
