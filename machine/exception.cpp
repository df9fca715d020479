#include <algorithm>
#include <cstring>

#include "qelkern/machine.h"

CQELException::CQELException(const CString& message) : text(message) {}

CQELException::~CQELException() = default;

bool CQELException::GetErrorMessage(char* buffer, unsigned maxLength) const {
    if (!buffer || maxLength == 0) return false;
    size_t length = std::min<size_t>(static_cast<size_t>(text.GetLength()), maxLength - 1);
    std::memcpy(buffer, static_cast<const char*>(text), length);
    buffer[length] = '\0';
    return true;
}
