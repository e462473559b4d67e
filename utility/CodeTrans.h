#pragma once
// Character-set recognition of texts handed in without a declared encoding.
// The model file ("CodeTrans.model") lists, one a line, the character sets
// the recogniser may answer with, most likely first; '#' starts a comment.

// Loads the model. Returns the number of character sets it lists (>= 1), or
// -1 when the file cannot be read or lists none.
int CodeTrans_Initialize(const char* sModelFile);

// Frees the model; safe when it was never loaded.
void CodeTrans_Destroy();
