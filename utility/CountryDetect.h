#pragma once
// Country detection as the engine starts it: one process-wide detector over
// "Data/Country/CountryList.txt" of the data directory.
#include <vector>

#include "utility/CountryDetector.h"

// Loads the list. Returns 1, or 0 when it cannot be read.
int CountryDetect_Init(const char* sDataPath);

void CountryDetect_Exit();

// True between a successful CountryDetect_Init and CountryDetect_Exit: the
// engine starts detection only when the configuration switches it on.
bool CountryDetect_IsOn();

// The country names in a text (see CCountryDetector::Find); empty before
// CountryDetect_Init. Safe from several threads.
std::vector<_tCountryMatch> CountryDetect_Find(const tstring& sText);

// The Chinese short name of a country index; "" when unknown.
tstring CountryDetect_GetName(int nCountry);
