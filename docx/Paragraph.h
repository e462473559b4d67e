#pragma once
// The records of the document model: paragraphs, tables, figures, relations.
#include <cstdint>
#include <vector>

#include "utility/TString.h"

// Paragraph levels: positive numbers are heading levels, fixed negative
// numbers mark kinds of paragraph.
enum EParaLevel {
  kLevelBody = 0,
  kLevelContent = 13,        // table-of-contents entry (holds a PAGEREF field)
  kLevelTable = -100,        // table placeholder; its id is the table's index
  kLevelTableCaption = -102,
  kLevelFigure = -200,       // figure placeholder; its id is the figure's index
  kLevelFigureCaption = -201,
  kLevelTextBox = -202,
  kLevelHeader = -300,
  kLevelFooter = -400,
  kLevelFormula = -512,
};

// What the reading saw of a paragraph beside its text (bits of
// _tParagraph::kinds).
enum EParaKind : unsigned {
  kKindInContents = 1u << 0,    // inside a table-of-contents field, or of a contents style ("toc 1")
  kKindFigureList = 1u << 1,    // inside a list of figures or tables (a contents field with \c, its style)
  kKindCaptionStyle = 1u << 2,  // of a caption style ("caption", "题注")
  kKindSeqFigure = 1u << 3,     // holds a SEQ field counting figures (图, Figure)
  kKindSeqTable = 1u << 4,      // holds a SEQ field counting tables (表, Table)
  kKindSeqOther = 1u << 5,      // holds another SEQ field (equations, ...)
};

// A paragraph id as every output, anchor and finding prints it: "%08X".
tstring ParaIdText(uint32_t nParaId);

// A font name of the Latin script class ("Times New Roman"), as against a
// Chinese one ("宋体"): it starts with an ASCII byte.
inline bool IsLatinFontName(const tstring& sFont) { return !sFont.empty() && (unsigned char)sFont[0] < 0x80; }

struct _tParagraph {
  uint32_t id = 0;        // byte offset of the "p" of its "<w:p" in word/document.xml
  tstring font;           // font name of its runs (a Chinese name wins)
  int font_size = 0;      // w:sz, in half-points
  tstring text;
  tstring segment_txt;    // the text after lexical segmentation
  int level = kLevelBody;
  int line_space = 0;     // w:line
  int numPtr = 0;         // w:numId
  int page_num = 0;       // page; for headers and footers the number of their file
  tstring num_label;      // the number its automatic numbering shows ("第1章", "1.1"); the
                          // text holds only what document.xml holds, so offsets into it stay right
  unsigned kinds = 0;     // EParaKind bits

  // The text as a reader sees it: the numbering label, then the text.
  tstring NumberedText() const;
  bool HasSeqField() const { return (kinds & (kKindSeqFigure | kKindSeqTable | kKindSeqOther)) != 0; }

  void reset() { *this = _tParagraph(); }
  bool operator<(const _tParagraph& other) const { return id < other.id; }
  bool IsSameFormat(const _tParagraph& other) const {
    return font == other.font && font_size == other.font_size && line_space == other.line_space;
  }
  void GetProperty(const _tParagraph& other) {
    font = other.font;
    font_size = other.font_size;
    line_space = other.line_space;
  }
};

struct _tParaIndex {
  int table_index = -1;  // -1: a paragraph of the main list
  int row_index = -1;
  int col_index = -1;
  unsigned para_index = 0;
};

struct _tTable {
  int para_index = -1;     // index of its placeholder in the paragraph list
  int caption_index = -1;  // index of its caption paragraph; -1 when none
  std::vector<std::vector<std::vector<_tParagraph>>> rows;  // rows of cells of paragraphs

  // The text of a cell, its paragraphs joined by newlines; false outside the table.
  bool GetValue(size_t nRow, size_t nCol, tstring& sValue) const;
};

struct _tFigure {
  int para_index = -1;          // index of its placeholder in the paragraph list
  uint32_t para_id = 0;         // id of the paragraph that holds the image
  unsigned caption_index = (unsigned)-1;  // -1 (all ones): no caption yet
  tstring figure_id;            // relation id
  tstring figure_file;          // relation target
};

struct _tRelationInfo {
  tstring file;   // target
  int type = -1;  // index into the parser's relation types
};
