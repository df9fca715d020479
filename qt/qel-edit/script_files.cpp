#include "script_files.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <exception>
#include <vector>

namespace {
CString FileName(const QString& path) { return CString(QFile::encodeName(path).toStdString()); }

// The engine puts the file name right behind the directory.
CString DirectoryWithSlash(const QString& directory) {
    QString dir = directory.isEmpty() ? QStringLiteral(".") : directory;
    if (!dir.endsWith(u'/')) dir += u'/';
    return FileName(dir);
}
}  // namespace

// The engine's reader ends every line with '\n'; the editor shows no empty
// line for the end of the last one (saving puts it back).
bool ReadScriptFile(const QString& path, CString& latin1) {
    CString text;
    if (!LeseTextAusDatei(FileName(path), text)) return false;
    if (text.GetLength() > 0 && text[text.GetLength() - 1] == '\n') text.Delete(text.GetLength() - 1);
    latin1 = text;
    return true;
}

bool WriteScriptFile(const QString& path, const CString& latin1) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    const std::string utf8 = Latin1ToUtf8(latin1.str());
    if (file.write(utf8.data(), static_cast<qint64>(utf8.size())) != static_cast<qint64>(utf8.size())) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

CString ScriptTextOf(const CRichEditCtrl& editor) {
    std::string text = editor.GetTextRange(0, static_cast<int>(editor.GetTextLength())).str();
    for (char& c : text)
        if (c == '\r') c = '\n';
    return CString(std::move(text));
}

int CompileScript(const QString& preludeDirectory, const CString& text, bool run) {
    std::vector<char> buffer(text.view().begin(), text.view().end());
    buffer.push_back('\0');
    try {
        return RunScript(DirectoryWithSlash(preludeDirectory), buffer.data(), text.GetLength(), true, run);
    } catch (CException* exception) {
        exception->Delete();
    } catch (const std::exception&) {
    }
    return 0;
}

QString PreludePath(const QString& directory) {
    return QDir(directory.isEmpty() ? QStringLiteral(".") : directory).filePath(QStringLiteral("extern.qel"));
}
