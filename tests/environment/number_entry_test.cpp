// The number entry dialog, run through the user interface service.
#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

// Records the value the input field opens with, and answers with a fixed one.
class OpeningValueUi : public CUserInterface {
public:
    bool EnterNumber(const CString&, bool, int& value) override {
        openedWith = value;
        value = 99;
        return true;
    }
    int openedWith = -1;
};

}  // namespace

TEST(ZahlenEingabe, IntegerModeTakesTheAnswer) {
    ScopedRecordingUi recording;
    recording.ui.numberAnswers = {17};
    CZahlenEingabe dialog(1);
    EXPECT_EQ(dialog.prompt, "Wert=");
    EXPECT_EQ(dialog.integerEntry, 0);
    EXPECT_EQ(dialog.doubleEntry, 0);

    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.integerEntry, 17);
    EXPECT_EQ(dialog.doubleEntry, 0);
    ASSERT_EQ(recording.ui.events.size(), 1u);
    EXPECT_EQ(recording.ui.events[0].kind, UiEvent::NumberEntry);
    EXPECT_EQ(recording.ui.events[0].text, "Wert=");
    EXPECT_TRUE(recording.ui.events[0].integerMode);
}

TEST(ZahlenEingabe, OtherModeTakesAWholeNumberIntoDoubleEntry) {
    ScopedRecordingUi recording;
    recording.ui.numberAnswers = {-4};
    CZahlenEingabe dialog(0);
    dialog.prompt = "Länge in mm:";
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.doubleEntry, -4);
    EXPECT_EQ(dialog.integerEntry, 0);
    ASSERT_EQ(recording.ui.events.size(), 1u);
    EXPECT_EQ(recording.ui.events[0].text, "Länge in mm:");
    EXPECT_FALSE(recording.ui.events[0].integerMode);
}

TEST(ZahlenEingabe, CancelLeavesTheEntry) {
    ScopedRecordingUi recording;
    recording.ui.numberAnswers = {std::nullopt, std::nullopt, std::nullopt};
    CZahlenEingabe integerDialog(1);
    EXPECT_EQ(integerDialog.DoModal(), IDCANCEL);
    EXPECT_EQ(integerDialog.integerEntry, 0);
    CZahlenEingabe doubleDialog(0);
    EXPECT_EQ(doubleDialog.DoModal(), IDCANCEL);
    EXPECT_EQ(doubleDialog.doubleEntry, 0);

    CZahlenEingabe preset(1);
    preset.integerEntry = 5;
    EXPECT_EQ(preset.DoModal(), IDCANCEL);
    EXPECT_EQ(preset.integerEntry, 5);
}

TEST(ZahlenEingabe, TheFieldOpensWithTheEntry) {
    OpeningValueUi ui;
    CUserInterface* previous = pUserInterface;
    pUserInterface = &ui;
    CZahlenEingabe fresh(1);
    fresh.DoModal();
    EXPECT_EQ(ui.openedWith, 0);
    CZahlenEingabe preset(0);
    preset.doubleEntry = 12;
    preset.integerEntry = 34;
    preset.DoModal();
    EXPECT_EQ(ui.openedWith, 12);
    EXPECT_EQ(preset.doubleEntry, 99);
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
    } expected[] = {{1001, DialogItem::StaticText, "Wert"},
                    {1000, DialogItem::EditField, nullptr},
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
