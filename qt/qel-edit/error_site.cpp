#include "error_site.h"

#include <QFile>
#include <algorithm>
#include <QStringList>

#include "qelkern-qt/qtuserinterface.h"

namespace {
// Lines the prelude adds: the reader ends each of them with a line feed.
int PreludeLineCount(const QString& preludePath) {
    CString prelude;
    if (!LeseTextAusDatei(CString(QFile::encodeName(preludePath).toStdString()), prelude)) return 0;
    return static_cast<int>(std::count(prelude.str().begin(), prelude.str().end(), '\n'));
}

bool IsTranslationError(ScriptErrorKind kind) { return kind == ScriptErrorKind::Scanner || kind == ScriptErrorKind::Compile; }
}  // namespace

QString MarkerMessage(const CString& markedText) {
    const QStringList lines = Latin1Text(markedText).split(u'\n');
    for (QString line : lines) {
        if (!line.startsWith(Latin1Text(FehlerMeldungStart))) continue;
        line.remove(0, static_cast<qsizetype>(std::char_traits<char>::length(FehlerMeldungStart)));
        while (line.startsWith(u'!')) line.remove(0, 1);
        return line.trimmed();
    }
    return QString();
}

ErrorSite LocateError(const CScriptError& record, const ShownError& shown, const QString& preludePath) {
    ErrorSite site;
    if (IsTranslationError(record.kind) && record.scriptLine > 0) {
        site.known = true;
        site.inPrelude = record.inPrelude;
        site.line = record.scriptLine;
        site.message = Latin1Text(record.message);
        site.file = QFile::decodeName(record.file.str().c_str());
        return site;
    }
    if (!shown.shown) return site;
    const int preludeLines = PreludeLineCount(preludePath);
    site.known = true;
    site.inPrelude = shown.line < preludeLines;
    site.line = (site.inPrelude ? shown.line : shown.line - preludeLines) + 1;
    site.message = MarkerMessage(shown.markedText);
    if (site.inPrelude) site.file = preludePath;
    return site;
}
