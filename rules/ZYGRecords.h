#pragma once
// What the extraction agent finds: matches, extracted values, tuples, tables
// and knowledge-graph triples.
#include <cstdint>
#include <vector>

#include <json/json.h>

#include "utility/TString.h"

// One token of a scanned text.
struct _tZYGScanResult {
  int word_id = -1;  // term of the word, else term of its tag, else -1
  tstring word;
  tstring pos;       // the tag with its leading '/'
  int offset = 0;    // byte offset of the word in the normalised text
};

// One match of one rule.
struct _tZYG_Result {
  int rule_index = -1;
  tstring rule_no;
  tstring action;
  std::vector<tstring> arguments;
  int credit = 0;
  int frequency = 0;
  std::vector<uint32_t> vecSelectedParaId;  // per selected value; 0: the result's paragraph
  std::vector<int> vecSelectedOffset;       // per selected value; -1: none
  std::vector<tstring> vecSelected;         // the selected values, one per selected grid
  uint32_t para_id = 0;
  unsigned offset = 0;
  tstring org_para_text;

  // "<ZYG_Result>" ... "</ZYG_Result>\n", the exact form of a match in "_ZYG_result.xml".
  tstring WriteXML() const;
};

// One extracted value.
struct _tKeyVal {
  uint32_t para_id = 0;
  unsigned offset = 0;
  int key_name_id = -1;  // the key, a term of the rule set
  tstring key_value;
  tstring org_para_text;
  tstring rule_used;     // the rule number

  bool operator<(const _tKeyVal& o) const {
    if (para_id != o.para_id) return para_id < o.para_id;
    if (offset != o.offset) return offset < o.offset;
    if (key_name_id != o.key_name_id) return key_name_id < o.key_name_id;
    if (key_value != o.key_value) return key_value < o.key_value;
    return rule_used < o.rule_used;
  }
  bool operator==(const _tKeyVal& o) const {
    return para_id == o.para_id && offset == o.offset && key_name_id == o.key_name_id &&
           key_value == o.key_value && rule_used == o.rule_used;
  }
};

struct _tTableArgument {
  tstring file_name, section_no, section_name, row_name, col_name, value;
  tstring WriteXML() const;      // "<file_name>" ... "</value>\r\n"
  Json::Value WriteJson() const;
};

struct _tTableItem {
  tstring item_name;
  int index = 0;
};

struct delimiter_pos {
  int delimiter_id = 0;
  int offset = 0;
};

struct _tEntityAttrVal {
  tstring entity, attribute, val;
  bool IsEmpty() const { return entity.empty() && attribute.empty() && val.empty(); }
  Json::Value WriteJson() const;
};

struct _tHeadRelTail {
  tstring head, relation, tail;
  bool IsEmpty() const { return head.empty() && relation.empty() && tail.empty(); }
  Json::Value WriteJson() const;
};

// A tuple: values that belong together (one paragraph, one table row).
typedef std::vector<_tKeyVal> _tTuple;
// A table: its rows, each a tuple of the cells' values under their column keys.
typedef std::vector<_tTuple> _tKeyTable;
