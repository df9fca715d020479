#include <QClipboard>
#include <QGuiApplication>

#include "qelkern-qt/qtuserinterface.h"
#include "richedit_state.h"

using namespace qt_richedit;

CString CQtClipboard::GetText() const {
    const QClipboard* system = QGuiApplication::clipboard();
    if (!system) return CString();
    return WithCrLf(FromQt(system->text()));
}

void CQtClipboard::SetText(const CString& latin1) {
    if (QClipboard* system = QGuiApplication::clipboard()) system->setText(ToQt(latin1));
}

QString Latin1Text(const CString& text) {
    return QString::fromLatin1(text.str().data(), static_cast<qsizetype>(text.str().size()));
}

CString FromQString(const QString& text) {
    std::string out;
    out.reserve(static_cast<size_t>(text.size()));
    for (const QChar ch : text) out += ch.unicode() <= 0xFF ? static_cast<char>(ch.unicode()) : '?';
    return CString(std::move(out));
}
