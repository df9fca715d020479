#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "platform/text_lines.h"
#include "qelkern/platform.h"

namespace {

// At once where the size is known; a pipe or a growing file is read on to its end.
std::string ReadToEnd(std::FILE* file) {
    std::string bytes;
    struct stat status {};
    if (fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
        bytes.resize(static_cast<size_t>(status.st_size));
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    }
    char chunk[65536];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) bytes.append(chunk, got);
    return bytes;
}

}  // namespace

namespace qelkern {

bool ReadDecodedFile(const char* path, std::string& latin1) {
    std::error_code ignored;
    if (!path || std::filesystem::is_directory(path, ignored)) return false;
    std::FILE* file = std::fopen(path, "rb");
    if (!file) return false;
    std::string bytes;
    try {
        bytes = ReadToEnd(file);
    } catch (...) {
        std::fclose(file);
        throw;
    }
    std::fclose(file);
    latin1 = DecodeToLatin1(std::move(bytes));
    return true;
}

void EndLinesWithLineFeeds(std::string& text) {
    if (text.empty()) return;
    const bool endsInLineFeed = text.back() == '\n';
    char* const start = text.data();
    const char* const end = start + text.size();
    char* write = start;
    for (const char* read = start; read < end;) {
        const char* carriageReturn = static_cast<const char*>(std::memchr(read, '\r', end - read));
        const char* stop = carriageReturn ? carriageReturn : end;
        if (write != read) std::memmove(write, read, stop - read);
        write += stop - read;
        read = stop;
        if (!carriageReturn) break;
        if (read + 1 >= end || read[1] != '\n') *write++ = '\r';
        ++read;
    }
    text.resize(static_cast<size_t>(write - start));
    if (!endsInLineFeed) text += '\n';
}

}  // namespace qelkern

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
        std::string bytes = ReadToEnd(file);
        content = (flags & typeBinary) ? std::move(bytes) : DecodeToLatin1(std::move(bytes));
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
