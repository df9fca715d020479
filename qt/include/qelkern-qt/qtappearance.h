// How the editors look beyond the control's own colouring: Qt's own texts in
// the user's language (German when Qt has none for it), and a colour set for
// dark palettes.
#pragma once

#include <QColor>
#include <QHash>
#include <QPalette>

#include "qelkern/qelkern.h"

class QCoreApplication;

// Loads Qt's translations for the user's languages, or German when there is
// none, so that Qt's own dialogs speak as the editor does. false: no
// translation was found at all.
bool LoadQtTranslations(QCoreApplication& application);

bool IsDarkPalette(const QPalette& palette);

// The contrast ratio of two colours, from 1 to 21, as the web's guidelines
// reckon it.
double ContrastRatio(const QColor& a, const QColor& b);

// The colours the editor's styles are painted in on a dark palette: the
// same roles, each readable against the palette's base.
QHash<QRgb, QColor> DarkDisplayColours(const CTWScriptEdit& editor, const QPalette& palette);
