#pragma once
// "tarvos revise RESULT": applies the findings of a saved result (the
// "_Check.xml" or "_Check.json" a check wrote; delete the findings you reject
// from it first) to its document, and prints the revised DOCX's path.
// --track-changes [--author NAME] writes the edits as tracked changes.
#include <ostream>
#include <string>

// With bTrack the edits are tracked changes by sAuthor, with comments.
// The process exit status: 0 when the revised DOCX was written.
int RunRevise(const std::string& sDataDir, const std::string& sResult, bool bTrack, const std::string& sAuthor,
              std::ostream& out, std::ostream& err);
