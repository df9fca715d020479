// The routine table: what the base environment puts in, and how EXTERN finds it.
#include <gtest/gtest.h>

#include "environment/basis_routines.h"
#include "support/test_support.h"

namespace {

int HostSin(VALUE*, int) { return 1; }
int HostExtra(VALUE*, int) { return 1; }

// A host environment: its own row `first`, the built-ins if `base`, then the
// row `last`; counts the calls of InitPredefinedArray.
struct TestUmgebung : CBasisPredefinedUmgebung {
    void InitPredefinedArray() override {
        ++initCalls;
        if (first) Add(first, HostSin);
        if (base) CBasisPredefinedUmgebung::InitPredefinedArray();
        if (last) Add(last, HostSin);
    }
    void Add(const char* name, PredefinedRoutine r) { predefinedArray.Add(new CPredefined(name, r)); }
    const char* first = nullptr;
    bool base = true;
    const char* last = nullptr;
    int initCalls = 0;
};

struct CountedRow : CPredefined {
    explicit CountedRow(int& deletions) : CPredefined("row", HostExtra), counter(deletions) {}
    ~CountedRow() override { ++counter; }
    int& counter;
};

// The tests install environments freely; the one before is put back.
class RoutineTable : public testing::Test {
protected:
    ~RoutineTable() override { pBasisPredefinedUmgebung = previous; }
    CBasisPredefinedUmgebung* const previous = pBasisPredefinedUmgebung;
};

}  // namespace

TEST_F(RoutineTable, BaseEnvironmentAddsTheThirteenBuiltinsInOrder) {
    CBasisPredefinedUmgebung environment;
    EXPECT_EQ(environment.predefinedArray.GetSize(), 0);
    environment.InitPredefinedArray();
    const char* names[] = {"SetSuccess", "ErrorMsg", "MeldungDouble", "MeldungInt", "sin", "cos",
                           "tan", "sqr", "sqrt", "abs", "sign", "val", "str"};
    ASSERT_EQ(environment.predefinedArray.GetSize(), 13);
    for (int i = 0; i < 13; ++i)
        EXPECT_EQ(static_cast<const CPredefined*>(environment.predefinedArray[i])->name, names[i]);
    // No guard: a second call appends the rows again.
    environment.InitPredefinedArray();
    EXPECT_EQ(environment.predefinedArray.GetSize(), 26);
}

TEST_F(RoutineTable, LookupFillsAnEmptyTableIgnoresCaseAndTakesTheFirstRowOfAName) {
    pBasisPredefinedUmgebung = nullptr;
    EXPECT_EQ(FindPredefined("sin"), nullptr);
    CBasisPredefinedUmgebung base;
    pBasisPredefinedUmgebung = &base;
    EXPECT_EQ(FindPredefined("SIN"), BasisRoutinen::sin);
    EXPECT_EQ(FindPredefined("MELDUNGint"), BasisRoutinen::MeldungInt);
    EXPECT_EQ(FindPredefined("str"), BasisRoutinen::str);
    for (const char* unknown : {"nichtda", "si", ""}) EXPECT_EQ(FindPredefined(unknown), nullptr);
    EXPECT_EQ(base.predefinedArray.GetSize(), 13);

    TestUmgebung before;
    before.first = "sin";
    pBasisPredefinedUmgebung = &before;
    EXPECT_EQ(FindPredefined("Sin"), HostSin);
    EXPECT_EQ(FindPredefined("cos"), BasisRoutinen::cos);
    // The live table is walked: rows added later are found, rows that are
    // no CPredefined, or null, are passed over.
    EXPECT_EQ(FindPredefined("extra"), nullptr);
    before.Add("extra", HostExtra);
    EXPECT_EQ(FindPredefined("extra"), HostExtra);
    before.predefinedArray.InsertAt(0, nullptr);
    before.predefinedArray.InsertAt(0, new CObject);
    EXPECT_EQ(FindPredefined("sqrt"), BasisRoutinen::sqrt);
    EXPECT_EQ(before.initCalls, 1);

    TestUmgebung after;
    after.last = "SIN";
    pBasisPredefinedUmgebung = &after;
    EXPECT_EQ(FindPredefined("sin"), BasisRoutinen::sin);
    // An override that adds nothing is asked again on each lookup.
    TestUmgebung empty;
    empty.base = false;
    pBasisPredefinedUmgebung = &empty;
    EXPECT_EQ(FindPredefined("sin"), nullptr);
    EXPECT_EQ(FindPredefined("sin"), nullptr);
    EXPECT_EQ(empty.initCalls, 2);
}

TEST_F(RoutineTable, TheTableDeletesItsRows) {
    int deleted = 0;
    {
        CPredefinedArray table;
        table.Add(new CountedRow(deleted));
        table.Add(nullptr);
        table.Add(new CountedRow(deleted));
        CBasisPredefinedUmgebung environment;
        environment.predefinedArray.Add(new CountedRow(deleted));
    }
    EXPECT_EQ(deleted, 3);
}
