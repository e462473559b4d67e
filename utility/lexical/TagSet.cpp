#include "utility/lexical/TagSet.h"

#include <mutex>
#include <unordered_set>

const char* InternTag(const tstring& sTag) {
  // Node-based: an element never moves once inserted.
  static std::mutex s_mutex;
  static std::unordered_set<tstring>* s_pTags = new std::unordered_set<tstring>;  // lives as long as the process
  std::lock_guard<std::mutex> lock(s_mutex);
  return s_pTags->insert(sTag).first->c_str();
}
