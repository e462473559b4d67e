#pragma once
// CComplexFilter holds what a keyword list says beyond plain keywords: the
// expressions that combine several terms, and the correction pairs of the
// error-word check. Both come from the keyword field of user-dictionary
// lines; a line that is neither is a plain keyword.
//
// Syntax (no blanks; a term is any text without '&' and '~', not starting
// with '!'):
//   A&B          A and B both occur in the text
//   A&!C         A occurs and C does not
//   A~5~B        A, then B starting at most 5 characters after A ends
//   wrong-->right  a correction pair: each occurrence of "wrong" is reported
//                with "right" as its correction
// An expression is clauses joined by '&', each a term, "!term" or
// "term~N~term" (N from 0 to 1000), at least one of them not negated:
// 合同&违约~10~责任&!草案. A line with '&' or '~' or "-->" that does not
// parse, or whose term is shorter than a keyword may be (one byte, or one
// multi-byte character), is malformed: the import refuses it.
//
// Terms are resolved against the keyword dictionary (Org2Data) so that one
// scan of the text finds keywords and terms together; a term the dictionary
// lacks never occurs.
#include <functional>
#include <unordered_map>
#include <vector>

#include "utility/PDAT.h"
#include "utility/TString.h"

// One occurrence of a term in a scanned text.
struct _tTermHit {
  size_t offset;     // byte offset
  size_t length;     // byte length
  size_t charStart;  // character offsets, for word distances
  size_t charEnd;
};

// An expression that holds in a text.
struct _tComplexHit {
  size_t offset;  // where its first positive term occurs first
  size_t length;
  int index;  // the expression's index
};

class CComplexFilter {
 public:
  enum EImport { kNotExpression = 0, kAccepted = 1, kMalformed = -1 };

  // Offers a keyword field with its class and weight. An expression offered
  // again replaces the earlier one.
  EImport ImportLine(const tstring& sExpression, const tstring& sClass, int nWeight);
  // Removes an expression; false when it was not held.
  bool Remove(const tstring& sExpression);
  // Calls fn(expression, class, weight) for each, in order of import.
  void Export(const std::function<void(const tstring&, const tstring&, int)>& fn) const;
  // Every term of every expression (the dictionary must hold them).
  void ForEachTerm(const std::function<void(const tstring&)>& fn) const;
  // Resolves the terms to the ids of a keyword dictionary.
  void Org2Data(const CPDAT& keyDict);

  size_t GetCount() const { return m_vecExpr.size(); }
  const tstring& GetText(int nIndex) const { return m_vecExpr[nIndex].sText; }
  const tstring& GetClass(int nIndex) const { return m_vecExpr[nIndex].sClass; }
  int GetWeight(int nIndex) const { return m_vecExpr[nIndex].nWeight; }
  // True when some expression is not a correction pair.
  bool HasExpressions() const;
  // The correction of a term id when that term is the wrong side of a pair,
  // else null.
  const tstring* GetCorrection(int nTermId) const;
  // The expressions (pairs excluded) that hold, given the hits of the terms
  // by term id, each list in text order.
  void Evaluate(const std::unordered_map<int, std::vector<_tTermHit>>& mapHits,
                std::vector<_tComplexHit>& vecFound) const;

  // prefix + "complex.dat" ("CPLX" data file of the expressions; their
  // terms are resolved again by Org2Data after loading).
  bool Save(const tstring& sPrefix) const;
  bool Load(const tstring& sPrefix);
  void Clear();

 private:
  enum EClause { kTerm, kNot, kNear };
  struct _tClause {
    EClause eKind;
    size_t nTerm, nTerm2;  // indexes into _tExpression::vecTerm
    int nDistance;         // kNear: most characters between the two
  };
  struct _tExpression {
    tstring sText, sClass;
    int nWeight = 1;
    std::vector<tstring> vecTerm;
    std::vector<int> vecTermId;  // resolved ids, -1 when not in the dictionary
    std::vector<_tClause> vecClause;
    tstring sCorrection;  // non-empty for a pair
  };

  static EImport Parse(const tstring& sText, _tExpression& expr);
  static bool ParseClause(const tstring& sClause, _tExpression& expr);
  static size_t AddTerm(const tstring& sTerm, _tExpression& expr);
  bool Holds(const _tExpression& expr, const std::unordered_map<int, std::vector<_tTermHit>>& mapHits,
             const _tTermHit*& pFirst) const;

  std::vector<_tExpression> m_vecExpr;
  std::vector<std::pair<int, int>> m_vecCorrection;  // (term id, expression index), sorted
};

// True when a keyword is long enough to import: more than one byte and not a
// single multi-byte character.
bool IsKeywordLongEnough(const tstring& sWord);
