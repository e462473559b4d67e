#pragma once
// Listing the files of a folder and splitting paths.
#include <vector>

#include "utility/TString.h"

// The entries of one folder whose names match sFilter, as full paths
// (folder + "/" + name), sorted by name. The listing does not descend into
// sub-folders: a checked folder gets a working folder per document beside
// the documents, and those must never be picked up as documents themselves.
// sFilter is a shell pattern compared without regard to case ("*.docx");
// "*.*" and "*" match every name, with or without a dot. With bFilesOnly
// only regular files are listed (links to files count), else folders too;
// "." and ".." never. An unreadable folder gives an empty list.
std::vector<tstring> ListFiles(const tstring& sDir, const tstring& sFilter = "*.*", bool bFilesOnly = true);

// Splits "/a/b/report.final.docx" into "/a/b", "report.final" and "docx".
// A name without a dot, or whose only dot leads (".profile"), has no
// extension; a path without a slash has folder "".
void SplitPath(const tstring& sPath, tstring& sDir, tstring& sName, tstring& sExt);
