#pragma once

#include <QImage>
#include <QPixmap>
#include <QString>

/// Pictures by name, below the "pics/" directory of QPEApplication::qpeDir().
///
/// The name may carry its suffix or leave it out. A name that cannot be found or read gives a null picture and one
/// warning for the whole run. GUI thread (loadImage: any thread).
class Resource
{
public:
    static QImage loadImage(const QString& name);
    static QPixmap loadPixmap(const QString& name);

    /// The path of the picture, or an empty string when there is none.
    static QString findPixmap(const QString& name);
};
