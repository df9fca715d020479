// Allocations that fail. This program replaces the global operator new, so
// that a test can make exactly one allocation of a run fail, one after the
// other, and see what each failure leaves behind.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>
#include <utility>

#include "support/test_support.h"

namespace {

// Allocations still to succeed before one fails; below 0 none fails.
std::atomic<long> allocationsBeforeFailure{-1};

bool FailThisAllocation() {
    if (allocationsBeforeFailure.load(std::memory_order_relaxed) < 0) return false;
    return allocationsBeforeFailure.fetch_sub(1, std::memory_order_relaxed) == 0;
}

}  // namespace

void* operator new(size_t bytes) {
    if (FailThisAllocation()) throw std::bad_alloc();
    if (void* memory = std::malloc(bytes ? bytes : 1)) return memory;
    throw std::bad_alloc();
}
// GCC takes the pair for a mismatch; it is the replacement's own pair.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* memory) noexcept { std::free(memory); }
#pragma GCC diagnostic pop
void operator delete(void* memory, size_t) noexcept { ::operator delete(memory); }

namespace {

const std::string script =
    "CONST n = 3; VAR s : STRING; i : INTEGER; a : ARRAY [4] OF DOUBLE;\n"
    "FUNCTION teil(t : STRING; VAR k : INTEGER) : STRING;\n"
    "  PROCEDURE innen(); BEGIN k := k + 1 END;\n"
    "BEGIN innen(); teil := t + \"x\" END;\n"
    "BEGIN\n"
    "  FOR i := 0 TO n DO a[i] := i * 1.5 END;\n"
    "  WHILE i > 0 DO s := teil(s, i); i := i - 2 END;\n"
    "  IF s = \"\" THEN s := \"leer\" ELSIF i < 0 THEN s := \"\" ELSE s := s + s END\n"
    "END.";

}  // namespace

// Each allocation of a compile fails in turn: every time the run ends with
// the one box and result 0, and the sanitizer build finds nothing leaked.
TEST(OutOfMemory, AnyFailedAllocationOfACompileEndsItWithAMessage) {
    ScopedRecordingUi rec;
    const std::string dir = MakeTempDir("out-of-memory");
    std::string text = script;
    int failures = 0;
    for (long k = 0;; ++k) {
        rec.ui.events.clear();
        rec.ui.events.reserve(4);
        CString directory = dir.c_str();  // the caller's own allocation
        allocationsBeforeFailure = k;
        const int result =
            RunScript(std::move(directory), text.data(), static_cast<int>(text.size()), true, false);
        const bool failed = allocationsBeforeFailure.exchange(-1) < 0;
        if (!failed) {
            EXPECT_EQ(result, 1);
            EXPECT_TRUE(rec.ui.events.empty());
            break;
        }
        ++failures;
        SCOPED_TRACE("allocation " + std::to_string(k));
        EXPECT_EQ(result, 0);
        ASSERT_EQ(rec.ui.events.size(), 1u);
        EXPECT_EQ(rec.ui.events[0].text, "Nicht genügend Speicher für das Skript.");
        EXPECT_EQ(rec.ui.events[0].icon, CUserInterface::IconError);
    }
    EXPECT_GT(failures, 20) << "a compile of this script makes dozens of allocations";
}
