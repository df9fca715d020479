#include <algorithm>
#include <cctype>
#include <cstring>

#include "qelkern/platform.h"

CObject::~CObject() = default;
CException::~CException() = default;

bool CException::GetErrorMessage(char* buffer, unsigned maxLength) const {
    if (buffer && maxLength > 0) buffer[0] = 0;
    return false;
}

void CException::Delete() { delete this; }

CString::CString(const char* text) : s(text ? text : "") {}

CString::CString(const char* text, int length) {
    if (text && length > 0) s.assign(text, static_cast<size_t>(length));
}

CString::CString(char ch, int repeat) {
    if (repeat > 0) s.assign(static_cast<size_t>(repeat), ch);
}

CString& CString::operator=(const char* text) {
    s = text ? text : "";
    return *this;
}

CString& CString::operator=(char ch) {
    s.assign(1, ch);
    return *this;
}

CString& CString::operator+=(const char* text) {
    if (text) s += text;
    return *this;
}

void CString::FormatV(const char* format, va_list args) {
    va_list copy;
    va_copy(copy, args);
    char small[256];
    int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0) {
        s.clear();
    } else if (static_cast<size_t>(needed) < sizeof small) {
        s.assign(small, static_cast<size_t>(needed));
    } else {
        std::string big(static_cast<size_t>(needed) + 1, '\0');
        std::vsnprintf(big.data(), big.size(), format, args);
        big.resize(static_cast<size_t>(needed));
        s = std::move(big);
    }
}

void CString::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    FormatV(format, args);
    va_end(args);
}

void CString::AppendFormat(const char* format, ...) {
    CString tail;
    va_list args;
    va_start(args, format);
    tail.FormatV(format, args);
    va_end(args);
    s += tail.s;
}

// Case mapping of Latin-1: the accented letters C0-DE (but D7) and E0-FE (but F7)
// pair up 32 apart, as ASCII letters do; ß and ÿ have no single-byte upper case.
static unsigned char UpperLatin1(unsigned char c) {
    if (c >= 'a' && c <= 'z') return static_cast<unsigned char>(c - 32);
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return static_cast<unsigned char>(c - 32);
    return c;
}

static unsigned char LowerLatin1(unsigned char c) {
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned char>(c + 32);
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<unsigned char>(c + 32);
    return c;
}

CString& CString::MakeUpper() {
    for (char& c : s) c = static_cast<char>(UpperLatin1(static_cast<unsigned char>(c)));
    return *this;
}

CString& CString::MakeLower() {
    for (char& c : s) c = static_cast<char>(LowerLatin1(static_cast<unsigned char>(c)));
    return *this;
}

int CString::Compare(const char* other) const { return std::strcmp(s.c_str(), other ? other : ""); }

int CString::CompareNoCase(const char* other) const {
    const unsigned char* a = reinterpret_cast<const unsigned char*>(s.c_str());
    const unsigned char* b = reinterpret_cast<const unsigned char*>(other ? other : "");
    for (;; ++a, ++b) {
        unsigned char ca = LowerLatin1(*a), cb = LowerLatin1(*b);
        if (ca != cb) return ca < cb ? -1 : 1;
        if (ca == 0) return 0;
    }
}

int CString::Find(char ch, int start) const {
    if (start < 0 || start > GetLength()) return -1;
    size_t at = s.find(ch, static_cast<size_t>(start));
    return at == std::string::npos ? -1 : static_cast<int>(at);
}

int CString::Find(const char* sub, int start) const {
    if (!sub || start < 0 || start > GetLength()) return -1;
    size_t at = s.find(sub, static_cast<size_t>(start));
    return at == std::string::npos ? -1 : static_cast<int>(at);
}

int CString::ReverseFind(char ch) const {
    size_t at = s.rfind(ch);
    return at == std::string::npos ? -1 : static_cast<int>(at);
}

int CString::FindOneOf(const char* chars) const {
    if (!chars) return -1;
    size_t at = s.find_first_of(chars);
    return at == std::string::npos ? -1 : static_cast<int>(at);
}

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Mid(int first, int count) const {
    first = std::clamp(first, 0, GetLength());
    count = std::clamp(count, 0, GetLength() - first);
    return CString(s.substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

CString CString::Left(int count) const { return Mid(0, count); }

CString CString::Right(int count) const {
    count = std::clamp(count, 0, GetLength());
    return Mid(GetLength() - count, count);
}

int CString::Replace(const char* oldText, const char* newText) {
    if (!oldText || !*oldText) return 0;
    const std::string from(oldText), to(newText ? newText : "");
    int count = 0;
    for (size_t at = s.find(from); at != std::string::npos; at = s.find(from, at + to.size())) {
        s.replace(at, from.size(), to);
        ++count;
    }
    return count;
}

int CString::Insert(int index, const char* text) {
    index = std::clamp(index, 0, GetLength());
    if (text) s.insert(static_cast<size_t>(index), text);
    return GetLength();
}

int CString::Delete(int index, int count) {
    if (index >= 0 && index < GetLength() && count > 0)
        s.erase(static_cast<size_t>(index), static_cast<size_t>(count));
    return GetLength();
}

static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f'; }

CString& CString::TrimLeft() {
    size_t first = 0;
    while (first < s.size() && IsBlank(s[first])) ++first;
    s.erase(0, first);
    return *this;
}

CString& CString::TrimRight() {
    while (!s.empty() && IsBlank(s.back())) s.pop_back();
    return *this;
}
