#pragma once
// Detection of country names in text, started only when the configuration
// switches it on. Its dictionaries are not built yet: start-up succeeds on any
// readable data directory and detection finds nothing.

// Returns 1 when started, 0 when the data directory cannot be read.
int CountryDetect_Init(const char* sDataPath);

void CountryDetect_Exit();
