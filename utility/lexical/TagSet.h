#pragma once
// Part-of-speech tag names, interned: every tag the analyser hands out is a
// pointer into one process-wide set that only grows, so tokens can carry
// their tag as a plain pointer that never dangles.
#include "utility/TString.h"

// The stable copy of a tag name. Safe from several threads.
const char* InternTag(const tstring& sTag);
