#pragma once
// The lexical analyser as the rule engine's scanning calls know it: one
// process-wide CLexicalAnalyser, started by QUENDA_Init and shared by every
// holder of Analyser() (the checking engine keeps it for its checks).
#include <memory>
#include <vector>

#include "utility/TString.h"
#include "utility/lexical/LexicalAnalyser.h"

// Starts the analyser on a data directory. Returns 1, or 0 when the
// directory cannot be read or its lexicon is missing or damaged (the last
// error says which file). Starting again on the same directory keeps the
// loaded lexicon and the user words.
int QUENDA_Init(const char* sDataPath);

// Stops the analyser; holders of Analyser() keep theirs until they let go.
void QUENDA_Exit();

// The analyser started by QUENDA_Init; null when none runs.
std::shared_ptr<CLexicalAnalyser> QUENDA_Analyser();

// Imports a user dictionary into the running analyser. Returns the number
// of words imported; 0 on failure (file unreadable, analyser not started).
int QUENDA_ImportUserDict(const char* sFilename, bool bOverwrite);

// Imports user words given as text (the user dictionary's line format).
int QUENDA_ImportUserText(const tstring& sText, bool bOverwrite);

// Segments a paragraph with the running analyser; "" when none runs.
tstring QUENDA_ParagraphProcess(const tstring& sText, bool bTags);
