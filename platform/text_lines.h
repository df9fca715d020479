// Text files read whole and decoded, with the line ends a text-mode read gives.
#pragma once

#include <string>

namespace qelkern {

// The file as Latin-1 (see DecodeToLatin1); false if it cannot be opened or
// is a directory.
bool ReadDecodedFile(const char* path, std::string& latin1);
// Ends every line with one line feed, as CStdioFile::ReadString splits
// them: a carriage return before a line feed goes, and a last line without
// its line feed gets one.
void EndLinesWithLineFeeds(std::string& text);

}  // namespace qelkern
