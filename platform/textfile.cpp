#include <filesystem>

#include "qelkern/platform.h"

CStdioFile::~CStdioFile() { Close(); }

bool CStdioFile::Open(const char* path, unsigned flags) {
    Close();
    if (!path) return false;
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) return false;  // fopen would take it
    writing = (flags & (modeWrite | modeReadWrite)) != 0;
    const char* mode = writing ? ((flags & modeCreate) && !(flags & modeNoTruncate) ? "wb" : "ab") : "rb";
    file = std::fopen(path, mode);
    if (!file) return false;
    filePath = path;
    content.clear();
    readPos = 0;
    if (!writing) {
        // Read whole: the encoding is decided for the file, not line by line.
        std::string bytes;
        char chunk[65536];
        size_t got;
        while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) bytes.append(chunk, got);
        content = (flags & typeBinary) ? bytes : DecodeToLatin1(bytes);
    }
    return true;
}

bool CStdioFile::ReadString(CString& line) {
    if (!file || writing || readPos >= content.size()) return false;
    size_t end = content.find('\n', readPos);
    size_t next = end == std::string::npos ? content.size() : end + 1;
    if (end == std::string::npos) end = content.size();
    // A carriage return before the line feed belongs to the line end.
    size_t stop = (end > readPos && end < content.size() && content[end - 1] == '\r') ? end - 1 : end;
    line = CString(content.substr(readPos, stop - readPos));
    readPos = next;
    return true;
}

void CStdioFile::WriteString(const char* text) {
    if (!file || !writing || !text) return;
    const std::string utf8 = Latin1ToUtf8(text);
    std::fwrite(utf8.data(), 1, utf8.size(), file);
}

void CStdioFile::Close() {
    if (file) std::fclose(file);
    file = nullptr;
    content.clear();
    readPos = 0;
}
