// GetCh's common case, inline for the scanner's own readers: the next byte of
// the buffer. The rest (the end of the text) goes to GetCh.
#pragma once

#include "qelkern/scanner.h"

namespace qelkern {

inline void NextCh(CScanner& s) {
    const int at = s.index;
    if (at >= 0 && at < s.length && at < static_cast<int>(s.buffer.size())) {
        const char c = s.buffer[static_cast<size_t>(at)];
        s.index = at + 1;
        s.ch = c;
        if (c == '\n') {
            s.position = 0;
            ++s.line;
        } else {
            ++s.position;
        }
        return;
    }
    s.GetCh();
}

}  // namespace qelkern
