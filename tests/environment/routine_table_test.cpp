// The routine table: what the base environment puts in, and how EXTERN finds it.
#include <functional>

#include <gtest/gtest.h>

#include "environment/basis_routines.h"
#include "support/test_support.h"

namespace {

int HostSin(VALUE*, int) { return 1; }
int HostExtra(VALUE*, int) { return 1; }

// Installs an environment for the life of the object.
class ScopedEnvironment {
public:
    explicit ScopedEnvironment(CBasisPredefinedUmgebung* environment)
        : previous(pBasisPredefinedUmgebung) {
        pBasisPredefinedUmgebung = environment;
    }
    ~ScopedEnvironment() { pBasisPredefinedUmgebung = previous; }

private:
    CBasisPredefinedUmgebung* previous;
};

// An environment whose InitPredefinedArray runs a given action; counts calls.
class TestUmgebung : public CBasisPredefinedUmgebung {
public:
    explicit TestUmgebung(std::function<void(TestUmgebung&)> action) : init(std::move(action)) {}
    void InitPredefinedArray() override {
        ++initCalls;
        init(*this);
    }
    void Base() { CBasisPredefinedUmgebung::InitPredefinedArray(); }
    void Add(const char* name, PredefinedRoutine routine) {
        predefinedArray.Add(new CPredefined(name, routine));
    }

    int initCalls = 0;

private:
    std::function<void(TestUmgebung&)> init;
};

class CountedRow : public CPredefined {
public:
    explicit CountedRow(int& deletions) : CPredefined("row", HostExtra), counter(deletions) {}
    ~CountedRow() override { ++counter; }

private:
    int& counter;
};

CString NameAt(const CPredefinedArray& table, int i) {
    return static_cast<const CPredefined*>(table[i])->name;
}

}  // namespace

TEST(RoutineTable, BaseEnvironmentAddsTheThirteenBuiltinsInOrder) {
    CBasisPredefinedUmgebung environment;
    EXPECT_EQ(environment.predefinedArray.GetSize(), 0);
    environment.InitPredefinedArray();
    const char* names[] = {"SetSuccess", "ErrorMsg", "MeldungDouble", "MeldungInt", "sin",
                           "cos",        "tan",      "sqr",           "sqrt",       "abs",
                           "sign",       "val",      "str"};
    ASSERT_EQ(environment.predefinedArray.GetSize(), 13);
    for (int i = 0; i < 13; ++i) EXPECT_EQ(NameAt(environment.predefinedArray, i), names[i]);

    // No guard: a second call appends the rows again.
    environment.InitPredefinedArray();
    EXPECT_EQ(environment.predefinedArray.GetSize(), 26);
}

TEST(RoutineTable, LookupFillsAnEmptyTableAndIgnoresCase) {
    CBasisPredefinedUmgebung environment;
    ScopedEnvironment scope(&environment);
    EXPECT_EQ(FindPredefined("SIN"), BasisRoutinen::sin);
    EXPECT_EQ(environment.predefinedArray.GetSize(), 13);
    EXPECT_EQ(FindPredefined("sin"), BasisRoutinen::sin);
    EXPECT_EQ(FindPredefined("MELDUNGint"), BasisRoutinen::MeldungInt);
    EXPECT_EQ(FindPredefined("str"), BasisRoutinen::str);
    EXPECT_EQ(FindPredefined("nichtda"), nullptr);
    EXPECT_EQ(FindPredefined("si"), nullptr);
    EXPECT_EQ(FindPredefined(""), nullptr);
    EXPECT_EQ(environment.predefinedArray.GetSize(), 13);
}

TEST(RoutineTable, TheFirstRowOfANameWins) {
    TestUmgebung before([](TestUmgebung& e) {
        e.Add("sin", HostSin);
        e.Base();
    });
    TestUmgebung after([](TestUmgebung& e) {
        e.Base();
        e.Add("SIN", HostSin);
        e.Add("extra", HostExtra);
    });
    {
        ScopedEnvironment scope(&before);
        EXPECT_EQ(FindPredefined("Sin"), HostSin);
        EXPECT_EQ(FindPredefined("cos"), BasisRoutinen::cos);
    }
    {
        ScopedEnvironment scope(&after);
        EXPECT_EQ(FindPredefined("sin"), BasisRoutinen::sin);
        EXPECT_EQ(FindPredefined("EXTRA"), HostExtra);
    }
    EXPECT_EQ(before.initCalls, 1);
    EXPECT_EQ(after.initCalls, 1);
}

TEST(RoutineTable, AnOverrideThatAddsNothingIsAskedAgainEachTime) {
    TestUmgebung empty([](TestUmgebung&) {});
    ScopedEnvironment scope(&empty);
    EXPECT_EQ(FindPredefined("sin"), nullptr);
    EXPECT_EQ(FindPredefined("sin"), nullptr);
    EXPECT_EQ(empty.initCalls, 2);
    EXPECT_EQ(empty.predefinedArray.GetSize(), 0);
}

TEST(RoutineTable, LookupWalksTheLiveTable) {
    TestUmgebung environment([](TestUmgebung& e) { e.Base(); });
    ScopedEnvironment scope(&environment);
    EXPECT_EQ(FindPredefined("extra"), nullptr);
    environment.Add("extra", HostExtra);
    EXPECT_EQ(FindPredefined("extra"), HostExtra);
    EXPECT_EQ(environment.initCalls, 1);

    // Rows that are no CPredefined, or null, are passed over.
    environment.predefinedArray.InsertAt(0, nullptr);
    environment.predefinedArray.InsertAt(0, new CObject);
    EXPECT_EQ(FindPredefined("sqrt"), BasisRoutinen::sqrt);

    // A new environment brings a new, empty table.
    CBasisPredefinedUmgebung replacement;
    pBasisPredefinedUmgebung = &replacement;
    EXPECT_EQ(FindPredefined("extra"), nullptr);
    EXPECT_EQ(replacement.predefinedArray.GetSize(), 13);
}

TEST(RoutineTable, NoEnvironmentResolvesNothing) {
    ScopedEnvironment scope(nullptr);
    EXPECT_EQ(FindPredefined("sin"), nullptr);
}

TEST(RoutineTable, TheTableDeletesItsRows) {
    int deleted = 0;
    {
        CPredefinedArray table;
        table.Add(new CountedRow(deleted));
        table.Add(nullptr);
        table.Add(new CountedRow(deleted));
    }
    EXPECT_EQ(deleted, 2);
    {
        CBasisPredefinedUmgebung environment;
        environment.predefinedArray.Add(new CountedRow(deleted));
    }
    EXPECT_EQ(deleted, 3);
}

TEST(RoutineTable, BaseWordListsAreEmptyAndImportDoesNothing) {
    CBasisPredefinedUmgebung environment;
    CStringArray words;
    words.Add("vorher");
    EXPECT_EQ(environment.AddConstants(words), "");
    EXPECT_EQ(environment.AddKeywords(words), "");
    ASSERT_EQ(words.GetSize(), 1);
    EXPECT_EQ(words[0], "vorher");
    environment.Import(nullptr, "a", "b");
    EXPECT_EQ(environment.predefinedArray.GetSize(), 0);
}
