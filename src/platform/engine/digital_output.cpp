#include "digital_output.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

bool has_digital_output(const QString& root)
{
    static const QRegularExpression digital(QStringLiteral("IEC958|S/?PDIF|HDMI|Digital"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QDir cards(root);
    for (const QString& card : cards.entryList({QStringLiteral("card*")}, QDir::Dirs)) {
        const QDir devices(cards.filePath(card));
        for (const QString& device : devices.entryList({QStringLiteral("pcm*p")}, QDir::Dirs)) {
            QFile info(devices.filePath(device) + QStringLiteral("/info"));
            if (info.open(QIODevice::ReadOnly) && digital.match(QString::fromUtf8(info.readAll())).hasMatch())
                return true;
        }
    }
    return false;
}
