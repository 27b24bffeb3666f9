#pragma once

#include <QtCore/QLocale>

QT_BEGIN_NAMESPACE
class QCoreApplication;
QT_END_NAMESPACE

/// Has the product speak the language of @p locale; texts that its translation lacks, and all texts in any other
/// language, are English. Call it before the first window is made: windows take up their texts when they are built.
/// @return whether there is a translation for the locale.
bool install_translation(QCoreApplication& application, const QLocale& locale = QLocale::system());
