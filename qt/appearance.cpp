#include "qelkern-qt/qtappearance.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <cmath>

namespace {
constexpr double readableContrast = 4.5;

QColor ColourOf(COLORREF colour) { return QColor(GetRValue(colour), GetGValue(colour), GetBValue(colour)); }

double Luminance(const QColor& colour) {
    const auto channel = [](double value) {
        value /= 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(colour.red()) + 0.7152 * channel(colour.green()) + 0.0722 * channel(colour.blue());
}

// Lighter and lighter until it reads well on the background.
QColor Readable(QColor colour, const QColor& background) {
    for (int step = 0; step < 20 && ContrastRatio(colour, background) < readableContrast; ++step)
        colour = QColor::fromHsl(colour.hslHue(), colour.hslSaturation(), std::min(255, colour.lightness() + 12));
    return colour;
}

bool LoadFor(QTranslator& translator, const QLocale& locale) {
    return translator.load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath));
}
}  // namespace

bool LoadQtTranslations(QCoreApplication& application) {
    auto* translator = new QTranslator(&application);
    bool loaded = false;
    for (const QString& language : QLocale::system().uiLanguages()) {
        if (language.startsWith(u"en")) break;  // Qt's own language: nothing to load
        if ((loaded = LoadFor(*translator, QLocale(language)))) break;
    }
    if (!loaded) loaded = LoadFor(*translator, QLocale(QLocale::German, QLocale::Germany));
    if (loaded)
        QCoreApplication::installTranslator(translator);
    else
        delete translator;
    return loaded;
}

bool IsDarkPalette(const QPalette& palette) { return palette.color(QPalette::Base).lightness() < 128; }

double ContrastRatio(const QColor& a, const QColor& b) {
    const double la = Luminance(a);
    const double lb = Luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QHash<QRgb, QColor> DarkDisplayColours(const CTWScriptEdit& editor, const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    const QColor text = Readable(palette.color(QPalette::Text), base);
    const struct {
        COLORREF stored;
        QColor shown;
    } roles[] = {
        {editor.keywordStyle.colour, QColor(0x6C, 0xB4, 0xFF)},
        {editor.commentStyle.colour, QColor(0x6F, 0xCF, 0x6F)},
        {editor.stringStyle.colour, QColor(0xF0, 0xC6, 0x74)},
        {editor.numberStyle.colour, QColor(0xFF, 0x79, 0xC6)},
        {editor.errorStyle.colour, QColor(0xFF, 0x6B, 0x6B)},
        {editor.constantStyle.colour, text},
        {RGB(0, 0, 0), text},  // plain text
    };
    QHash<QRgb, QColor> colours;
    for (const auto& role : roles)
        if (!colours.contains(ColourOf(role.stored).rgb())) colours.insert(ColourOf(role.stored).rgb(), Readable(role.shown, base));
    return colours;
}
