// Character formats between the framework's CHARFORMAT and Qt's
// QTextCharFormat, and the text conversion at the widget's boundary.
#include <cstring>

#include "richedit_state.h"

namespace qt_richedit {

namespace {
// Items that Qt has no property of its own for.
constexpr int protectedProperty = QTextFormat::UserProperty + 1;
constexpr int linkProperty = QTextFormat::UserProperty + 2;
constexpr int charsetProperty = QTextFormat::UserProperty + 3;
constexpr int offsetProperty = QTextFormat::UserProperty + 4;

constexpr double twipsPerPoint = 20.0;

QString FaceOf(const CHARFORMAT& cf) {
    return QString::fromLatin1(cf.szFaceName, static_cast<qsizetype>(strnlen(cf.szFaceName, LF_FACESIZE)));
}

void SetFace(CHARFORMAT& cf, const QString& face) {
    const QByteArray latin1 = face.toLatin1();
    std::memset(cf.szFaceName, 0, sizeof cf.szFaceName);
    std::memcpy(cf.szFaceName, latin1.constData(),
                static_cast<size_t>(std::min<qsizetype>(latin1.size(), LF_FACESIZE - 1)));
}

// A face the desktop may lack falls back to a font of the same kind.
bool IsTypewriterFace(const QString& face) {
    return face.contains(u"Courier", Qt::CaseInsensitive) || face.contains(u"Mono", Qt::CaseInsensitive);
}

void SetEffect(CHARFORMAT& cf, DWORD effect, bool on) {
    cf.dwEffects = on ? (cf.dwEffects | effect) : (cf.dwEffects & ~effect);
}
}  // namespace

QString ToQt(const char* latin1) {
    QString text = QString::fromLatin1(latin1 ? latin1 : "");
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

CString FromQt(const QString& text) {
    std::string out;
    out.reserve(static_cast<size_t>(text.size()));
    for (const QChar ch : text) {
        const char16_t code = ch.unicode();
        if (code == u'\n' || code == QChar::ParagraphSeparator || code == QChar::LineSeparator)
            out += '\r';
        else
            out += code <= 0xFF ? static_cast<char>(code) : '?';
    }
    return CString(std::move(out));
}

bool IsProtected(const QTextCharFormat& format) { return format.boolProperty(protectedProperty); }

QTextCharFormat MaskedFormat(const CHARFORMAT& cf) {
    QTextCharFormat format;
    const DWORD mask = cf.dwMask;
    if (mask & CFM_BOLD) format.setFontWeight((cf.dwEffects & CFE_BOLD) ? QFont::Bold : QFont::Normal);
    if (mask & CFM_ITALIC) format.setFontItalic((cf.dwEffects & CFE_ITALIC) != 0);
    if (mask & CFM_UNDERLINE) format.setFontUnderline((cf.dwEffects & CFE_UNDERLINE) != 0);
    if (mask & CFM_STRIKEOUT) format.setFontStrikeOut((cf.dwEffects & CFE_STRIKEOUT) != 0);
    if (mask & CFM_PROTECTED) format.setProperty(protectedProperty, (cf.dwEffects & CFE_PROTECTED) != 0);
    if (mask & CFM_LINK) format.setProperty(linkProperty, (cf.dwEffects & CFE_LINK) != 0);
    if ((mask & CFM_COLOR) && !(cf.dwEffects & CFE_AUTOCOLOR))
        format.setForeground(QColor(GetRValue(cf.crTextColor), GetGValue(cf.crTextColor),
                                    GetBValue(cf.crTextColor)));
    if ((mask & CFM_SIZE) && cf.yHeight > 0) format.setFontPointSize(cf.yHeight / twipsPerPoint);
    if (mask & CFM_FACE) {
        const QString face = FaceOf(cf);
        if (!face.isEmpty()) {
            format.setFontFamilies(QStringList{face});
            format.setFontStyleHint(IsTypewriterFace(face) ? QFont::TypeWriter : QFont::AnyStyle);
        }
    }
    if (mask & CFM_CHARSET) format.setProperty(charsetProperty, static_cast<int>(cf.bCharSet));
    if (mask & CFM_OFFSET) format.setProperty(offsetProperty, static_cast<int>(cf.yOffset));
    return format;
}

void FillCharFormat(const QTextCharFormat& format, const CHARFORMAT& defaults, CHARFORMAT& cf) {
    const UINT size = cf.cbSize;
    cf = defaults;
    cf.cbSize = size;
    cf.dwMask = CFM_ALL;
    if (format.hasProperty(QTextFormat::FontWeight))
        SetEffect(cf, CFE_BOLD, format.fontWeight() >= QFont::DemiBold);
    if (format.hasProperty(QTextFormat::FontItalic)) SetEffect(cf, CFE_ITALIC, format.fontItalic());
    if (format.hasProperty(QTextFormat::TextUnderlineStyle) || format.hasProperty(QTextFormat::FontUnderline))
        SetEffect(cf, CFE_UNDERLINE, format.fontUnderline());
    if (format.hasProperty(QTextFormat::FontStrikeOut)) SetEffect(cf, CFE_STRIKEOUT, format.fontStrikeOut());
    if (format.hasProperty(protectedProperty)) SetEffect(cf, CFE_PROTECTED, IsProtected(format));
    if (format.hasProperty(linkProperty)) SetEffect(cf, CFE_LINK, format.boolProperty(linkProperty));
    if (format.hasProperty(QTextFormat::ForegroundBrush)) {
        const QColor colour = format.foreground().color();
        cf.crTextColor = RGB(static_cast<BYTE>(colour.red()), static_cast<BYTE>(colour.green()),
                             static_cast<BYTE>(colour.blue()));
        SetEffect(cf, CFE_AUTOCOLOR, false);
    }
    if (format.hasProperty(QTextFormat::FontPointSize))
        cf.yHeight = static_cast<LONG>(qRound(format.fontPointSize() * twipsPerPoint));
    const QStringList families = format.property(QTextFormat::FontFamilies).toStringList();
    if (!families.isEmpty()) SetFace(cf, families.first());
    if (format.hasProperty(charsetProperty)) cf.bCharSet = static_cast<BYTE>(format.intProperty(charsetProperty));
    if (format.hasProperty(offsetProperty)) cf.yOffset = format.intProperty(offsetProperty);
}

DWORD SameItems(const CHARFORMAT& a, const CHARFORMAT& b) {
    DWORD same = 0;
    const DWORD differing = a.dwEffects ^ b.dwEffects;
    const DWORD effects[][2] = {{CFM_BOLD, CFE_BOLD},           {CFM_ITALIC, CFE_ITALIC},
                                {CFM_UNDERLINE, CFE_UNDERLINE}, {CFM_STRIKEOUT, CFE_STRIKEOUT},
                                {CFM_PROTECTED, CFE_PROTECTED}, {CFM_LINK, CFE_LINK}};
    for (const auto& [item, effect] : effects)
        if (!(differing & effect)) same |= item;
    if (!(differing & CFE_AUTOCOLOR) && ((a.dwEffects & CFE_AUTOCOLOR) || a.crTextColor == b.crTextColor))
        same |= CFM_COLOR;
    if (a.yHeight == b.yHeight) same |= CFM_SIZE;
    if (std::strncmp(a.szFaceName, b.szFaceName, LF_FACESIZE) == 0) same |= CFM_FACE;
    if (a.yOffset == b.yOffset) same |= CFM_OFFSET;
    if (a.bCharSet == b.bCharSet) same |= CFM_CHARSET;
    return same;
}

QFont FontOf(const CHARFORMAT& cf) {
    const QString face = FaceOf(cf);
    QFont font(face.isEmpty() ? QStringLiteral("Courier New") : face);
    font.setStyleHint(IsTypewriterFace(font.family()) ? QFont::TypeWriter : QFont::AnyStyle);
    if (cf.yHeight > 0) font.setPointSizeF(cf.yHeight / twipsPerPoint);
    font.setBold((cf.dwEffects & CFE_BOLD) != 0);
    font.setItalic((cf.dwEffects & CFE_ITALIC) != 0);
    font.setUnderline((cf.dwEffects & CFE_UNDERLINE) != 0);
    font.setStrikeOut((cf.dwEffects & CFE_STRIKEOUT) != 0);
    return font;
}

}  // namespace qt_richedit
