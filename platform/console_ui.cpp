#include <algorithm>
#include <string>
#include <vector>

#include "qelkern/userinterface.h"

CConsoleUserInterface::CConsoleUserInterface(std::FILE* outStream, std::FILE* inStream)
    : out(outStream), in(inStream) {}

void CConsoleUserInterface::WriteUtf8(const CString& latin1Text) {
    if (!out) return;
    const std::string utf8 = Latin1ToUtf8(latin1Text.str());
    std::fwrite(utf8.data(), 1, utf8.size(), out);
    std::fflush(out);
}

bool CConsoleUserInterface::ReadLine(CString& line) {
    if (!in) return false;
    std::string bytes;
    int c;
    while ((c = std::fgetc(in)) != EOF && c != '\n') bytes += static_cast<char>(c);
    if (c == EOF && bytes.empty()) return false;
    if (!bytes.empty() && bytes.back() == '\r') bytes.pop_back();
    line = CString(DecodeToLatin1(bytes));
    return true;
}

static const char* IconWord(CUserInterface::Icon icon) {
    switch (icon) {
    case CUserInterface::IconError: return "Fehler";
    case CUserInterface::IconInformation: return "Hinweis";
    default: return "Meldung";
    }
}

static std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (;;) {
        size_t end = text.find('\n', start);
        std::string line = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
        if (end == std::string::npos || end + 1 == text.size()) break;
        start = end + 1;
    }
    return lines;
}

// The caption heads the block; only a box without one is named by its icon,
// so that a plain message with the error icon is not called an error.
void CConsoleUserInterface::ShowMessage(const CString& text, const CString& caption, Icon icon) {
    CString block;
    block.Format("== %s ==\n", caption.IsEmpty() ? IconWord(icon) : static_cast<const char*>(caption));
    CString body = text;
    body.TrimRight();
    if (!body.IsEmpty()) block += body + "\n";
    WriteUtf8(block + "\n");
}

// Shows the neighbourhood of the marker line instead of the whole text.
void CConsoleUserInterface::ShowTextDialog(const CString& title, const CString& text, int line,
                                           int column) {
    const std::vector<std::string> lines = SplitLines(text.str());
    int marker = -1;
    for (int i = std::max(0, line); i < static_cast<int>(lines.size()); ++i)
        if (lines[static_cast<size_t>(i)].rfind("<!>", 0) == 0) { marker = i; break; }
    if (marker < 0) marker = std::clamp(line, 0, static_cast<int>(lines.size()) - 1);
    const int first = std::max(0, marker - 3);
    const int last = std::min(static_cast<int>(lines.size()) - 1, marker + 2);

    CString block;
    block.Format("== %s == (Zeile %d, Spalte %d)\n", static_cast<const char*>(title), line, column);
    for (int i = first; i <= last; ++i) block += CString("  ") + CString(lines[static_cast<size_t>(i)]) + "\n";
    WriteUtf8(block + "\n");
}

bool CConsoleUserInterface::EnterNumber(const CString& prompt, bool integerMode, int& value) {
    for (;;) {
        WriteUtf8(CString("Zahleneingabe: ") + prompt + " ");
        CString line;
        if (!ReadLine(line)) {
            WriteUtf8("\n");
            return false;
        }
        if (ParseWholeNumber(line, value)) return true;
        WriteUtf8("Bitte eine ganze Zahl eingeben.\n");
    }
}

bool CConsoleUserInterface::FileDialog(bool openFileDialog, const CString& defaultExtension,
                                       const CString& filter, unsigned flags, CString& path) {
    WriteUtf8(CString(openFileDialog ? "Datei öffnen" : "Datei speichern") + " [" + path + "]: ");
    CString answer;
    if (!ReadLine(answer)) {
        WriteUtf8("\n");
        return false;
    }
    answer.Trim();
    if (answer.IsEmpty()) return false;
    const int slash = answer.ReverseFind('/');
    if (!defaultExtension.IsEmpty() && answer.Find('.', slash + 1) < 0) answer += "." + defaultExtension;
    if (openFileDialog && (flags & OFN_FILEMUSTEXIST)) {
        std::FILE* probe = std::fopen(answer, "rb");
        if (!probe) {
            ShowMessage(answer + "\nDatei nicht gefunden.", "", IconError);
            return false;
        }
        std::fclose(probe);
    }
    path = answer;
    return true;
}

bool CConsoleUserInterface::PrintText(const CString& title, const CString& text, int, int, int, int) {
    const CString target = printFile.IsEmpty() ? CString("qel-druck.txt") : printFile;
    std::FILE* file = std::fopen(target, "wb");
    if (!file) {
        ShowMessage(target + "\nDruckdatei kann nicht geschrieben werden.", title, IconError);
        return false;
    }
    CString plain = text;
    plain.Replace("\r\n", "\n");
    plain.Replace("\r", "\n");
    const std::string utf8 = Latin1ToUtf8(plain.str());
    std::fwrite(utf8.data(), 1, utf8.size(), file);
    std::fclose(file);
    WriteUtf8(CString("Gedruckt nach ") + target + "\n");
    return true;
}

void CConsoleUserInterface::Beep() { WriteUtf8("\a"); }
