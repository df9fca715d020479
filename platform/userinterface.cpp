#include <cctype>
#include <climits>
#include <cstdlib>

#include "qelkern/userinterface.h"

CUserInterface* pUserInterface = nullptr;

CUserInterface& GetUserInterface() {
    static CConsoleUserInterface console;
    return pUserInterface ? *pUserInterface : console;
}

// The base service shows nothing and answers every question with Cancel, so
// a host derives only what it wants to show.
CUserInterface::~CUserInterface() = default;
void CUserInterface::ShowMessage(const CString&, const CString&, Icon) {}
void CUserInterface::ShowTextDialog(const CString&, const CString&, int, int) {}
bool CUserInterface::EnterNumber(const CString&, bool, int&) { return false; }
bool CUserInterface::FileDialog(bool, const CString&, const CString&, unsigned, CString&) { return false; }
bool CUserInterface::PrintText(const CString&, const CString&, int, int, int, int) { return false; }
void CUserInterface::Beep() {}

bool ParseWholeNumber(const char* text, int& value) {
    if (!text) return false;
    const char* p = text;
    while (*p == ' ' || *p == '\t') ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    if (!std::isdigit(static_cast<unsigned char>(*p))) return false;
    long long number = 0;
    while (std::isdigit(static_cast<unsigned char>(*p))) {
        number = number * 10 + (*p++ - '0');
        if (number > static_cast<long long>(INT_MAX) + 1) return false;
    }
    while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n') ++p;
    if (*p) return false;
    if (negative) number = -number;
    if (number > INT_MAX || number < INT_MIN) return false;
    value = static_cast<int>(number);
    return true;
}
