#include <algorithm>
#include <cstring>

#include "editor/rich_edit_stream.h"
#include "qelkern/editor.h"
#include "qelkern/userinterface.h"

namespace {
constexpr int printMargin = 1000;  // twips
const char scriptExtension[] = "qel";
const char scriptStartName[] = "*.qel";
const char scriptFilter[] = "Scripte (*.qel)|*.qel||";
constexpr unsigned saveFlags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;  // 14
constexpr unsigned loadFlags = OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR;                      // 4104

std::string ReadWholeFile(std::FILE* file) {
    std::string bytes;
    char chunk[4096];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) bytes.append(chunk, got);
    return bytes;
}
}  // namespace

// --- stream ------------------------------------------------------------------

_afxRichEditCookie::_afxRichEditCookie(CString filePath, int readMode) : path(filePath), reading(readMode) {
    file = std::fopen(path, reading ? "rb" : "wb");
    if (!file) {
        failed = 1;
        return;
    }
    if (reading) decoded = DecodeToLatin1(ReadWholeFile(file));
}

_afxRichEditCookie::~_afxRichEditCookie() {
    if (file) std::fclose(file);
}

// Reading with a failed file ends the stream at once with nothing read; a
// write to a file that could not be opened is an error that ends the stream.
DWORD RichEditStreamCallback(DWORD_PTR cookieValue, BYTE* buffer, LONG count, LONG* done) {
    auto* cookie = reinterpret_cast<_afxRichEditCookie*>(cookieValue);
    if (!cookie || !buffer || !done || count < 0) return 1;
    if (cookie->reading) {
        *done = count;
        if (cookie->failed) return static_cast<DWORD>(cookie->failed);
        const size_t left = cookie->decoded.size() - cookie->readPosition;
        const size_t take = std::min(left, static_cast<size_t>(count));
        std::memcpy(buffer, cookie->decoded.data() + cookie->readPosition, take);
        cookie->readPosition += take;
        *done = static_cast<LONG>(take);
        return 0;
    }
    if (cookie->failed || !cookie->file) return 1;
    const std::string utf8 = Latin1ToUtf8(std::string(reinterpret_cast<const char*>(buffer),
                                                      static_cast<size_t>(count)));
    if (std::fwrite(utf8.data(), 1, utf8.size(), cookie->file) != utf8.size()) return 1;
    *done = count;
    return 0;
}

// --- view --------------------------------------------------------------------

CSpecialRichEditView::CSpecialRichEditView() = default;
CSpecialRichEditView::~CSpecialRichEditView() = default;

BOOL CSpecialRichEditView::OnPreparePrinting(CPrintInfo* pInfo) { return DoPreparePrinting(pInfo); }

void CSpecialRichEditView::DruckeText() {
    SetMargins(CRect(printMargin, printMargin, printMargin, printMargin));
    m_nWordWrap = WrapToTargetDevice;
    WrapChanged();
    OnFilePrint();
}

void CSpecialRichEditView::SpeichereText() {
    CString path = scriptStartName;
    if (!GetUserInterface().FileDialog(false, scriptExtension, scriptFilter, saveFlags, path)) return;
    _afxRichEditCookie cookie(path, 0);
    EDITSTREAM stream;
    stream.dwCookie = reinterpret_cast<DWORD_PTR>(&cookie);
    stream.pfnCallback = RichEditStreamCallback;
    GetRichEditCtrl().StreamOut(SF_TEXT, stream);
}

void CSpecialRichEditView::LadeText() {
    CString path = scriptStartName;
    if (!GetUserInterface().FileDialog(true, scriptExtension, scriptFilter, loadFlags, path)) return;
    _afxRichEditCookie cookie(path, 1);
    EDITSTREAM stream;
    stream.dwCookie = reinterpret_cast<DWORD_PTR>(&cookie);
    stream.pfnCallback = RichEditStreamCallback;
    GetRichEditCtrl().StreamIn(SF_TEXT, stream);
}
