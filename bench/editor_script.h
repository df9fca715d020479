// The script both editor benchmarks colour: ten kinds of line in turn, with
// every colour the rules give, and the keywords an editor is given.
#pragma once

#include <cstdio>
#include <string>

#include "qelkern/qelkern.h"

namespace bench {

inline std::string EditorScript(int lines) {
    static const char* const scriptLines[] = {
        "PROCEDURE Schritt%d(VAR wert : INTEGER; faktor : DOUBLE);",
        "VAR i : INTEGER; text : STRING;",
        "BEGIN",
        "  (* Zähler und Text (* verschachtelt *) *)",
        "  FOR i := 1 TO 10 DO",
        "    wert := wert + i * 3,14 - 2.5e3;",
        "    text := \"Zeile \" + IntToStr(i);",
        "    IF wert > 100 THEN BREAK ELSIF wert < 0 THEN wert := 0 END",
        "  END;",
        "END;",
    };
    std::string text;
    char line[128];
    for (int i = 0; i < lines; ++i) {
        std::snprintf(line, sizeof line, scriptLines[i % 10], i);
        text += line;
        text += '\r';
    }
    return text;
}

// The language's keywords, as InitTWScriptEdit gives them to an editor.
inline CString LanguageKeywords() {
    std::string dot = ".";
    CScanner table(dot.data(), 1);
    CString words;
    for (int i = 0; i < table.keywordCount; ++i) words += " " + table.keywords[i].name + " ";
    return words;
}

}  // namespace bench
