#pragma once
// UTF-8 decoding that never fails: a byte that does not start a valid,
// complete, shortest-form character decodes as a character of its own,
// 0x110000 + the byte, beyond every Unicode code point.
#include <cstddef>
#include <cstdint>

#include "utility/TString.h"

inline constexpr uint32_t kInvalidByteBase = 0x110000;

// Decodes the character at p (nLength > 0 bytes available) into nChar and
// returns its byte length (1 to 4).
size_t DecodeUtf8(const char* p, size_t nLength, uint32_t& nChar);

// Appends a character decoded by DecodeUtf8 (an invalid byte as that byte).
void AppendUtf8(tstring& sOut, uint32_t nChar);

// The number of characters of a text as DecodeUtf8 reads them.
size_t Utf8Length(const tstring& sText);

// True when every byte of the text belongs to a valid UTF-8 character.
bool IsValidUtf8(const tstring& sText);
