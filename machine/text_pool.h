// String objects that cells of the running machine gave up, kept for the
// next text that a cell takes on: in a loop the texts come and go in the same
// few cells, and a kept object has its buffer already.
#pragma once

#include "qelkern/platform.h"

namespace qelkern {

// Trivial to make and to destroy, so that the thread's pool needs no guard;
// the machine empties it at the end of every run.
class TextPool {
public:

    // A string object of its own holding a copy of `text`.
    CString* Take(const CString& text) {
        if (count == 0) return new CString(text);
        CString* object = objects[--count];
        try {
            *object = text;
        } catch (...) {
            objects[count++] = object;
            throw;
        }
        return object;
    }
    void Give(CString* object) noexcept {
        if (count < capacity) objects[count++] = object;
        else delete object;
    }
    void Clear() noexcept {
        while (count > 0) delete objects[--count];
    }

private:
    static constexpr int capacity = 16;
    CString* objects[capacity];
    int count;
};

// The pool of the thread that runs a script; emptied when a run ends.
inline TextPool& ThreadTextPool() {
    [[gnu::tls_model("initial-exec")]] static constinit thread_local TextPool pool{};
    return pool;
}

}  // namespace qelkern
