#pragma once
// CBufferManager owns the texts an owner (a checking instance, a scanning
// instance) hands to a host: one text per slot, one slot per call that
// returns text. A new text for a slot replaces the slot's old text, so the
// owner keeps the latest text of each call and does not grow however many
// calls a host makes; texts of other slots stay where they are. Safe to use
// from several threads.
#include <map>
#include <mutex>

#include "utility/TString.h"

class CBufferManager {
 public:
  CBufferManager() = default;
  // Hosts hold the addresses of the texts: never copied.
  CBufferManager(const CBufferManager&) = delete;
  CBufferManager& operator=(const CBufferManager&) = delete;

  // Copies sText into slot nSlot and returns the copy (zero-terminated).
  // The pointer stays valid until the next Keep on the same slot, Clear, or
  // the manager's destruction.
  const char* Keep(int nSlot, const tstring& sText);

  // Frees every text.
  void Clear();

  // Number of slots holding a text.
  size_t GetCount() const;
  // Bytes held in all slots.
  size_t GetSize() const;

 private:
  mutable std::mutex m_mutex;          // guards m_mapSlot2Text
  std::map<int, tstring> m_mapSlot2Text;  // slot -> its latest text
};
