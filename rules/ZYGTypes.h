#pragma once
// The records of a rule set: the editable form that people write and the API
// carries, and the compiled form that is saved and matched. Strings of the
// compiled form are positions in the rule set's string pool, lists ranges of
// its int-array pool, element terms identifiers of its term dictionary.
#include <array>
#include <cstdint>
#include <vector>

#include "utility/IntArray.h"
#include "utility/TString.h"

// Actions: the row number is saved in rule files and never changes.
enum EZYGAction {
  kActionInsert = 0,
  kActionUpdate,
  kActionDelete,
  kActionExtract,
  kActionConvert,
  kActionTableExtract,
  kActionSectionExtract,
  kActionParagraphExtract,
  kActionTitleExtract,
  kActionBetweenExtract,
  kActionUnitExtract,
  kActionEmailExtract,
  kActionCountryExtract,
  kActionFormatExtract,
  kActionGenerateTuple,
  kActionGenerateSingleKey,
  kActionGenerateDate,
  kActionCount
};
extern const char* const kZYGActionNames[kActionCount];

// Fields: what text a rule is applied to. A field above kFieldTitle3 names a
// key: kFieldKeyBase + k is the key of term k.
enum EZYGField {
  kFieldText = 0,
  kFieldSingleRow,
  kFieldRowHead,
  kFieldColHead,
  kFieldRowColHead,
  kFieldHeader,
  kFieldFooter,
  kFieldTitle,
  kFieldTitle1,
  kFieldTitle2,
  kFieldTitle3,
  kFieldCount,
  kFieldKeyBase = kFieldCount
};
extern const char* const kZYGFieldNames[kFieldCount];

// Knowledge-graph roles of an argument: flag k of a type. Roles 0 and 8 have no name.
inline constexpr int kKGRoleCount = 9;
extern const char* const kZYGKGRoleNames[kKGRoleCount];

// Keys every rule set knows, entered into its term dictionary first.
inline constexpr int kDefaultKeyCount = 5;
extern const char* const kZYGDefaultKeys[kDefaultKeyCount];

// Editable form.
struct _tBlockOrg {
  std::vector<tstring> vecElems;  // alternatives
  int is_not = 0;                 // 1: the block matches where none of them does
};

struct _tGridOrg {
  std::vector<_tBlockOrg> vecBlocks;
  std::vector<int> vecRepeats;  // per block: matches required; 0 makes it optional
  std::vector<int> vecSteps;    // per block: how far the next block may start
  int is_selected = 0;          // 1: the words of this grid are a selected value
};

struct _tKnowledgeOrg {
  tstring text;  // the normalised pattern
  std::vector<_tGridOrg> vecGrids;
  std::vector<int> vecSteps;  // per grid
};

struct _tField2KG {
  tstring field_name;                  // an argument name of the rule
  std::array<uint8_t, kKGRoleCount> type{};  // flag k: plays role k
};

struct _tRuleOrg {
  tstring no;  // the rule number as written, such as "1.5.3"
  _tKnowledgeOrg rule;
  int action_id = kActionExtract;
  std::vector<tstring> arguments;
  std::vector<_tField2KG> vecField2KG;
  std::vector<tstring> vecKeyname;
  tstring sField = "text";
  int credit = 0;
  int frequency = 0;
  tstring name;
};

// Compiled form.
struct _tBlock {
  _tIntArray elems;  // term identifiers
  int32_t is_not = 0;
};

struct _tGrid {
  std::vector<_tBlock> blocks;  // blocks_count is blocks.size()
  _tIntArray repeats;
  _tIntArray steps;
  int32_t is_selected = 0;
};

struct _tKnowledge {
  std::vector<_tGrid> grids;  // grid_count is grids.size()
  _tIntArray steps;
  uint32_t text_id = 0;
};

struct _tFieldID2KG {
  int32_t field_name_id = 0;  // string pool position of the argument name
  std::array<uint8_t, kKGRoleCount> type{};
};

struct _tRule {
  uint32_t rule_no_id = 0;
  _tKnowledge knowledge;
  uint32_t action_id = 0;
  _tIntArray arguments_id;  // string pool positions
  _tIntArray RegExs_id;     // kept for the file layout; always empty
  std::vector<_tFieldID2KG> pField2KG;  // nField2KGCount is its size
  _tIntArray keys_id;       // key term identifiers
  uint32_t name_id = 0;
  int32_t credit = 0;
  int32_t frequency = 0;
  uint32_t field = 0;
};

// One posting of the term index: where in which rule a term stands.
struct _tZYGIndexData {
  int32_t knowledge_index = 0;  // the rule
  int32_t grid_index = 0;
  int32_t block_index = 0;
  int32_t back_count = 0;  // words the pattern needs before this block
  std::vector<int32_t> skiplist;
};

struct _tZYGIndex {
  std::vector<_tZYGIndexData> pData;  // df is its size
};
