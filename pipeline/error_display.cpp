// The step from a compile error to the user: the whole text with a marker
// line under the line of the error, then an exception that ends the compile.
#include <algorithm>
#include <climits>
#include <string>

#include "qelkern/machine.h"
#include "qelkern/parser.h"
#include "qelkern/userinterface.h"

const char* const FehlerMeldungStart = "<!>";

namespace {

// "<!>", then "!" up to the error's position, then the message.
std::string MarkerLine(int position, const CString& text) {
    std::string marker = FehlerMeldungStart;
    const int padding = position - static_cast<int>(marker.size());
    if (padding > 0) marker.append(static_cast<size_t>(padding), '!');
    marker += text.str();
    marker += "\r\n";
    return marker;
}

// The text with the marker behind the line feed that ends line `line`, or at
// the end if the text has not that many line feeds.
std::string MarkedText(const CScanner& scanner, const std::string& marker) {
    const int available = std::min(scanner.length, static_cast<int>(scanner.buffer.size()));
    const long long markAfter = static_cast<long long>(scanner.line) + 1;
    std::string marked;
    long long lineFeeds = 0;
    bool inserted = false;
    for (int i = 0; i < available; ++i) {
        const char c = scanner.buffer[static_cast<size_t>(i)];
        marked += c;
        if (c == '\n' && ++lineFeeds == markAfter) {
            marked += marker;
            inserted = true;
        }
    }
    // A text whose last line has no line feed (a host's text, not a file)
    // still gets the marker on a line of its own, under the error.
    if (!inserted && !marked.empty() && marked.back() != '\n') marked += '\n';
    if (!inserted) marked += marker;
    return marked;
}

}  // namespace

void ZeigeFehlerText(CString title, CString text, CScanner* scanner, bool show) {
    if (!show) return;
    const int line = scanner ? scanner->line : 0;
    const int position = scanner ? scanner->position : 0;
    const std::string marker = MarkerLine(position, text);
    const std::string marked = scanner ? MarkedText(*scanner, marker) : marker;
    const long long column = static_cast<long long>(position) +
                             std::char_traits<char>::length(FehlerMeldungStart) + text.GetLength();
    GetUserInterface().ShowTextDialog(title, CString(marked), line,
                                      static_cast<int>(std::min<long long>(column, INT_MAX)));
    throw new CQELException(title + " : " + text);
}
