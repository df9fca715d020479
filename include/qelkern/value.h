// The tagged cell of the machine, also the carrier of constants at compile time.
#pragma once

#include "qelkern/platform.h"

class QELKERN_API VALUE : public CObject {
public:
    VALUE() : type(40), intValue(0) {}
    VALUE(const VALUE& other);
    ~VALUE() override;

    // A string cell given a string shares the text in its own string object;
    // that common case of the machine needs no call.
    VALUE& operator=(const VALUE& other) {
        if (type == 57 && other.type == 57 && stringValue && other.stringValue) {
            *stringValue = *other.stringValue;
            return *this;
        }
        return AssignOther(other);
    }
    VALUE& operator=(const int& number);
    VALUE& operator=(const double& number);

    operator int() const;
    operator double() const;
    operator CString() const;

    VALUE operator-() const;
    VALUE& operator++();
    VALUE& operator--();

    VALUE operator+(const VALUE& right) const;
    VALUE operator-(const VALUE& right) const;
    VALUE operator*(const VALUE& right) const;
    VALUE operator/(const VALUE& right) const;
    VALUE operator%(const VALUE& right) const;
    VALUE operator%(int right) const;
    VALUE operator%(double right) const;
    VALUE operator<(const VALUE& right) const;
    VALUE operator<=(const VALUE& right) const;
    VALUE operator>(const VALUE& right) const;
    VALUE operator>=(const VALUE& right) const;
    VALUE operator==(const VALUE& right) const;
    VALUE operator==(int right) const;
    VALUE operator!=(const VALUE& right) const;

    CString GetTypeName() const;

    // Helpers for hosts and the engine: make this cell a string holding `text`,
    // and read a cell's text without converting a number (null if no string).
    void SetString(const CString& text);
    const CString* GetStringPtr() const { return type == 57 ? stringValue : nullptr; }
    // Moves the contents of `other` here and leaves `other` an integer 0,
    // without copying a text.
    void MoveFrom(VALUE& other);
    // this + right, into this cell: a string grows in place where its text
    // allows, so that building a text costs linear time.
    VALUE& operator+=(const VALUE& right);

    int type;
    union {
        int intValue;
        double doubleValue;
        CString* stringValue;
    };

private:
    void Release();
    VALUE& AssignOther(const VALUE& other);
};
