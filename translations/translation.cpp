#include "translation.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>

bool install_translation(QCoreApplication& application, const QLocale& locale)
{
    auto* translator = new QTranslator(&application);
    if (translator->load(locale, QStringLiteral("tavel_video"), QStringLiteral("_"), QStringLiteral(":/translations")))
        return QCoreApplication::installTranslator(translator);
    delete translator;
    return false;
}
