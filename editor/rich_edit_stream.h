// The file side of the hidden view's streams: the state of one stream and
// the callback that the control calls for each chunk.
#pragma once

#include <cstdio>
#include <string>

#include "qelkern/richedit.h"

// Files are UTF-8, the control's text is Latin-1: a file being read is
// decoded whole when it is opened, and each written chunk is encoded.
class _afxRichEditCookie {
public:
    _afxRichEditCookie(CString filePath, int readMode);
    virtual ~_afxRichEditCookie();
    _afxRichEditCookie(const _afxRichEditCookie&) = delete;
    _afxRichEditCookie& operator=(const _afxRichEditCookie&) = delete;

    CString path;
    std::FILE* file = nullptr;
    int failed = 0;
    int reading = 0;

    std::string decoded;  // the whole text when reading
    size_t readPosition = 0;
};

DWORD RichEditStreamCallback(DWORD_PTR cookie, BYTE* buffer, LONG count, LONG* done);
