// CQtRichEditWidget: the user's keys, characters, focus and menu commands
// as the framework's messages, and the widget's own handling of them.
#include <QAction>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTextBlock>

#include "qelkern/userinterface.h"
#include "richedit_state.h"

using namespace qt_richedit;

namespace {
constexpr LPARAM keyDownFlags = 1;                                      // repeat count 1
constexpr LPARAM keyUpFlags = 1 | (static_cast<LPARAM>(0xC000) << 16);  // released, was down
constexpr UINT vkMenu = 0x12;
constexpr UINT vkEscape = 0x1B;
constexpr UINT vkPrior = 0x21;
constexpr UINT vkNext = 0x22;
constexpr UINT vkInsert = 0x2D;
constexpr UINT vkF1 = 0x70;
constexpr short keyIsDown = -128;

UINT VirtualKeyOf(const QKeyEvent& event) {
    const int key = event.key();
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return 'A' + static_cast<UINT>(key - Qt::Key_A);
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return '0' + static_cast<UINT>(key - Qt::Key_0);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return vkF1 + static_cast<UINT>(key - Qt::Key_F1);
    switch (key) {
    case Qt::Key_Backspace: return VK_BACK;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return VK_TAB;
    case Qt::Key_Return:
    case Qt::Key_Enter: return VK_RETURN;
    case Qt::Key_Shift: return VK_SHIFT;
    case Qt::Key_Control: return VK_CONTROL;
    case Qt::Key_Alt:
    case Qt::Key_AltGr: return vkMenu;
    case Qt::Key_Escape: return vkEscape;
    case Qt::Key_Space: return VK_SPACE;
    case Qt::Key_PageUp: return vkPrior;
    case Qt::Key_PageDown: return vkNext;
    case Qt::Key_End: return VK_END;
    case Qt::Key_Home: return VK_HOME;
    case Qt::Key_Left: return VK_LEFT;
    case Qt::Key_Up: return VK_UP;
    case Qt::Key_Right: return VK_RIGHT;
    case Qt::Key_Down: return VK_DOWN;
    case Qt::Key_Insert: return vkInsert;
    case Qt::Key_Delete: return VK_DELETE;
    default: return VK_OEM_1;
    }
}

// Redo as the desktops of both worlds bind it.
bool IsControlY(const QKeyEvent& event) {
    return event.key() == Qt::Key_Y && (event.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
}

bool MovesCaret(UINT key) {
    switch (key) {
    case VK_LEFT: case VK_RIGHT: case VK_UP: case VK_DOWN:
    case VK_HOME: case VK_END: case vkPrior: case vkNext:
        return true;
    default:
        return false;
    }
}

// Control alone gives no characters; AltGr (Control with Alt) does.
bool GivesCharacters(Qt::KeyboardModifiers modifiers) {
    return !(modifiers & Qt::ControlModifier) || (modifiers & Qt::AltModifier);
}

// Sets the key being dispatched for the widget's own handling and the key state.
class KeyScope {
public:
    KeyScope(CQtRichEditWidget::State& s, QKeyEvent* event)
        : state(s), outerKey(s.currentKey), outerModifiers(s.currentModifiers), outerIn(s.inKeyEvent) {
        state.currentKey = event;
        state.currentModifiers = event->modifiers();
        state.inKeyEvent = true;
    }
    ~KeyScope() {
        state.currentKey = outerKey;
        state.currentModifiers = outerModifiers;
        state.inKeyEvent = outerIn;
    }
    KeyScope(const KeyScope&) = delete;
    KeyScope& operator=(const KeyScope&) = delete;

private:
    CQtRichEditWidget::State& state;
    QKeyEvent* outerKey;
    Qt::KeyboardModifiers outerModifiers;
    bool outerIn;
};
}  // namespace

// --- from Qt to the message map ----------------------------------------------------

// Read-only text has no use for Return and Escape: they go to the dialog,
// whose default button and cancel they are.
bool CQtRichEditWidget::PassesToWindow(const QKeyEvent* event) const {
    const int key = event->key();
    return state->readOnly && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape);
}

void CQtRichEditWidget::KeyPressed(QKeyEvent* event) {
    if (PassesToWindow(event)) {
        event->ignore();
        return;
    }
    KeyScope scope(*state, event);
    event->accept();
    SendToOwner(WM_KEYDOWN, VirtualKeyOf(*event), keyDownFlags);
    if (!GivesCharacters(event->modifiers())) return;
    QString text = event->text();
    // Platforms differ in the text of these keys; the control wants 13 and 9.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) text = QStringLiteral("\r");
    if (text.isEmpty() && event->key() == Qt::Key_Backtab) text = QStringLiteral("\t");
    TypeCharacters(text);
}

// Latin-1 is all the text can hold; what lies beyond is told, not typed.
void CQtRichEditWidget::TypeCharacters(const QString& text) {
    for (const QChar ch : text) {
        if (ch.unicode() <= 0xFF)
            SendToOwner(WM_CHAR, ch.unicode(), keyDownFlags);
        else if (state->rejectedCharacter && !state->readOnly)
            state->rejectedCharacter(ch);
    }
}

void CQtRichEditWidget::SetRejectedCharacterHandler(std::function<void(QChar)> handler) {
    state->rejectedCharacter = std::move(handler);
}

void CQtRichEditWidget::SetAutoIndent(bool on) { state->autoIndent = on; }

void CQtRichEditWidget::KeyReleased(QKeyEvent* event) {
    if (PassesToWindow(event)) {
        event->ignore();
        return;
    }
    event->accept();
    if (event->isAutoRepeat()) return;
    KeyScope scope(*state, event);
    SendToOwner(WM_KEYUP, VirtualKeyOf(*event), keyUpFlags);
}

// A read-only widget takes no typing, so there the tab key moves the focus.
bool CQtRichEditWidget::WantsTabKey() {
    if (state->readOnly) return false;
    return (SendToOwner(WM_GETDLGCODE, 0, 0) & DLGC_WANTTAB) != 0;
}

void CQtRichEditWidget::FocusGained() {
    if (GetOwner())
        GetOwner()->SetFocus();
    else
        Focus();
}

void CQtRichEditWidget::TextComposed(const QString& text) { TypeCharacters(text); }

void CQtRichEditWidget::ContextMenuRequested(const QPoint& globalPosition) {
    State& s = *state;
    if (!s.view) return;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    const bool selected = start < end;
    const bool editable = !s.readOnly;
    QMenu menu(s.view);
    QAction* undo = menu.addAction(QStringLiteral("&Rückgängig"));
    undo->setEnabled(editable && CanUndo());
    menu.addSeparator();
    QAction* cut = menu.addAction(QStringLiteral("&Ausschneiden"));
    cut->setEnabled(editable && selected);
    QAction* copy = menu.addAction(QStringLiteral("&Kopieren"));
    copy->setEnabled(selected);
    QAction* paste = menu.addAction(QStringLiteral("&Einfügen"));
    paste->setEnabled(editable && !GetClipboard().GetText().IsEmpty());
    QAction* clear = menu.addAction(QStringLiteral("&Löschen"));
    clear->setEnabled(editable && selected);
    menu.addSeparator();
    QAction* all = menu.addAction(QStringLiteral("Alles &markieren"));

    const QAction* chosen = menu.exec(globalPosition);
    if (chosen == undo) SendToOwner(WM_UNDO, 0, 0);
    else if (chosen == cut) SendToOwner(WM_CUT, 0, 0);
    else if (chosen == copy) SendToOwner(WM_COPY, 0, 0);
    else if (chosen == paste) SendToOwner(WM_PASTE, 0, 0);
    else if (chosen == clear) SendToOwner(WM_CLEAR, 0, 0);
    else if (chosen == all) SetSel(0, GetTextLength());
}

// --- the widget's own handling -----------------------------------------------------

short CQtRichEditWidget::GetKeyState(int key) const {
    const Qt::KeyboardModifiers modifiers =
        state->inKeyEvent ? state->currentModifiers : QGuiApplication::keyboardModifiers();
    switch (key) {
    case VK_CONTROL: return (modifiers & Qt::ControlModifier) ? keyIsDown : 0;
    case VK_SHIFT: return (modifiers & Qt::ShiftModifier) ? keyIsDown : 0;
    case vkMenu: return (modifiers & Qt::AltModifier) ? keyIsDown : 0;
    default: return 0;
    }
}

// The edit commands of the desktop's key bindings go through the message
// map like the menu's.
bool CQtRichEditWidget::HandleShortcut(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cut)) SendToOwner(WM_CUT, 0, 0);
    else if (event->matches(QKeySequence::Copy)) SendToOwner(WM_COPY, 0, 0);
    else if (event->matches(QKeySequence::Paste)) SendToOwner(WM_PASTE, 0, 0);
    else if (event->matches(QKeySequence::Undo)) SendToOwner(WM_UNDO, 0, 0);
    else if (event->matches(QKeySequence::SelectAll)) SetSel(0, GetTextLength());
    else if (event->matches(QKeySequence::Redo) || IsControlY(*event)) Redo();
    else return false;
    return true;
}

void CQtRichEditWidget::DefaultKeyDown(UINT key) {
    State& s = *state;
    QKeyEvent* event = s.currentKey && VirtualKeyOf(*s.currentKey) == key ? s.currentKey : nullptr;
    if (event && HandleShortcut(event)) return;
    const bool control = GetKeyState(VK_CONTROL) < 0;
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    if (key == VK_BACK || key == VK_DELETE) {
        DeleteByKey(key, control);
    } else if (MovesCaret(key)) {
        if (event && s.view)
            s.view->MoveByKey(event);
        else
            MoveCaret(key, shift);
    } else if (!event && control) {
        switch (key) {
        case 'X': SendToOwner(WM_CUT, 0, 0); break;
        case 'C': SendToOwner(WM_COPY, 0, 0); break;
        case 'V': SendToOwner(WM_PASTE, 0, 0); break;
        case 'Z': SendToOwner(WM_UNDO, 0, 0); break;
        case 'A': SetSel(0, GetTextLength()); break;
        default: break;
        }
    }
}

void CQtRichEditWidget::MoveCaret(UINT key, bool extend) {
    State& s = *state;
    if (!s.view) return;
    QTextCursor cursor = s.Cursor();
    const QTextCursor::MoveMode mode = extend ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor;
    switch (key) {
    case VK_LEFT: cursor.movePosition(QTextCursor::PreviousCharacter, mode); break;
    case VK_RIGHT: cursor.movePosition(QTextCursor::NextCharacter, mode); break;
    case VK_UP: case vkPrior: cursor.movePosition(QTextCursor::PreviousBlock, mode); break;
    case VK_DOWN: case vkNext: cursor.movePosition(QTextCursor::NextBlock, mode); break;
    case VK_HOME: cursor.movePosition(QTextCursor::StartOfBlock, mode); break;
    case VK_END: cursor.movePosition(QTextCursor::EndOfBlock, mode); break;
    default: return;
    }
    {
        OwnChange own(s);
        s.pendingFormat.reset();
        s.SetCursor(cursor);
    }
    NotifySelection(false);
}

// The blanks and tabs that open the line of `position`, up to it.
QString CQtRichEditWidget::IndentBefore(int position) const {
    const QTextDocument* document = state->Document();
    if (!document) return QString();
    const QTextBlock block = document->findBlock(position);
    const QString line = block.text().left(position - block.position());
    qsizetype length = 0;
    while (length < line.size() && (line[length] == u' ' || line[length] == u'\t')) ++length;
    return line.left(length);
}

void CQtRichEditWidget::DefaultChar(UINT character) {
    if (state->readOnly) return;
    const bool printable = character == '\r' || character == '\t' || (character >= 32 && character != 127);
    if (!printable || character > 0xFF) return;
    int start = 0;
    int end = 0;
    GetSel(start, end);
    QString typed = character == '\r' ? QStringLiteral("\n") : QString(QChar(static_cast<char16_t>(character)));
    if (character == '\r' && state->autoIndent) typed += IndentBefore(start);
    ReplaceRange(start, end, typed, WM_CHAR, character, static_cast<int>(UndoMode::Typing));
}
