#pragma once
// The symmetric cipher of the engine's data files. It keeps shipped texts
// (messages, rules) from being read or edited by accident in a hex viewer; it
// is not a protection against a determined reader. Each string is processed
// by itself from its first byte, and the same call enciphers and deciphers.
#include <cstddef>

#include "utility/TString.h"

void CipherBytes(char* pData, size_t nLength);

tstring CipherString(const tstring& sText);
