#pragma once
// The records of audit rules: the editable form and the compiled units.
#include <cstdint>
#include <vector>

#include "utility/IntArray.h"
#include "utility/TString.h"

// Unit types of a compiled rule text.
enum EAuditUnitType {
  kUnitCommand = 1,   // val: EAuditCommand
  kUnitField = 2,     // val: attribute id of the rule set (0 and up), or an EAuditScope
  kUnitOperator = 3,  // val: EAuditOperator
  kUnitRelation = 4,  // val: EAuditRelation
  kUnitLogic = 5,     // val: EAuditLogic
  kUnitConstant = 6,  // val: position of the text in the string pool
};

// Commands; the index is saved in files.
enum EAuditCommand {
  kCmdNotNull = 0,
  kCmdUnique,
  kCmdNumCheck,
  kCmdNumChinese,
  kCmdUniqueTuple,
  kCmdStandardId,
  kCmdStandardArgument,
  kCmdDate,
  kCmdPersonId,
  kCmdCount
};
extern const char* const kAuditCommandNames[kCmdCount];

// Scopes a field unit may name instead of an attribute.
enum EAuditScope { kScopeSameTuple = -100, kScopeSameCol = -101, kScopeSamePara = -102, kScopeSameSection = -103 };
inline constexpr int kScopeCount = 4;
extern const char* const kAuditScopeNames[kScopeCount];  // by -100 - val

enum EAuditOperator {
  kOpPlus = 1, kOpMinus, kOpTimes, kOpDivide, kOpOpen, kOpClose, kOpOpenSquare, kOpCloseSquare,
  kOpIn, kOpNotIn, kOpSubstr, kOpNotSubstr, kOpSum, kOpInteger
};
enum EAuditRelation { kRelEqual = 100, kRelGreater, kRelLess, kRelGreaterEqual, kRelLessEqual, kRelNotEqual };
enum EAuditLogic { kLogicAnd = 1000, kLogicOr, kLogicNot };

struct audit_rule_unit {
  int type = 0;
  int val = 0;
  bool operator==(const audit_rule_unit& o) const { return type == o.type && val == o.val; }
};

// Editable form, in the order of the JSON and XML texts.
struct _tAuditRuleOrg {
  tstring no;         // the rule number, also the error id a failure reports
  tstring name;
  tstring rule;       // the rule text
  tstring arguments;  // ';'-separated
  tstring field;      // ';'-separated field names
  int credit = 0;
};

// Compiled form.
struct _tAuditRule {
  uint32_t no_id = 0;
  int32_t credit = 0;
  uint32_t name_id = 0;
  _tIntArray arguments_id;  // string pool positions
  _tIntArray fields_id;     // field ids
  std::vector<audit_rule_unit> rules;  // rules_count is its size
  int32_t frequency = 0;
};
