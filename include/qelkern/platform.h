// The small part of a desktop framework that the engine and its hosts use:
// 8-bit strings, growable arrays, the object and exception bases, text files.
// Member names follow the framework that host code was written against.
#pragma once

#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
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

namespace qelkern {

// The characters of one or more CStrings. Copies share a buffer; each copy
// has a length of its own, so a text that is a prefix of the buffer's
// longest text can share it too. Appending therefore happens in place when
// the appending string is that longest text (the tip) and the capacity
// suffices, whoever else shares the buffer: s := s + "x" runs in amortised
// constant time although the stack machine copies s on the way. Anything
// else that changes characters first makes the buffer its own.
struct TextBuffer {
    // The tip's length, with `pinned` set once a sharer has handed out its
    // text as const char*: that pointer relies on the NUL behind it, so no
    // sharer may append in place any more. chars[tip] is always NUL.
    static constexpr unsigned pinned = 0x80000000u;

    std::atomic<int> references;
    std::atomic<unsigned> tip;
    int capacity;   // room for characters, the NUL not counted
    unsigned run;   // the memory budget that paid for it; 0: none
    char* Chars() { return reinterpret_cast<char*>(this + 1); }
};

}  // namespace qelkern

// 8-bit text, Latin-1 inside the engine. Holds embedded NULs like the framework's
// string does, but converts to a NUL-terminated const char*.
//
// Copies are cheap: they share the characters copy-on-write. The count of
// sharers is atomic, so copies of one text may live and die on different
// threads, as with the framework's string; one CString object itself is not
// to be used by two threads at once (reading a shared prefix as const char*
// may make the characters its own). Lengths stop short of INT_MAX; a longer
// text, like a failed allocation, throws std::bad_alloc.
class QELKERN_API CString {
public:
    CString() = default;
    CString(const char* text);
    CString(const char* text, int length);
    explicit CString(char ch, int repeat = 1);
    CString(const std::string& text);
    CString(std::string_view text);
    CString(const CString& other) noexcept : buffer(other.buffer), length(other.length) {
        if (buffer) buffer->references.fetch_add(1, std::memory_order_relaxed);
    }
    CString(CString&& other) noexcept : buffer(other.buffer), length(other.length) {
        other.buffer = nullptr;
        other.length = 0;
    }
    ~CString() { Release(); }
    // String objects come and go with every string cell of the machine; a
    // free list per thread makes that cheap. `new CString` and `delete` pair
    // up as usual, from any thread.
    static void* operator new(size_t size);
    static void operator delete(void* object, size_t size) noexcept;
    CString& operator=(const CString& other) noexcept {
        // Cells of the machine are loaded again and again with the same text.
        if (buffer != other.buffer) {
            if (other.length <= shortText && other.buffer &&
                (RefillOwnBuffer(other.view()) || CopyShort(other)))
                return *this;
            if (other.buffer) other.buffer->references.fetch_add(1, std::memory_order_relaxed);
            qelkern::TextBuffer* old = buffer;
            buffer = other.buffer;
            if (old) ReleaseBuffer(old);
        }
        length = other.length;
        return *this;
    }
    CString& operator=(CString&& other) noexcept;

    operator const char*() const {
        if (!buffer) return "";
        const unsigned tip = buffer->tip.load(std::memory_order_relaxed);
        return tip == (static_cast<unsigned>(length) | qelkern::TextBuffer::pinned) ? buffer->Chars()
                                                                                 : Terminated();
    }
    // The text as a standard string (a copy) or as a view valid while this
    // string is unchanged.
    std::string str() const { return std::string(view()); }
    std::string_view view() const {
        return buffer ? std::string_view(buffer->Chars(), static_cast<size_t>(length))
                      : std::string_view();
    }

    int GetLength() const { return length; }
    bool IsEmpty() const { return length == 0; }
    void Empty() { Release(); }
    char GetAt(int index) const { return buffer->Chars()[index]; }
    void SetAt(int index, char ch) { MakeOwn()[index] = ch; }
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
    CString& operator+=(const CString& other) { return Append(other.view()); }
    CString& operator+=(const char* text);
    CString& operator+=(char ch) { return Append(std::string_view(&ch, 1)); }
    CString& Append(std::string_view text);
    // Takes `text`, in place where this string alone holds a buffer that fits it.
    CString& Assign(std::string_view text);

    friend CString operator+(const CString& a, const CString& b) { return Concat(a.view(), b.view()); }
    // A temporary on the left grows in place: a + b + c copies each text once.
    friend CString operator+(CString&& a, const CString& b) { return std::move(a.Append(b.view())); }
    friend CString operator+(CString&& a, const char* b) { return std::move(a.Append(ViewOf(b))); }
    friend CString operator+(CString&& a, char b) { return std::move(a.Append(std::string_view(&b, 1))); }
    friend CString operator+(const CString& a, const char* b) { return Concat(a.view(), ViewOf(b)); }
    friend CString operator+(const char* a, const CString& b) { return Concat(ViewOf(a), b.view()); }
    friend CString operator+(const CString& a, char b) {
        return Concat(a.view(), std::string_view(&b, 1));
    }
    friend CString operator+(char a, const CString& b) {
        return Concat(std::string_view(&a, 1), b.view());
    }

    friend bool operator==(const CString& a, const CString& b) {
        return a.length == b.length && (a.buffer == b.buffer || a.view() == b.view());
    }
    friend bool operator==(const CString& a, const char* b) { return a.view() == ViewOf(b); }
    friend bool operator==(const char* a, const CString& b) { return b == a; }
    friend bool operator!=(const CString& a, const CString& b) { return !(a == b); }
    friend bool operator!=(const CString& a, const char* b) { return !(a == b); }
    friend bool operator!=(const char* a, const CString& b) { return !(b == a); }
    friend bool operator<(const CString& a, const CString& b) { return a.view() < b.view(); }

private:
    static std::string_view ViewOf(const char* text) { return text ? std::string_view(text) : std::string_view(); }
    static CString Concat(std::string_view a, std::string_view b);
    // The characters, in a buffer this string alone holds, its length the tip.
    char* MakeOwn();
    const char* Terminated() const;
    void Release() noexcept {
        if (buffer) ReleaseBuffer(buffer);
        buffer = nullptr;
        length = 0;
    }
    static void ReleaseBuffer(qelkern::TextBuffer* shared) noexcept;
    // Short texts are copied, not shared; false: no room to be had.
    static constexpr int shortText = 64;
    bool CopyShort(const CString& other) noexcept;
    // Puts `text` into the buffer this string holds alone, if it fits; inline,
    // since the machine does this for nearly every move of a text. `text`
    // may lie in the buffer itself.
    bool RefillOwnBuffer(std::string_view text) noexcept {
        if (!buffer || buffer->references.load(std::memory_order_acquire) != 1) return false;
        const int size = static_cast<int>(text.size());
        // A buffer far too big for the text is not kept.
        if (size > buffer->capacity || buffer->capacity > 2 * size + 64) return false;
        char* chars = buffer->Chars();
        std::memmove(chars, text.data(), text.size());
        chars[size] = 0;
        buffer->tip.store(static_cast<unsigned>(size), std::memory_order_relaxed);
        length = size;
        return true;
    }

    mutable qelkern::TextBuffer* buffer = nullptr;  // null: the empty text
    int length = 0;
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
QELKERN_API std::string DecodeToLatin1(std::string&& bytes);
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
