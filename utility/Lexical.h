#pragma once
// Start-up, shut-down and user dictionaries of the lexical analyser (the
// Chinese word segmenter). Segmentation itself is not built yet: start-up
// checks the data directory so that the engine's start reports a missing or
// unreadable directory, and the dictionary import reports the missing service.

// Starts the analyser on a data directory. Returns 1, or 0 when the directory
// does not exist or cannot be read.
int QUENDA_Init(const char* sDataPath);

// Stops the analyser; safe when it never started.
void QUENDA_Exit();

// Imports a user dictionary ("word<TAB>tag" lines). Returns the number of
// words imported; 0 on failure.
int QUENDA_ImportUserDict(const char* sFilename, bool bOverwrite);
