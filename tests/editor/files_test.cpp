// Print, save and load through the hidden view and the user interface.
#include <gtest/gtest.h>

#include <filesystem>

#include "editor/rich_edit_stream.h"
#include "tests/editor/editor_fixture.h"

namespace {
struct PrintJob {
    CString text;
    int margins[4] = {};
};

// Records print jobs with their margins, the rest as the recording UI does.
class PrintingUi : public RecordingUserInterface {
public:
    std::vector<PrintJob> jobs;
    bool PrintText(const CString& title, const CString& text, int left, int top, int right,
                   int bottom) override {
        jobs.push_back({text, {left, top, right, bottom}});
        return RecordingUserInterface::PrintText(title, text, left, top, right, bottom);
    }
};

struct ScopedUi {
    PrintingUi ui;
    CUserInterface* previous = pUserInterface;
    ScopedUi() { pUserInterface = &ui; }
    ~ScopedUi() { pUserInterface = previous; }
    const UiEvent* Last(UiEvent::Kind kind) const {
        for (auto it = ui.events.rbegin(); it != ui.events.rend(); ++it)
            if (it->kind == kind) return &*it;
        return nullptr;
    }
};
}  // namespace

TEST(EditorFiles, SaveWritesTheTextAsUtf8AndOverwritesAnOldFile) {
    ScopedUi recording;
    const std::string dir = MakeTempDir("editor-save");
    const std::string path = dir + "skript.qel";
    WriteFileBytes(path, std::string(500, '#'));
    Editor e;
    e.SetText("BEGIN\rGröße := 1\rEND.");
    e.edit.SetSel(3, 8);
    recording.ui.fileDialogAnswer = path.c_str();
    e.edit.Speichern();

    EXPECT_EQ(ReadFileBytes(path), "BEGIN\nGr\xc3\xb6\xc3\x9f" "e := 1\nEND.");
    const UiEvent* dialog = recording.Last(UiEvent::FileDialog);
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(dialog->integerMode);  // a save dialog
    EXPECT_EQ(dialog->line, 14);        // overwrite prompt, hide read-only, no change of directory
    EXPECT_EQ(dialog->caption, "qel");
    EXPECT_EQ(dialog->text, "*.qel");
    // The editor keeps its selection and hands its text on through the clipboard.
    EXPECT_EQ(e.Sel(), std::make_pair(3L, 8L));
    EXPECT_EQ(GetClipboard().GetText(), "BEGIN\r\nGröße := 1\r\nEND.");
    ASSERT_NE(sharedRichEditView, nullptr);
    EXPECT_FALSE(sharedRichEditView->IsWindowVisible());
}

TEST(EditorFiles, SaveAndLoadMakeARoundTrip) {
    ScopedUi recording;
    const std::string path = MakeTempDir("editor-round-trip") + "a.qel";
    Editor source;
    source.SetText("(* Kommentar *)\rBEGIN\r\tWriteLn(\"ä\")\rEND.");
    recording.ui.fileDialogAnswer = path.c_str();
    source.edit.Speichern();

    Editor target;
    target.SetText("x y");
    target.edit.SetSel(2, 3);
    target.edit.Laden();
    // The load replaces the selection, not the whole text, and is coloured.
    EXPECT_EQ(target.Text(), "x " + source.Text());
    EXPECT_EQ(target.LineLetters(1), "kkkkk");
    EXPECT_EQ(target.LetterAt(2), '#');
    const UiEvent* dialog = recording.Last(UiEvent::FileDialog);
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->integerMode);  // an open dialog
    EXPECT_EQ(dialog->line, 4104);     // file must exist, no change of directory
}

TEST(EditorFiles, LoadReadsAnyLineEndsAndLatin1) {
    ScopedUi recording;
    const std::string path = MakeTempDir("editor-line-ends") + "b.qel";
    WriteFileBytes(path, "a\r\nb\nc\rd\xe4");
    Editor e;
    recording.ui.fileDialogAnswer = path.c_str();
    e.edit.Laden();
    EXPECT_EQ(e.Text(), "a\rb\rc\rdä");
}

TEST(EditorFiles, ACancelledOrFailedLoadChangesNothing) {
    ScopedUi recording;
    Editor e;
    e.SetText("bleibt");
    e.edit.SetSel(0, 6);
    GetClipboard().SetText("alt");
    e.edit.Laden();  // cancelled
    EXPECT_EQ(e.Text(), "bleibt");
    recording.ui.fileDialogAnswer = (MakeTempDir("editor-missing") + "fehlt.qel").c_str();
    e.edit.Laden();
    EXPECT_EQ(e.Text(), "bleibt");
    EXPECT_EQ(GetClipboard().GetText(), "alt");
}

TEST(EditorFiles, SavingAnEmptyTextWritesAnEmptyFile) {
    ScopedUi recording;
    const std::string path = MakeTempDir("editor-empty") + "leer.qel";
    WriteFileBytes(path, "alter Inhalt");
    GetClipboard().SetText("fremd");
    Editor e;
    recording.ui.fileDialogAnswer = path.c_str();
    e.edit.Speichern();
    EXPECT_EQ(ReadFileBytes(path), "");
}

TEST(EditorFiles, ASaveThatCannotOpenItsFileEndsWithoutHarm) {
    ScopedUi recording;
    Editor e;
    e.SetText("BEGIN END.");
    recording.ui.fileDialogAnswer = (MakeTempDir("editor-no-dir") + "gibt/es/nicht.qel").c_str();
    e.edit.Speichern();
    EXPECT_FALSE(std::filesystem::exists(MakeTempDir("editor-no-dir") + "gibt"));
    EXPECT_EQ(e.Text(), "BEGIN END.");
}

TEST(EditorFiles, PrintingGoesToTheUserInterfaceWithMarginsOf1000Twips) {
    ScopedUi recording;
    Editor e;
    e.SetText("BEGIN\rEND.");
    e.edit.Drucken();
    ASSERT_EQ(recording.ui.jobs.size(), 1u);
    EXPECT_EQ(recording.ui.jobs[0].text, "BEGIN\r\nEND.");
    for (int margin : recording.ui.jobs[0].margins) EXPECT_EQ(margin, 1000);
    EXPECT_EQ(sharedRichEditView->m_nWordWrap, CRichEditView::WrapToTargetDevice);
}

TEST(EditorFiles, AllEditorsShareOneHiddenView) {
    ScopedUi recording;
    Editor first, second;
    first.SetText("eins");
    CSpecialRichEditView* view = first.edit.CreateRichEditView();
    ASSERT_NE(view, nullptr);
    view->GetRichEditCtrl().SetWindowText("Rest");
    EXPECT_EQ(second.edit.CreateRichEditView(), view);
    EXPECT_EQ(view->GetRichEditCtrl().GetTextLength(), 0);  // emptied for each use
    EXPECT_TRUE(view->IsWindowVisible());
    EXPECT_EQ(view->GetWindowText(), "Rich Edit View");
    EXPECT_EQ(view->GetWindowRect(), CRect(-1000, -1000, -10, -10));
}

TEST(EditorFiles, AViewThatCannotBeMadeIsReportedAndNothingHappens) {
    ScopedUi recording;
    delete sharedRichEditView;
    sharedRichEditView = nullptr;
    const RichEditWidgetFactory previous =
        SetRichEditWidgetFactory([](CWnd*, int) { return std::unique_ptr<CRichEditWidget>(); });
    TestEdit edit;
    CMemoryRichEdit widget;
    edit.Attach(&widget, false);
    edit.SetWindowText("BEGIN");
    edit.Drucken();
    edit.Speichern();
    edit.Laden();
    SetRichEditWidgetFactory(previous);
    EXPECT_EQ(sharedRichEditView, nullptr);
    EXPECT_EQ(recording.ui.Messages(), (std::vector<CString>{"Aktion fehlgeschlagen", "Aktion fehlgeschlagen",
                                                             "Aktion fehlgeschlagen"}));
    EXPECT_TRUE(recording.ui.jobs.empty());
    EXPECT_EQ(widget.Text(), "BEGIN");
    edit.Detach();
}

TEST(EditorFiles, TheStreamCallbackReadsInChunksAndStopsOnAFailedFile) {
    const std::string path = MakeTempDir("editor-stream") + "c.qel";
    WriteFileBytes(path, "abcdef");
    _afxRichEditCookie cookie(path.c_str(), 1);
    BYTE buffer[4];
    LONG done = -1;
    EXPECT_EQ(RichEditStreamCallback(reinterpret_cast<DWORD_PTR>(&cookie), buffer, 4, &done), 0u);
    EXPECT_EQ(done, 4);
    EXPECT_EQ(RichEditStreamCallback(reinterpret_cast<DWORD_PTR>(&cookie), buffer, 4, &done), 0u);
    EXPECT_EQ(done, 2);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 2), "ef");
    EXPECT_EQ(RichEditStreamCallback(reinterpret_cast<DWORD_PTR>(&cookie), buffer, 4, &done), 0u);
    EXPECT_EQ(done, 0);

    _afxRichEditCookie missing((path + ".fehlt").c_str(), 1);
    EXPECT_EQ(missing.failed, 1);
    EXPECT_EQ(RichEditStreamCallback(reinterpret_cast<DWORD_PTR>(&missing), buffer, 4, &done), 1u);
}
