// The small part of a desktop framework that the engine and its hosts use:
// 8-bit strings, growable arrays, the object and exception bases, text files.
// Member names follow the framework that host code was written against.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "qelkern/export.h"

class QELKERN_API CObject {
public:
    virtual ~CObject();
};

class QELKERN_API CException : public CObject {
public:
    ~CException() override;
    // Text of the exception for a host that wants to show it; false if none.
    virtual bool GetErrorMessage(char* buffer, unsigned maxLength) const;
    // Frees an exception thrown as a pointer.
    void Delete();
};

// 8-bit text, Latin-1 inside the engine. Holds embedded NULs like the framework's
// string does, but converts to a NUL-terminated const char*.
class QELKERN_API CString {
public:
    CString() = default;
    CString(const char* text);
    CString(const char* text, int length);
    explicit CString(char ch, int repeat = 1);
    CString(const std::string& text) : s(text) {}
    CString(std::string&& text) : s(std::move(text)) {}

    operator const char*() const { return s.c_str(); }
    const std::string& str() const { return s; }
    std::string& str() { return s; }

    int GetLength() const { return static_cast<int>(s.size()); }
    bool IsEmpty() const { return s.empty(); }
    void Empty() { s.clear(); }
    char GetAt(int index) const { return s[static_cast<size_t>(index)]; }
    void SetAt(int index, char ch) { s[static_cast<size_t>(index)] = ch; }
    char operator[](int index) const { return GetAt(index); }

    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* format, va_list args);
    void AppendFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));

    CString& MakeUpper();
    CString& MakeLower();
    int Compare(const char* other) const;
    int CompareNoCase(const char* other) const;
    int Find(char ch, int start = 0) const;
    int Find(const char* sub, int start = 0) const;
    int ReverseFind(char ch) const;
    int FindOneOf(const char* chars) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    CString Left(int count) const;
    CString Right(int count) const;
    int Replace(const char* oldText, const char* newText);
    int Insert(int index, const char* text);
    int Delete(int index, int count = 1);
    CString& TrimLeft();
    CString& TrimRight();
    CString& Trim() { TrimRight(); return TrimLeft(); }

    CString& operator=(const char* text);
    CString& operator=(char ch);
    CString& operator+=(const CString& other) { s += other.s; return *this; }
    CString& operator+=(const char* text);
    CString& operator+=(char ch) { s += ch; return *this; }

    friend CString operator+(const CString& a, const CString& b) { return CString(a.s + b.s); }
    friend CString operator+(const CString& a, const char* b) { CString r(a); r += b; return r; }
    friend CString operator+(const char* a, const CString& b) { CString r(a); r += b; return r; }
    friend CString operator+(const CString& a, char b) { CString r(a); r += b; return r; }
    friend CString operator+(char a, const CString& b) { CString r(a); r += b; return r; }

    friend bool operator==(const CString& a, const CString& b) { return a.s == b.s; }
    friend bool operator==(const CString& a, const char* b) { return a.s == (b ? b : ""); }
    friend bool operator==(const char* a, const CString& b) { return b == a; }
    friend bool operator!=(const CString& a, const CString& b) { return !(a == b); }
    friend bool operator!=(const CString& a, const char* b) { return !(a == b); }
    friend bool operator!=(const char* a, const CString& b) { return !(b == a); }
    friend bool operator<(const CString& a, const CString& b) { return a.s < b.s; }

private:
    std::string s;
};

// Growable array with the framework's member names. Indices are ints.
template <class T>
class CArrayT : public CObject {
public:
    int GetSize() const { return static_cast<int>(items.size()); }
    int GetCount() const { return GetSize(); }
    int GetUpperBound() const { return GetSize() - 1; }
    bool IsEmpty() const { return items.empty(); }
    int Add(const T& item) { items.push_back(item); return GetSize() - 1; }
    T& operator[](int index) { return items[static_cast<size_t>(index)]; }
    const T& operator[](int index) const { return items[static_cast<size_t>(index)]; }
    T& ElementAt(int index) { return (*this)[index]; }
    const T& GetAt(int index) const { return (*this)[index]; }
    void SetAt(int index, const T& item) { (*this)[index] = item; }
    void SetSize(int size) { items.resize(size < 0 ? 0 : static_cast<size_t>(size)); }
    void RemoveAll() { items.clear(); items.shrink_to_fit(); }
    void RemoveAt(int index, int count = 1) {
        items.erase(items.begin() + index, items.begin() + index + count);
    }
    void InsertAt(int index, const T& item) { items.insert(items.begin() + index, item); }
    T* GetData() { return items.data(); }
    const T* GetData() const { return items.data(); }
    void Copy(const CArrayT& other) { items = other.items; }

    auto begin() { return items.begin(); }
    auto end() { return items.end(); }
    auto begin() const { return items.begin(); }
    auto end() const { return items.end(); }

private:
    std::vector<T> items;
};

class QELKERN_API CStringArray : public CArrayT<CString> {};
class QELKERN_API CPtrArray : public CArrayT<void*> {};
class QELKERN_API CObArray : public CArrayT<CObject*> {};
class QELKERN_API CUIntArray : public CArrayT<unsigned int> {};
class QELKERN_API CWordArray : public CArrayT<uint16_t> {};

// Text encodings at the boundary to files and terminals.
// Valid UTF-8 becomes Latin-1, a character beyond Latin-1 becoming '?';
// anything else is taken as Latin-1 already. A leading byte order mark is dropped.
QELKERN_API std::string DecodeToLatin1(const std::string& bytes);
QELKERN_API bool IsValidUtf8(const std::string& bytes);
QELKERN_API std::string Latin1ToUtf8(const std::string& latin1);
QELKERN_API std::string Utf8ToLatin1(const std::string& utf8);

// A text file as the framework's text-mode file has it: reading gives lines
// without their line end ("\r\n" or "\n"), writing produces UTF-8.
class QELKERN_API CStdioFile : public CObject {
public:
    enum OpenFlags : unsigned {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000,
    };

    CStdioFile() = default;
    ~CStdioFile() override;
    CStdioFile(const CStdioFile&) = delete;
    CStdioFile& operator=(const CStdioFile&) = delete;

    bool Open(const char* path, unsigned flags);
    bool IsOpen() const { return file != nullptr; }
    // false at the end of the file; the line loses its line end.
    bool ReadString(CString& line);
    void WriteString(const char* text);
    void Close();
    CString GetFilePath() const { return filePath; }

private:
    std::FILE* file = nullptr;
    bool writing = false;
    std::string content;  // decoded text when reading
    size_t readPos = 0;
    CString filePath;
};
