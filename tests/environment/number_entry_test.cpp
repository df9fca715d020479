// The number entry dialog, run through the user interface service.
#include <optional>

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

// Records what the input field is opened with, and gives a fixed answer.
struct AnsweringUi : CUserInterface {
    bool EnterNumber(const CString& shown, bool integer, int& value) override {
        prompt = shown;
        integerMode = integer;
        openedWith = value;
        if (answer) value = *answer;
        return answer.has_value();
    }
    std::optional<int> answer;
    CString prompt;
    bool integerMode = false;
    int openedWith = -1;
};

}  // namespace

TEST(ZahlenEingabe, TheModeChoosesTheEntryThatOpensTheFieldAndTakesTheAnswer) {
    AnsweringUi ui;
    CUserInterface* const previous = pUserInterface;
    pUserInterface = &ui;
    CZahlenEingabe fresh(1);
    EXPECT_EQ(fresh.prompt, "Wert=");
    EXPECT_EQ(fresh.integerEntry, 0);
    EXPECT_EQ(fresh.doubleEntry, 0);
    const struct {
        int mode, integerEntry, doubleEntry;
        const char* prompt;
        std::optional<int> answer;
        int returned, integerAfter, doubleAfter;
    } cases[] = {
        {1, 0, 0, "Wert=", 17, IDOK, 17, 0},       {0, 0, 0, "Länge in mm:", -4, IDOK, 0, -4},
        {0, 34, 12, "Wert=", 99, IDOK, 34, 99},    {1, 0, 0, "Wert=", std::nullopt, IDCANCEL, 0, 0},
        {0, 0, 0, "", std::nullopt, IDCANCEL, 0, 0}, {1, 5, 0, "Wert=", std::nullopt, IDCANCEL, 5, 0},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const auto& c = cases[i];
        SCOPED_TRACE(testing::Message() << "case " << i);
        CZahlenEingabe dialog(c.mode);
        dialog.prompt = c.prompt;
        dialog.integerEntry = c.integerEntry;
        dialog.doubleEntry = c.doubleEntry;
        ui.answer = c.answer;
        EXPECT_EQ(dialog.DoModal(), c.returned);
        EXPECT_EQ(ui.prompt, c.prompt);
        EXPECT_EQ(ui.integerMode, c.mode != 0);
        EXPECT_EQ(ui.openedWith, c.mode ? c.integerEntry : c.doubleEntry);
        EXPECT_EQ(dialog.integerEntry, c.integerAfter);
        EXPECT_EQ(dialog.doubleEntry, c.doubleAfter);
    }
    pUserInterface = previous;
}

TEST(ZahlenEingabe, ResourceDescribesTheDialog) {
    const DialogTemplate& resource = ZahlenEingabeTemplate;
    EXPECT_EQ(resource.resourceId, 129);
    EXPECT_STREQ(resource.title, "Zahleneingabe");
    const struct {
        int id;
        DialogItem::Kind kind;
        const char* text;
    } expected[] = {{1001, DialogItem::StaticText, "Wert"}, {1000, DialogItem::EditField, nullptr},
                    {IDOK, DialogItem::DefaultPushButton, "OK"},
                    {IDCANCEL, DialogItem::PushButton, "Abbrechen"}};
    for (const auto& item : expected) {
        const DialogItem* found = resource.FindItem(item.id);
        ASSERT_NE(found, nullptr) << item.id;
        EXPECT_EQ(found->kind, item.kind) << item.id;
        EXPECT_STREQ(found->text ? found->text : "", item.text ? item.text : "") << item.id;
    }
    EXPECT_EQ(resource.FindItem(4711), nullptr);
}
