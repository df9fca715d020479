#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/memory_budget.h"
#include "qelkern/platform.h"

CObject::~CObject() = default;
CException::~CException() = default;

bool CException::GetErrorMessage(char* buffer, unsigned maxLength) const {
    if (buffer && maxLength > 0) buffer[0] = 0;
    return false;
}

void CException::Delete() { delete this; }

namespace {

using qelkern::TextBuffer;

// Room for the header and the NUL keeps every size within an int.
constexpr int maxLength = INT_MAX - static_cast<int>(sizeof(TextBuffer)) - 1;

size_t BytesOf(int capacity) { return sizeof(TextBuffer) + static_cast<size_t>(capacity) + 1; }

// A buffer for `capacity` characters holding `text` (at most that long),
// the one reference being its creator's.
TextBuffer* NewBuffer(int capacity, std::string_view text) {
    const size_t bytes = BytesOf(capacity);
    const unsigned run = qelkern::ChargeMemory(bytes);
    void* raw = std::malloc(bytes);
    if (!raw) {
        qelkern::RefundMemory(run, bytes);
        throw std::bad_alloc();
    }
    auto* buffer = new (raw) TextBuffer;
    buffer->references.store(1, std::memory_order_relaxed);
    buffer->tip.store(static_cast<unsigned>(text.size()), std::memory_order_relaxed);
    buffer->capacity = capacity;
    buffer->run = run;
    if (!text.empty()) std::memcpy(buffer->Chars(), text.data(), text.size());
    buffer->Chars()[text.size()] = 0;
    return buffer;
}

int CheckedLength(size_t length) {
    if (length > static_cast<size_t>(maxLength)) throw std::bad_alloc();
    return static_cast<int>(length);
}

// Growth for appending: doubling keeps building a text linear.
int GrownCapacity(int length, int needed) {
    const int doubled = length > maxLength / 2 ? maxLength : 2 * length;
    return needed > doubled ? needed : doubled;
}

}  // namespace

void CString::ReleaseBuffer(TextBuffer* shared) noexcept {
    // The only holder: nobody can take a new reference meanwhile.
    if (shared->references.load(std::memory_order_acquire) != 1 &&
        shared->references.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    qelkern::RefundMemory(shared->run, BytesOf(shared->capacity));
    shared->~TextBuffer();
    std::free(shared);
}

CString& CString::operator=(CString&& other) noexcept {
    if (this != &other) {
        Release();
        buffer = other.buffer;
        length = other.length;
        other.buffer = nullptr;
        other.length = 0;
    }
    return *this;
}

// The machine moves short texts from cell to cell all the time. Shared, each
// move costs two atomic counts; copied into a buffer the string holds alone,
// it costs a few stores, and after the first copy the buffer is there.
bool CString::CopyShort(const CString& other) noexcept {
    const std::string_view text = other.view();
    // Sharing needs no memory: near a budget's limit, or without memory, it
    // is the answer, and the budget must not count that as exceeded.
    const int capacity = std::max(static_cast<int>(text.size()), 32);
    if (!qelkern::MemoryRoomFor(BytesOf(capacity))) return false;
    TextBuffer* fresh = nullptr;
    try {
        fresh = NewBuffer(capacity, text);
    } catch (...) {
        return false;
    }
    Release();
    buffer = fresh;
    length = static_cast<int>(text.size());
    return true;
}

// The scanner assigns every name it reads to the same string, which mostly
// holds its buffer alone by then.
CString& CString::Assign(std::string_view text) {
    if (!text.empty() && RefillOwnBuffer(text)) return *this;
    // Made before the old text goes: `text` may lie in it, and a failed
    // allocation leaves this string as it was.
    TextBuffer* fresh = text.empty() ? nullptr : NewBuffer(CheckedLength(text.size()), text);
    Release();
    buffer = fresh;
    length = static_cast<int>(text.size());
    return *this;
}

CString::CString(const char* text) { Assign(ViewOf(text)); }

CString::CString(const char* text, int count) {
    if (text && count > 0) Assign(std::string_view(text, static_cast<size_t>(count)));
}

CString::CString(char ch, int repeat) {
    if (repeat <= 0) return;
    buffer = NewBuffer(repeat, {});
    std::memset(buffer->Chars(), static_cast<unsigned char>(ch), static_cast<size_t>(repeat));
    buffer->Chars()[repeat] = 0;
    buffer->tip.store(static_cast<unsigned>(repeat), std::memory_order_relaxed);
    length = repeat;
}

CString::CString(const std::string& text) { Assign(text); }

CString::CString(std::string_view text) { Assign(text); }

CString& CString::operator=(const char* text) {
    Assign(ViewOf(text));
    return *this;
}

CString& CString::operator=(char ch) {
    Assign(std::string_view(&ch, 1));
    return *this;
}

CString& CString::operator+=(const char* text) { return Append(ViewOf(text)); }

CString CString::Concat(std::string_view a, std::string_view b) {
    CString result;
    if (a.size() + b.size() == 0) return result;
    const int total = CheckedLength(a.size() + b.size());
    result.buffer = NewBuffer(total, a);
    if (!b.empty()) std::memcpy(result.buffer->Chars() + a.size(), b.data(), b.size());
    result.buffer->Chars()[total] = 0;
    result.buffer->tip.store(static_cast<unsigned>(total), std::memory_order_relaxed);
    result.length = total;
    return result;
}

// In place when this string is the buffer's tip and there is room: alone,
// it may move the tip where it likes; shared, it claims the tip by an
// atomic exchange that fails once another sharer moved or pinned it.
CString& CString::Append(std::string_view text) {
    if (text.empty()) return *this;
    const int total = CheckedLength(static_cast<size_t>(length) + text.size());
    if (buffer && total <= buffer->capacity) {
        unsigned expected = static_cast<unsigned>(length);
        const bool claimed =
            buffer->references.load(std::memory_order_acquire) == 1 ||
            buffer->tip.compare_exchange_strong(expected, static_cast<unsigned>(total),
                                                std::memory_order_relaxed);
        if (claimed) {
            // `text` cannot lie behind this string's end: that is nobody's text.
            char* chars = buffer->Chars();
            std::memmove(chars + length, text.data(), text.size());
            chars[total] = 0;
            buffer->tip.store(static_cast<unsigned>(total), std::memory_order_relaxed);
            length = total;
            return *this;
        }
    }
    TextBuffer* grown = NewBuffer(GrownCapacity(length, total), view());
    std::memcpy(grown->Chars() + length, text.data(), text.size());
    grown->Chars()[total] = 0;
    grown->tip.store(static_cast<unsigned>(total), std::memory_order_relaxed);
    Release();
    buffer = grown;
    length = total;
    return *this;
}

char* CString::MakeOwn() {
    if (!buffer) return nullptr;
    if (buffer->references.load(std::memory_order_acquire) != 1) {
        TextBuffer* own = NewBuffer(length, view());
        ReleaseBuffer(buffer);
        buffer = own;
    }
    buffer->Chars()[length] = 0;
    buffer->tip.store(static_cast<unsigned>(length), std::memory_order_relaxed);
    return buffer->Chars();
}

// The tip is pinned, so that the NUL behind it stays while the pointer is
// in use; a shorter sharer first gets a buffer of its own.
const char* CString::Terminated() const {
    const unsigned pinnedLength = static_cast<unsigned>(length) | TextBuffer::pinned;
    if (buffer->references.load(std::memory_order_acquire) != 1) {
        unsigned expected = static_cast<unsigned>(length);
        if (buffer->tip.compare_exchange_strong(expected, pinnedLength, std::memory_order_relaxed) ||
            expected == pinnedLength)
            return buffer->Chars();
        TextBuffer* own = NewBuffer(length, view());
        ReleaseBuffer(buffer);
        buffer = own;
    }
    buffer->Chars()[length] = 0;
    buffer->tip.store(pinnedLength, std::memory_order_relaxed);
    return buffer->Chars();
}

void CString::FormatV(const char* format, va_list args) {
    va_list copy;
    va_copy(copy, args);
    char small[256];
    int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0) {
        Empty();
    } else if (static_cast<size_t>(needed) < sizeof small) {
        Assign(std::string_view(small, static_cast<size_t>(needed)));
    } else {
        std::string big(static_cast<size_t>(needed) + 1, '\0');
        std::vsnprintf(big.data(), big.size(), format, args);
        big.resize(static_cast<size_t>(needed));
        Assign(big);
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
    Append(tail.view());
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
    char* chars = MakeOwn();
    for (int i = 0; i < length; ++i)
        chars[i] = static_cast<char>(UpperLatin1(static_cast<unsigned char>(chars[i])));
    return *this;
}

CString& CString::MakeLower() {
    char* chars = MakeOwn();
    for (int i = 0; i < length; ++i)
        chars[i] = static_cast<char>(LowerLatin1(static_cast<unsigned char>(chars[i])));
    return *this;
}

// Both stop at the first NUL, as C strings do.
int CString::Compare(const char* other) const {
    return std::strcmp(static_cast<const char*>(*this), other ? other : "");
}

int CString::CompareNoCase(const char* other) const {
    const unsigned char* a = reinterpret_cast<const unsigned char*>(static_cast<const char*>(*this));
    const unsigned char* b = reinterpret_cast<const unsigned char*>(other ? other : "");
    for (;; ++a, ++b) {
        unsigned char ca = LowerLatin1(*a), cb = LowerLatin1(*b);
        if (ca != cb) return ca < cb ? -1 : 1;
        if (ca == 0) return 0;
    }
}

static int IndexOf(size_t at) { return at == std::string_view::npos ? -1 : static_cast<int>(at); }

int CString::Find(char ch, int start) const {
    if (start < 0 || start > GetLength()) return -1;
    return IndexOf(view().find(ch, static_cast<size_t>(start)));
}

int CString::Find(const char* sub, int start) const {
    if (!sub || start < 0 || start > GetLength()) return -1;
    return IndexOf(view().find(sub, static_cast<size_t>(start)));
}

int CString::ReverseFind(char ch) const { return IndexOf(view().rfind(ch)); }

int CString::FindOneOf(const char* chars) const {
    if (!chars) return -1;
    return IndexOf(view().find_first_of(chars));
}

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Mid(int first, int count) const {
    first = std::clamp(first, 0, GetLength());
    count = std::clamp(count, 0, GetLength() - first);
    if (first == 0 && count == length) return *this;
    return CString(view().substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

CString CString::Left(int count) const { return Mid(0, count); }

CString CString::Right(int count) const {
    count = std::clamp(count, 0, GetLength());
    return Mid(GetLength() - count, count);
}

// The rarer edits work on a standard string and take the result over.
int CString::Replace(const char* oldText, const char* newText) {
    if (!oldText || !*oldText) return 0;
    const std::string from(oldText), to(newText ? newText : "");
    std::string s = str();
    int count = 0;
    for (size_t at = s.find(from); at != std::string::npos; at = s.find(from, at + to.size())) {
        s.replace(at, from.size(), to);
        ++count;
    }
    if (count > 0) Assign(s);
    return count;
}

int CString::Insert(int index, const char* text) {
    index = std::clamp(index, 0, GetLength());
    if (text && *text) {
        std::string s = str();
        s.insert(static_cast<size_t>(index), text);
        Assign(s);
    }
    return GetLength();
}

int CString::Delete(int index, int count) {
    if (index >= 0 && index < GetLength() && count > 0) {
        std::string s = str();
        s.erase(static_cast<size_t>(index), static_cast<size_t>(count));
        Assign(s);
    }
    return GetLength();
}

static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f'; }

CString& CString::TrimLeft() {
    const std::string_view text = view();
    size_t first = 0;
    while (first < text.size() && IsBlank(text[first])) ++first;
    if (first > 0) Assign(text.substr(first));
    return *this;
}

CString& CString::TrimRight() {
    const std::string_view text = view();
    size_t end = text.size();
    while (end > 0 && IsBlank(text[end - 1])) --end;
    // A shorter length is a prefix of the same characters.
    if (end == 0) Empty();
    else length = static_cast<int>(end);
    return *this;
}
