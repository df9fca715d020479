// Print, save and load through the hidden view and the user interface.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "editor/rich_edit_stream.h"
#include "tests/editor/editor_fixture.h"

namespace {
// A recording user interface, installed for its life, that keeps the print margins.
class FilesUi : public RecordingUserInterface {
public:
    std::vector<std::array<int, 4>> margins;
    CUserInterface* previous = pUserInterface;
    FilesUi() { pUserInterface = this; }
    ~FilesUi() { pUserInterface = previous; }
    bool PrintText(const CString& title, const CString& text, int left, int top, int right, int bottom) override {
        margins.push_back({left, top, right, bottom});
        return RecordingUserInterface::PrintText(title, text, left, top, right, bottom);
    }
};
}  // namespace

TEST(EditorFiles, SaveWritesUtf8OverAnOldFileAndLeavesTheEditorAlone) {
    FilesUi ui;
    const std::string dir = MakeTempDir("editor-save");
    const std::string path = dir + "skript.qel";
    WriteFileBytes(path, std::string(500, '#'));
    Editor e;
    e.SetText("BEGIN\rGröße := 1\rEND.");
    e.edit.SetSel(3, 8);
    ui.fileDialogAnswer = path.c_str();
    e.edit.Speichern();
    EXPECT_EQ(ReadFileBytes(path), "BEGIN\nGr\xc3\xb6\xc3\x9f" "e := 1\nEND.");
    ASSERT_EQ(ui.events.size(), 1u);
    const UiEvent& dialog = ui.events[0];
    EXPECT_EQ(dialog.kind, UiEvent::FileDialog);
    EXPECT_FALSE(dialog.integerMode);  // a save dialog
    EXPECT_EQ(dialog.line, 14);        // overwrite prompt, hide read-only, no change of directory
    EXPECT_EQ(dialog.caption, "qel");
    EXPECT_EQ(dialog.text, "*.qel");
    // The editor keeps its selection and hands its text on through the clipboard.
    EXPECT_EQ(e.Sel(), std::make_pair(3L, 8L));
    EXPECT_EQ(GetClipboard().GetText(), "BEGIN\r\nGröße := 1\r\nEND.");
    ASSERT_NE(sharedRichEditView, nullptr);
    EXPECT_FALSE(sharedRichEditView->IsWindowVisible());

    // An empty text writes an empty file: the old clipboard does not slip in.
    Editor empty;
    empty.edit.Speichern();
    EXPECT_EQ(ReadFileBytes(path), "");

    // A file that cannot be opened ends the save without harm.
    ui.fileDialogAnswer = (dir + "gibt/es/nicht.qel").c_str();
    e.edit.Speichern();
    EXPECT_FALSE(std::filesystem::exists(dir + "gibt"));
    EXPECT_EQ(e.Text(), "BEGIN\rGröße := 1\rEND.");
}

TEST(EditorFiles, LoadReplacesTheSelectionWithTheColouredFile) {
    FilesUi ui;
    const std::string dir = MakeTempDir("editor-load");
    ui.fileDialogAnswer = (dir + "a.qel").c_str();
    Editor source;
    source.SetText("(* Kommentar *)\rBEGIN\r\tWriteLn(\"ä\")\rEND.");
    source.edit.Speichern();

    Editor target;
    target.SetText("x y");
    target.edit.SetSel(2, 3);
    target.edit.Laden();
    EXPECT_EQ(target.Text(), "x " + source.Text());
    EXPECT_EQ(target.Letters(), "..###############.kkkkk..ccccccc.sss..kkk.");
    EXPECT_EQ(ui.events.back().kind, UiEvent::FileDialog);
    EXPECT_TRUE(ui.events.back().integerMode);  // an open dialog
    EXPECT_EQ(ui.events.back().line, 4104);     // file must exist, no change of directory

    // Any line ends, and Latin-1 where the bytes are no UTF-8.
    WriteFileBytes(dir + "b.qel", "a\r\nb\nc\rd\xe4");
    ui.fileDialogAnswer = (dir + "b.qel").c_str();
    Editor mixed;
    mixed.edit.Laden();
    EXPECT_EQ(mixed.Text(), "a\rb\rc\rdä");

    // A cancelled or failed load changes nothing and pastes no old clipboard.
    mixed.edit.SetSel(0, 2);
    GetClipboard().SetText("alt");
    for (const char* answer : {"", "fehlt.qel"}) {
        ui.fileDialogAnswer = *answer ? (dir + answer).c_str() : "";
        mixed.edit.Laden();
        EXPECT_EQ(mixed.Text(), "a\rb\rc\rdä") << answer;
        EXPECT_EQ(GetClipboard().GetText(), "alt") << answer;
    }
}

TEST(EditorFiles, PrintingAndTheHiddenViewThatAllEditorsShare) {
    FilesUi ui;
    Editor first, second;
    first.SetText("BEGIN\rEND.");
    first.edit.Drucken();
    ASSERT_EQ(ui.margins.size(), 1u);
    EXPECT_EQ(ui.events.back().kind, UiEvent::Print);
    EXPECT_EQ(ui.events.back().text, "BEGIN\r\nEND.");
    EXPECT_EQ(ui.margins[0], (std::array<int, 4>{1000, 1000, 1000, 1000}));  // twips
    EXPECT_EQ(sharedRichEditView->m_nWordWrap, CRichEditView::WrapToTargetDevice);
    EXPECT_FALSE(sharedRichEditView->IsWindowVisible());

    CSpecialRichEditView* view = first.edit.CreateRichEditView();
    ASSERT_EQ(view, sharedRichEditView);
    view->GetRichEditCtrl().SetWindowText("Rest");
    EXPECT_EQ(second.edit.CreateRichEditView(), view);
    EXPECT_EQ(view->GetRichEditCtrl().GetTextLength(), 0);  // emptied for each use
    EXPECT_TRUE(view->IsWindowVisible());
    EXPECT_EQ(view->GetWindowRect(), CRect(-1000, -1000, -10, -10));  // off the screen

    // A view that cannot be made is reported, and nothing happens.
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
    EXPECT_EQ(ui.Messages(), std::vector<CString>(3, "Aktion fehlgeschlagen"));
    EXPECT_EQ(ui.margins.size(), 1u);  // the first print only
    EXPECT_EQ(widget.Text(), "BEGIN");
    edit.Detach();
}

TEST(EditorFiles, TheStreamCallbackReadsInChunksAndStopsOnAFailedFile) {
    const std::string path = MakeTempDir("editor-stream") + "c.qel";
    WriteFileBytes(path, "abcdef");
    _afxRichEditCookie cookie(path.c_str(), 1);
    BYTE buffer[4];
    LONG done = -1;
    for (LONG expected : {4, 2, 0}) {
        EXPECT_EQ(RichEditStreamCallback(reinterpret_cast<DWORD_PTR>(&cookie), buffer, 4, &done), 0u);
        EXPECT_EQ(done, expected);
    }
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 2), "ef");

    _afxRichEditCookie missing((path + ".fehlt").c_str(), 1);
    EXPECT_EQ(missing.failed, 1);
    EXPECT_EQ(RichEditStreamCallback(reinterpret_cast<DWORD_PTR>(&missing), buffer, 4, &done), 1u);
}
